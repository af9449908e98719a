// What the host writes into files: icons, and lists as pages.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "common/PeBuilder.h"
#include "native/HostProgram.h"
#include "platform/simulated/IconPixels.h"
#include "platform/simulated/PeResources.h"

namespace varcolin::host {
namespace {

using testing::Quoted;
using testing::ReadAll;
using testing::RunHost;
using testing::RunShell;
using testing::TBytes;
using testing::TOutcome;
using testing::TTemporaryFolder;

std::string AsString(const TBytes& ABytes) { return {reinterpret_cast<const char*>(ABytes.data()), ABytes.size()}; }

std::span<const std::byte> AsBytes(const std::string& AText) { return std::as_bytes(std::span(AText)); }

/// A machine with a program that has an icon, one whose icon's picture is broken, and one whose name is hostile.
class HostPictures : public ::testing::Test {
 protected:
  HostPictures() {
    constexpr std::uint8_t side = 32;
    testing::TPeBuilder builder;
    builder.AddIcon(0x1234, std::span(&side, 1));
    FMachine.Put("drives/C/T/app.exe", AsString(builder.Build()));
    TBytes broken = testing::MakeIconFile(std::span(&side, 1));
    testing::Patch(broken, 22 + 14, 3, 2);  // no number of bits
    FMachine.Put("drives/C/T/broken.ico", AsString(broken));
    const std::string key = "\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
    const auto entry = [&](const std::string& AKey, const std::string& AName, const std::string& AIcon) {
      return key + AKey + "]\n\"DisplayName\"=\"" + AName + "\"\n\"UninstallString\"=\"C:\\\\T\\\\u.exe\"\n" +
             "\"DisplayIcon\"=\"C:\\\\T\\\\" + AIcon + "\"\n";
    };
    FMachine.Put("registry/a.reg", "Windows Registry Editor Version 5.00\n" + entry("a", "Painted Tool", "app.exe") +
                                       entry("b", "Broken Tool", "broken.ico") + entry("c", Hostile, "app.exe"));
  }

  [[nodiscard]] std::string File(const std::string& AName) const { return FOutput.Name() + '/' + AName; }
  [[nodiscard]] TOutcome WriteIcon(const std::string& AName, const std::string& AFile) const {
    return RunHost({"icon", AName, "-o", AFile, "--machine", FMachine.Name()});
  }
  /// The names of what has been written.
  [[nodiscard]] std::size_t FileCount() const {
    return static_cast<std::size_t>(
        std::distance(std::filesystem::directory_iterator(FOutput.Name()), std::filesystem::directory_iterator()));
  }

  static constexpr const char* Hostile = "</script><img src=x onerror='document.title=1'>&amp;{{rows}}\u202E\u0007";

