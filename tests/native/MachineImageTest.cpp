// Machine images: what is read, and how broken ones are refused.
#include "platform/simulated/MachineImage.h"

#include <gtest/gtest.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>

#include "platform/simulated/SimulatedMachine.h"
#include "support/uDateTime.h"
#include "support/uText.h"

namespace varcolin {
namespace {

namespace fs = std::filesystem;

/// An image folder that vanishes with the test.
class MachineImageTest : public ::testing::Test {
 protected:
  MachineImageTest() : Root(fs::temp_directory_path() / ("machine-image-" + std::to_string(::getpid()))) {
    fs::remove_all(Root);
    fs::create_directories(Root);
  }
  ~MachineImageTest() override { fs::remove_all(Root); }

  void Write(const fs::path& AName, std::string_view AText) {
    fs::create_directories((Root / AName).parent_path());
    std::ofstream(Root / AName, std::ios::binary) << AText;
  }
  /// The error of loading the image; empty when there is none.
  std::string Load() {
    try {
      const TFolderImage image(Root);
      TSimulatedMachine machine(ReadFacts(image));
      LoadImage(image, machine);
      return "";
    } catch (const EImageError& error) {
      return ToUtf8(error.Message());
    }
  }

  fs::path Root;
};

TSimulatedFacts Parse(std::string_view AText) { return ParseFacts(std::as_bytes(std::span(AText)), "machine.json"); }

std::string ErrorOf(std::string_view AText) {
  try {
    Parse(AText);
    return "";
  } catch (const EImageError& error) {
    return ToUtf8(error.Message());
  }
}

TEST(MachineFactsTest, ReadsEveryMember) {
  const TSimulatedFacts facts = Parse(R"({
    "windows": {"major": 5, "minor": 2, "build": 3790, "productType": "domainController", "servicePack": 2,
                "suiteMask": 274, "productInfo": 48, "architecture": "itanium"},
    "wow64": false, "user": {"name": "J\u00fcrgen", "sid": "S-1-5-18", "admin": false}, "locale": "de-AT",
    "environment": {"Path": "D:\\bin", "windir": ""}, "now": "2003-04-05T06:07:08", "later": [1.5, null, {}]})");
  EXPECT_EQ(facts.Version.Major, 5U);
  EXPECT_EQ(facts.Version.Minor, 2U);
  EXPECT_EQ(facts.Version.Build, 3790U);
  EXPECT_EQ(facts.Version.ProductType, ProductType::DomainController);
  EXPECT_EQ(facts.Version.ServicePackMajor, 2);
  EXPECT_EQ(facts.Version.ServicePackText, u"Service Pack 2");
  EXPECT_EQ(facts.Version.SuiteMask, 274);
  EXPECT_EQ(facts.ProductInfo, 48U);
  EXPECT_EQ(facts.NativeArchitecture, Architecture::Itanium);
  EXPECT_FALSE(facts.IsWow64);
  EXPECT_EQ(facts.UserName, u"J\u00fcrgen");
  EXPECT_EQ(facts.UserSid, u"S-1-5-18");
  EXPECT_FALSE(facts.UserIsAdmin);
  EXPECT_EQ(facts.LocaleName, u"de-AT");
  const TEnvironment environment = EnvironmentOf(facts);
  EXPECT_EQ(VariableOf(environment, u"PATH"), u"D:\\bin");
  EXPECT_FALSE(environment.contains(u"windir"));
  EXPECT_EQ(VariableOf(environment, u"APPDATA"), u"C:\\Documents and Settings\\J\u00fcrgen\\Application Data");
  const TSystemTime now = FileTimeToSystemTime(facts.Now);
  EXPECT_EQ(FormatDateAndTime(now, u":"), u"2003.04.05 06:07:08.000");
}

TEST(MachineFactsTest, ReadsPrograms) {
  const TSimulatedFacts facts = Parse(R"({"programs": [
    {"path": "C:\\T\\u.exe", "arguments": "/S", "runs": 400, "exitCode": 3, "changesAfter": 50,
     "windows": [{"title": "Sure?", "after": 10, "closes": 90, "icon": true, "tool": true, "visible": false,
                  "minimised": true}, {}],
     "starts": [{"command": "C:\\Temp\\Au_.exe /S", "after": 300}],
     "removesKeys": ["HKEY_CURRENT_USER\\Software\\T"], "createsKeys": ["HKEY_LOCAL_MACHINE\\Software\\L"],
     "removesFiles": ["C:\\T"], "createsFiles": ["C:\\Temp\\left.log"]},
    {"path": "C:\\T\\v.exe", "ends": false}, {"path": "C:\\T\\w.exe"}]})");
  ASSERT_EQ(facts.Programs.size(), 3U);
  const TSimulatedProgram& program = facts.Programs[0];
  EXPECT_EQ(program.Path, u"C:\\T\\u.exe");
  EXPECT_EQ(program.Arguments, u"/S");
  EXPECT_EQ(program.Runs, 400U);
  EXPECT_EQ(program.ExitCode, 3U);
  EXPECT_EQ(program.ChangesAfter, 50U);
  ASSERT_EQ(program.Windows.size(), 2U);
  const TProgramWindow& window = program.Windows[0];
  EXPECT_EQ(window.Window.Title, u"Sure?");
  EXPECT_EQ(window.After, 10U);
  EXPECT_EQ(window.Closes, 90U);
  EXPECT_TRUE(window.Window.HasIcon && window.Window.IsMinimised && !window.Window.IsVisible);
  EXPECT_EQ(window.Window.StyleEx, WindowStyleEx::ToolWindow);
  EXPECT_TRUE(program.Windows[1].Window.IsVisible);
  ASSERT_EQ(program.Starts.size(), 1U);
  EXPECT_EQ(program.Starts[0].Command, u"C:\\Temp\\Au_.exe /S");
  EXPECT_EQ(program.Starts[0].After, 300U);
  EXPECT_EQ(program.RemovesKeys, std::vector<std::u16string>{u"HKEY_CURRENT_USER\\Software\\T"});
  EXPECT_EQ(program.CreatesKeys, std::vector<std::u16string>{u"HKEY_LOCAL_MACHINE\\Software\\L"});
  EXPECT_EQ(program.RemovesFiles, std::vector<std::u16string>{u"C:\\T"});
  EXPECT_EQ(program.CreatesFiles, std::vector<std::u16string>{u"C:\\Temp\\left.log"});
  EXPECT_EQ(facts.Programs[1].Runs, std::nullopt);
  EXPECT_EQ(facts.Programs[2].Runs, 0U);
}

TEST(MachineFactsTest, HasDefaults) {
  const TSimulatedFacts facts = Parse("{}");
  EXPECT_EQ(facts.Version.Build, 7601U);
  EXPECT_TRUE(facts.IsWow64);
  EXPECT_EQ(VariableOf(EnvironmentOf(facts), u"ProgramFiles"), u"C:\\Program Files (x86)");
  const TSimulatedFacts old = Parse(R"({"windows":{"architecture":"x86","servicePack":0}})");
  EXPECT_FALSE(old.IsWow64);
  EXPECT_EQ(old.Version.ServicePackText, u"");
  EXPECT_EQ(VariableOf(EnvironmentOf(old), u"ProgramFiles"), u"C:\\Program Files");
}

TEST(MachineFactsTest, NamesTheLineAtFault) {
  const struct {
    std::string_view Text;
    std::string_view Start;
  } cases[] = {
      {"", "machine.json:1: the text is no JSON"},
      {"\n\n[]", "machine.json:3: the document must be an object"},
      {"{\n\"wow64\": 1\n}", "machine.json:2: \"wow64\" must be true or false"},
      {"{\n\"wow64\":\n\n\"x\"}", "machine.json:4: "},
      {"{\"windows\":{\n\"major\":6,\n\"minor\":-1\n}}", "machine.json:3: \"minor\" must lie between"},
      {"{\"windows\":{\"servicePack\":256}}", "machine.json:1: \"servicePack\" must lie between 0 and 255"},
      {"{\"windows\":{\n\"major\":6.5\n}}", "machine.json:2: \"major\" must be a whole number"},
      {"{\"windows\":{\"build\":99999999999999999999999}}", "machine.json:1: \"build\" must be a whole number"},
      {"{\"windows\":{\"architecture\":\n\"arm\"}}",
       "machine.json:2: \"architecture\" must be one of \"x64\", \"x86\""},
      {"{\"windows\":{\"productType\":\"Server\"}}", "machine.json:1: \"productType\" must be one of"},
      {"{\"windows\":[]}", "machine.json:1: \"windows\" must be an object"},
      {"{\"windows\":{\"architecture\":\"x86\"},\n\"wow64\":true}", "machine.json:2: \"wow64\" cannot be true"},
      {"{\"user\":{\"name\":\"a\\\\b\"}}", "machine.json:1: \"name\""},
      {"{\"user\":{\"name\":\"\"}}", "machine.json:1: \"name\""},
      {"{\"user\":{\"sid\":\"S-1-x\"}}", "machine.json:1: \"sid\""},
      {"{\"user\":{\"sid\":null}}", "machine.json:1: \"sid\" must be a text"},
      {"{\"locale\":\"xx-YY\"}", "machine.json:1: \"locale\""},
      {"{\"environment\":{\n\"A\":1}}", "machine.json:2: \"A\" must be a text"},
      {"{\"environment\":{\"\":\"x\"}}", "machine.json:1: "},
      {"{\"environment\":{\"A=B\":\"x\"}}", "machine.json:1: "},
      {"{\"environment\":{\"SystemRoot\":\"Windows\"}}", "machine.json:1: \"SystemRoot\" must be the full path"},
      {"{\"now\":\"2012-02-30T00:00:00\"}", "machine.json:1: \"now\""},
      {"{\"now\":\"2012-02-03 00:00:00\"}", "machine.json:1: \"now\""},
      {"{\"now\":\"2012-02-03T24:00:00\"}", "machine.json:1: \"now\""},
      {"{\"programs\":[\n{}]}", "machine.json:2: a program must have a \"path\""},
      {"{\"programs\":[\n1]}", "machine.json:2: \"programs\" must hold objects"},
      {"{\"programs\":[{\"path\":\n\"u.exe\"}]}", "machine.json:2: \"u.exe\" must be the full path"},
      {"{\"programs\":[{\"path\":\"C:\\\\u.exe\",\n\"runs\":\"long\"}]}",
       "machine.json:2: \"runs\" must be a whole number"},
      {"{\"programs\":[{\"path\":\"C:\\\\u.exe\",\"removesKeys\":[\n\"HKLM\\\\X\"]}]}",
       "machine.json:2: \"HKLM\\X\" must be a"},
      {"{\"programs\":[{\"path\":\"C:\\\\u.exe\",\"createsFiles\":[\n\"x\"]}]}",
       "machine.json:2: \"x\" must be the full path"},
      {"{\"programs\":[{\"path\":\"C:\\\\u.exe\",\"starts\":[\n{}]}]}",
       "machine.json:2: \"starts\" needs a \"command\""},
      {"{\n\"wow64\": true,\n}", "machine.json:3: the text is no JSON document from"},
      {"{} // comment", "machine.json:1: the text is no JSON document from"},
      {"{\"user\":{\"name\":\"\xFF\"}}", "machine.json:1: the text is no JSON document from"},
  };
  for (const auto& [text, start] : cases) EXPECT_EQ(ErrorOf(text).substr(0, start.size()), start) << text;
  EXPECT_EQ(ErrorOf(std::string(100000, '[')), "machine.json:1: values are nested too deeply");
  const std::string cut = R"({"windows":{"major":6},"environment":{"A":"B"},"now":"2012-08-09T10:11:12"})";
  for (std::size_t size = 0; size < cut.size(); ++size) EXPECT_NE(ErrorOf(cut.substr(0, size)), "") << size;
}