  TTemporaryFolder FMachine;
  TTemporaryFolder FOutput;
};

TEST_F(HostPictures, WritesAnIconInBothFormats) {
  for (const char* const name : {"tool.png", "tool.ICO"}) {
    const TOutcome outcome = WriteIcon("painted", File(name));
    EXPECT_EQ(outcome.ExitCode, 0) << outcome.Error;
    EXPECT_EQ(outcome.Output, "");
    EXPECT_EQ(outcome.Error, "varcolin: the icon of Painted Tool is in " + File(name) + "\n");
  }
  std::vector<std::uint8_t> expected;
  for (int i = 0; i < 32 * 32; ++i) expected.insert(expected.end(), {0, 0x12, 0x34, 0xFF});
  const std::optional<TIconPixels> png = DecodeIconPicture(AsBytes(ReadAll(File("tool.png"))));
  ASSERT_TRUE(png);
  EXPECT_EQ(png->Width, 32U);
  EXPECT_EQ(png->Bytes, expected);
  const std::string ico = ReadAll(File("tool.ICO"));
  const std::vector<TIconImage> images = ReadIconFile(AsBytes(ico));
  ASSERT_EQ(images.size(), 1U);
  EXPECT_EQ(images[0].Width * 1000 + images[0].BitCount, 32032U);
  EXPECT_EQ(DecodeIconPicture(images[0].Data)->Bytes, expected);
}

TEST_F(HostPictures, SaysWhyThereIsNoIcon) {
  const struct {
    const char* Name;
    std::string File;
    int ExitCode;
    const char* Said;
  } cases[] = {{"painted", File("a.gif"), 2, "must end in .png or .ico"},
               {"painted", File(".png"), 2, "must end in .png or .ico"},
               {"tool", File("a.png"), 1, "names 2 products"},
               {"nothing", File("a.png"), 1, "no program or update is called"},
               {"broken", File("a.png"), 1, "its picture is broken"},
               {"painted", File("none/a.png"), 1, "none/a.png cannot be written: No such file or directory"}};
  for (const auto& [name, file, exitCode, said] : cases) {
    const TOutcome outcome = WriteIcon(name, file);
    EXPECT_EQ(outcome.ExitCode, exitCode) << outcome.Error;
    EXPECT_NE(outcome.Error.find(said), std::string::npos) << outcome.Error;
  }
  EXPECT_EQ(RunHost({"icon", "painted"}).ExitCode, 2);
  EXPECT_EQ(FileCount(), 0U);
}

TEST_F(HostPictures, KeepTheOldFileWhenTheNewOneCannotBeWhole) {
  FOutput.Put("list.html", "what was here");
  std::filesystem::create_symlink("list.html", File("link.html"));
  const std::string write = "\"$HOST\" programs --machine " + Quoted(FMachine.Name()) + " --html ";
  const TOutcome full = RunShell("trap '' XFSZ; ulimit -f 1; " + write + Quoted(File("link.html")));
  EXPECT_EQ(full.ExitCode, 1);
  EXPECT_NE(full.Error.find("cannot be written: File too large"), std::string::npos) << full.Error;
  EXPECT_EQ(ReadAll(File("list.html")), "what was here");
  EXPECT_EQ(FileCount(), 2U);
  EXPECT_EQ(RunShell(write + Quoted(File("link.html"))).ExitCode, 0);
  EXPECT_TRUE(ReadAll(File("list.html")).starts_with("<!DOCTYPE html>")) << "a link is followed";
  EXPECT_TRUE(std::filesystem::is_symlink(File("link.html")));
  EXPECT_EQ(FileCount(), 2U);
  EXPECT_EQ(RunShell(write + "/dev/full").ExitCode, 1);
  EXPECT_TRUE(std::filesystem::exists("/dev/full"));
  EXPECT_TRUE(RunShell(write + "/dev/stdout | cat").Output.ends_with("</html>\n"));
}

std::size_t CountOf(const std::string& AText, std::string_view AWhat) {
  std::size_t count = 0;
  for (std::size_t at = 0; (at = AText.find(AWhat, at)) != std::string::npos; ++at) ++count;
  return count;
}

TEST_F(HostPictures, WritesAPageInWhichEveryTextIsText) {
  const TOutcome outcome = RunHost({"programs", "--html", File("p.html"), "--json", "--machine", FMachine.Name()});
  EXPECT_EQ(outcome.ExitCode, 0) << outcome.Error;
  EXPECT_EQ(outcome.Error, "varcolin: 3 programs are in " + File("p.html") + "\n");
  EXPECT_EQ(nlohmann::json::parse(outcome.Output).at("programs").size(), 3U) << "both at once";
  const std::string page = ReadAll(File("p.html"));
  EXPECT_NE(page.find("<bdi>&lt;/script&gt;&lt;img src=x onerror=&#39;document.title=1&#39;&gt;&amp;amp;{{rows}}"
                      "\uFFFD\uFFFD</bdi>"),
            std::string::npos)
      << page;
  EXPECT_EQ(CountOf(page, "</script>"), 1U);
  EXPECT_EQ(CountOf(page, "data:image/png;base64,"), 1U) << "one picture for two programs, none for the broken one";
  EXPECT_EQ(CountOf(page, "<use "), 2U);
  EXPECT_EQ(CountOf(page, "<tr>"), 4U);

  EXPECT_EQ(RunHost({"updates", "--html", File("u.html"), "--filter", "<b>", "--machine", FMachine.Name()}).Error,
            "varcolin: 0 updates are in " + File("u.html") + "\n");
  EXPECT_NE(ReadAll(File("u.html")).find("<q>&lt;b&gt;</q>"), std::string::npos);
}

}  // namespace
}  // namespace varcolin::host