TEST_F(MachineImageTest, LoadsRegistryAndDrives) {
  Write("machine.json", R"({"now":"2010-01-02T03:04:05"})");
  Write("registry/b.reg",
        "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\Software\\X]\n\"V\"=\"later\"\n");
  Write("registry/a.REG",
        "Windows Registry Editor Version 5.00\n\n[HKEY_LOCAL_MACHINE\\Software\\X]\n\"V\"=\"first\"\n");
  Write("registry/readme.txt", "not an export");
  Write("drives/c/Tools/Über.txt", "content");
  fs::create_directories(Root / "drives/D/Empty");
  const TFolderImage image(Root);
  TSimulatedMachine machine(ReadFacts(image));
  LoadImage(image, machine);
  TRegistryValue value;
  ASSERT_TRUE(machine.Registry().ValueAt(u"HKEY_LOCAL_MACHINE\\Software\\X", u"V", value));
  EXPECT_EQ(TextFromBytes(value.Data), u"later");
  std::vector<std::byte> data;
  ASSERT_EQ(machine.Files().ReadWhole(u"C:\\TOOLS\\\u00fcBER.TXT", 100, data), WinError::Success);
  EXPECT_EQ(data.size(), 7U);
  TFileFacts facts;
  ASSERT_EQ(machine.Files().GetFacts(u"D:\\Empty", facts), WinError::Success);
  EXPECT_TRUE(facts.IsFolder());
  EXPECT_EQ(facts.LastWriteTime, machine.Facts().Now);
  // the computer's file stays as it is, whatever happens to the machine's
  ASSERT_EQ(machine.Files().AppendBytes(u"C:\\Tools\\\u00dcber.txt", std::as_bytes(std::span(u"!", 1))),
            WinError::Success);
  ASSERT_EQ(machine.Files().ReadWhole(u"C:\\Tools\\\u00dcber.txt", 100, data), WinError::Success);
  EXPECT_EQ(data.size(), 9U);
  ASSERT_EQ(machine.Files().RemoveFile(u"C:\\Tools\\\u00dcber.txt"), WinError::Success);
  EXPECT_EQ(fs::file_size(Root / "drives/c/Tools/Über.txt"), 7U);
}

TEST_F(MachineImageTest, AcceptsAnEmptyFolderOnly) {
  EXPECT_EQ(Load(), "");
  EXPECT_THROW(TFolderImage(Root / "missing"), EImageError);
  Write("file", "");
  EXPECT_THROW(TFolderImage(Root / "file"), EImageError);
}

TEST_F(MachineImageTest, RefusesBrokenImages) {
  const struct {
    std::string_view File;
    std::string_view Text;
    std::string_view Start;
  } cases[] = {
      {"machine.json", "{\n7}", "machine.json:2: "},
      {"registry/x.reg", "Windows Registry Editor Version 5.00\n\n[HKEY_NONE\\x]\n", "registry/x.reg:3: "},
      {"drives/CD/x", "", "drives/CD: a folder below"},
      {"drives/1/x", "", "drives/1: a folder below"},
      {"drives/C", "", "drives/C: a drive must be a folder"},
      {"drives/C/a:b", "", "drives/C/a:b: Windows allows no such file name"},
      {"drives/C/dot./x", "", "drives/C/dot.: Windows allows no such file name"},
      {"drives", "", "drives: this must be a folder"},
      {"registry", "", "registry: this must be a folder"},
  };
  for (const auto& [file, text, start] : cases) {
    fs::remove_all(Root);
    Write(file, text);
    EXPECT_EQ(Load().substr(0, start.size()), start) << file;
  }
  fs::remove_all(Root);
  Write("drives/C/Twice", "");
  Write("drives/C/TWICE", "");
  EXPECT_EQ(Load(), "drives/C/Twice: another name differs only in the case of its letters");
}

TEST_F(MachineImageTest, NeverLeavesItsFolder) {
  Write("drives/C/real.txt", "inside");
  fs::create_symlink(Root / "drives/C/real.txt", Root / "drives/C/link.txt");
  EXPECT_EQ(Load(), "");
  for (const fs::path& target : {fs::path("/etc/passwd"), fs::path("/"), fs::path("nowhere"), Root / "drives"}) {
    fs::create_symlink(target, Root / "drives/C/bad");
    EXPECT_EQ(Load(), "drives/C/bad: the symbolic link does not lead to a file of the image") << target;
    fs::remove(Root / "drives/C/bad");
  }
  fs::remove_all(Root / "drives");
  fs::create_directory_symlink("/etc", Root / "drives");
  EXPECT_EQ(Load(), "drives: this must be a folder");
}

TEST(EmbeddedImageTest, LoadsTheSampleMachine) {
  const TEmbeddedImage image(EmbeddedMachine());
  TSimulatedMachine machine(ReadFacts(image));
  LoadImage(image, machine);
  EXPECT_TRUE(
      machine.Registry().HasKey(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall"));
  for (const TEmbeddedFile& file : EmbeddedResources()) {
    machine.Icons().RegisterOwnIcon(u"ICON", std::as_bytes(std::span(file.Begin, file.Size)));
    TIcon icon;
    EXPECT_EQ(machine.Icons().LoadOwnIcon(u"icon", icon), WinError::Success) << file.Path;
  }
  EXPECT_EQ(machine.OpenHandleCount(), 0U);
}

}  // namespace
}  // namespace varcolin
