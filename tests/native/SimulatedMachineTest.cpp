// What only a simulated machine can show: marks on files, links, scripted answers, other Windows versions.
#include "platform/simulated/SimulatedMachine.h"

#include <gtest/gtest.h>

#include "common/Facts.h"
#include "common/LinkBuilder.h"
#include "common/PeBuilder.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::size_t Limit = 1000;

TEST(SimulatedFilesTest, MarksDecideAboutErrors) {
  TSimulatedMachine machine;
  TSimulatedFiles& files = machine.Files();
  files.AddFile(u"C:\\a\\busy", "x");
  files.AddFile(u"C:\\a\\denied\\file", "x");
  files.MarkInUse(u"C:\\a\\busy");
  files.MarkDenied(u"C:\\a\\denied");
  std::vector<std::byte> data;
  TFileFacts facts;
  TFindHandle walk;
  TFoundFile entry;
  EXPECT_EQ(files.ReadWhole(u"C:\\a\\busy", Limit, data), WinError::SharingViolation);
  EXPECT_EQ(files.RemoveFile(u"C:\\a\\busy"), WinError::SharingViolation);
  EXPECT_EQ(files.AppendBytes(u"C:\\a\\busy", {}), WinError::SharingViolation);
  EXPECT_EQ(files.GetFacts(u"C:\\a\\busy", facts), WinError::Success);
  EXPECT_EQ(files.GetFacts(u"C:\\a\\denied", facts), WinError::Success);
  EXPECT_EQ(files.GetFacts(u"C:\\a\\denied\\file", facts), WinError::AccessDenied);
  EXPECT_EQ(files.FindFirst(u"C:\\a\\denied\\*", walk, entry), WinError::AccessDenied);
  EXPECT_TRUE(files.Changes().empty());
  files.MarkInUse(u"C:\\a\\busy", false);
  ASSERT_EQ(files.RemoveFile(u"c:/A/./BUSY"), WinError::Success);
  EXPECT_EQ(files.Changes(), (std::vector<TFileChange>{{EFileChange::Removed, u"C:\\a\\busy"}}));
}

TEST(SimulatedFilesTest, FollowsLinksAndNoticesCircles) {
  TSimulatedMachine machine;
  TSimulatedFiles& files = machine.Files();
  files.AddFile(u"C:\\real\\file", "x");
  files.AddLink(u"C:\\link", u"C:\\real");
  files.AddLink(u"C:\\up\\self", u"C:\\up");
  files.AddLink(u"C:\\one", u"C:\\two");
  files.AddLink(u"C:\\two", u"C:\\one");
  files.AddLink(u"C:\\grow", u"C:\\grow\\deeper");
  files.AddLink(u"C:\\broken", u"E:\\gone");
  TFileFacts facts;
  ASSERT_EQ(files.GetFacts(u"C:\\link\\file", facts), WinError::Success);
  ASSERT_EQ(files.GetFacts(u"C:\\link", facts), WinError::Success);
  EXPECT_EQ(facts.Attributes, FileAttribute::Folder | FileAttribute::ReparsePoint);
  ASSERT_EQ(files.GetFacts(u"C:\\up\\self\\self\\self", facts), WinError::Success);
  constexpr TWinError CannotResolve = 1921;
  EXPECT_EQ(files.GetFacts(u"C:\\one\\x", facts), CannotResolve);
  EXPECT_EQ(files.GetFacts(u"C:\\grow\\x", facts), CannotResolve);
  EXPECT_EQ(files.GetFacts(u"C:\\broken\\x", facts), WinError::PathNotFound);
  ASSERT_EQ(files.RemoveFolder(u"C:\\link"), WinError::Success);
  EXPECT_TRUE(files.Contains(u"C:\\real\\file"));
}

TEST(SimulatedFilesTest, RedirectsAsTheSystemDoes) {
  const struct {
    bool IsVista;
    bool IsWow64;
    std::u16string_view Path;
    TWinError Error;
  } cases[] = {
      {true, true, u"C:\\Windows\\System32\\native", WinError::FileNotFound},
      {true, true, u"C:\\Windows\\Sysnative\\native", WinError::Success},
      {true, true, u"C:\\Windows\\System32\\drivers\\etc\\hosts", WinError::Success},
      {true, true, u"c:/windows/SYSTEM32/other", WinError::Success},
      {true, true, u"other", WinError::Success},
      {true, false, u"C:\\Windows\\System32\\native", WinError::Success},
      {true, false, u"C:\\Windows\\Sysnative\\native", WinError::PathNotFound},
      {false, true, u"C:\\Windows\\Sysnative\\native", WinError::PathNotFound},
      {false, true, u"C:\\Windows\\System32\\other", WinError::Success},
  };
  for (const auto& [isVista, isWow64, path, error] : cases) {
    TSimulatedFacts facts;
    facts.IsWow64 = isWow64;
    if (!isVista) facts.Version.Major = 5;
    TSimulatedMachine machine(facts);
    machine.Files().AddFile(u"C:\\Windows\\System32\\native", "x");
    machine.Files().AddFile(u"C:\\Windows\\System32\\drivers\\etc\\hosts", "x");
    machine.Files().AddFile(u"C:\\Windows\\SysWOW64\\other", "x");
    TFileFacts found;
    EXPECT_EQ(machine.Files().GetFacts(path, found), error) << ToUtf8(path);
    std::uintptr_t old = 0;
    EXPECT_EQ(machine.Files().DisableRedirection(old), isWow64 ? WinError::Success : WinError::InvalidFunction);
    EXPECT_EQ(machine.OpenHandleCount(), isWow64 ? 1U : 0U) << "a thread without redirection counts";
  }
}

TEST(SimulatedFilesTest, ResolvesHostilePathsQuickly) {
  TSimulatedMachine machine;
  TFileFacts facts;
  std::u16string dots = u"C:\\";
  for (int i = 0; i < 80; ++i) dots += u"..\\";
  EXPECT_EQ(machine.Files().GetFacts(dots + u"Windows", facts), WinError::Success);
  std::u16string deep = u"\\\\?\\C:";
  while (deep.size() < 32000) deep += u"\\d";
  machine.Files().AddFolder(deep);
  EXPECT_EQ(machine.Files().GetFacts(deep, facts), WinError::Success);
  EXPECT_EQ(machine.Files().GetFacts(deep.substr(4), facts), WinError::PathNotFound) << "too long without the prefix";
  const std::u16string stars(250, u'*');
  machine.Files().AddFile(u"C:\\w\\" + std::u16string(250, u'a'), "x");
  TFindHandle walk;
  TFoundFile entry;
  EXPECT_EQ(machine.Files().FindFirst(u"C:\\w\\" + stars + u"b", walk, entry), WinError::FileNotFound);
  for (const std::u16string_view odd : {u"C:", u"c:Windows", u"\\", u"/", u"...", u" ", u"\\\\server\\share\\x",
                                        u"\\\\.\\C:", u"\\\\?\\UNC\\s\\x", u"\\\\?\\C:", u"1:\\x", u"::", u"C:\\a:b"}) {
    static_cast<void>(machine.Files().GetFacts(odd, facts));
  }
}

void* VARCOLIN_CALL Answer(const char16_t*, std::uint32_t AParam) {
  static int object;
  return AParam == 0 ? &object : nullptr;
}

TEST(SimulatedModulesTest, ServesRegisteredLibrariesFromTheHostsFolder) {
  TSimulatedMachine machine;
  TSimulatedModules& modules = machine.Modules();
  modules.RegisterModule(u"Sister.dll", Answer);
  machine.SetHostPath(u"D:\\Suite\\host.exe");
  const std::pair<std::u16string_view, TWinError> cases[] = {
      {u"sister", WinError::Success},
      {u"SISTER.DLL", WinError::Success},
      {u"D:\\Suite\\Sister.dll", WinError::Success},
      {u"C:\\Sister.dll", WinError::ModuleNotFound},
      {u"Sister.", WinError::ModuleNotFound},
  };
  for (const auto& [name, error] : cases) {
    TModule module;
    EXPECT_EQ(modules.LoadModule(name, module), error) << ToUtf8(name);
    if (error != WinError::Success) continue;
    TProcedure procedure = nullptr;
    EXPECT_EQ(modules.FindExport(module, "getinstance", procedure), WinError::ProcedureNotFound);
    ASSERT_EQ(modules.FindExport(module, "GetInstance", procedure), WinError::Success);
    EXPECT_NE(reinterpret_cast<TGetInstance>(procedure)(u"", 0), nullptr);
  }
  std::u16string path;
  ASSERT_EQ(modules.GetOwnPath(path), WinError::Success);
  EXPECT_EQ(path, u"D:\\Suite\\Varcolin.dll");
}

TEST(SimulatedModulesTest, RefusesExecutablesOfAnotherProcessor) {
  TSimulatedMachine machine;
  machine.Files().AddFile(u"C:\\x\\same.dll", testing::TPeBuilder().Build(false));
  machine.Files().AddFile(u"C:\\x\\other.dll", testing::TPeBuilder().Build(true));
  TModule module;
  EXPECT_EQ(machine.Modules().LoadModule(u"C:\\x\\other.dll", module), WinError::BadExecutable);
  EXPECT_EQ(machine.Modules().LoadModule(u"C:\\x\\same.dll", module), WinError::Success);
  EXPECT_EQ(machine.OpenHandleCount(), 1U);
}

TEST(SimulatedShellTest, KnowsWhatLiesOnDrivesAndOnTheDesktopOnly) {
  constexpr TGUID controlPanel{0x21EC2020, 0x3AEA, 0x1069, {0xA2, 0xDD, 0x08, 0x00, 0x2B, 0x30, 0x30, 0x9D}};
  constexpr TGUID documents{0x450D8FBA, 0xAD25, 0x11D0, {0x98, 0xA8, 0x08, 0x00, 0x36, 0x1B, 0x11, 0x03}};
  const testing::TBytes place = testing::MakePlaceItem(controlPanel);
  const testing::TBytes folder = testing::MakePlaceItem(documents);
  const testing::TBytes drive = testing::MakeDriveItem(u"C:\\");
  const testing::TBytes file = testing::MakeFileItem(u"c.exe", false);
  const testing::TBytes unknown = {std::byte{4}, {}, {}, {}};
  const struct {
    std::vector<testing::TBytes> Items;
    std::u16string_view Name;  // empty when there is none
  } cases[] = {
      {{}, u"C:\\Users\\User\\Desktop"},
      {{file}, u"C:\\Users\\User\\Desktop\\c.exe"},
      {{folder, file}, u"C:\\Users\\User\\Documents\\c.exe"},
      {{place, place}, u"::{21EC2020-3AEA-1069-A2DD-08002B30309D}\\::{21EC2020-3AEA-1069-A2DD-08002B30309D}"},
      {{place, file}, u""},
      {{place, file, drive, file}, u"C:\\c.exe"},
      {{drive, file, drive, file}, u"C:\\c.exe"},
      {{drive, file, folder}, u"C:\\Users\\User\\Documents"},
      {{unknown, drive, file}, u""},
  };
  TSimulatedMachine machine;
  TShellFolder desktop;
  ASSERT_EQ(machine.Shell().GetDesktopFolder(desktop), WinError::Success);
  for (const auto& [items, expected] : cases) {
    testing::TBytes list;
    for (const testing::TBytes& item : items) testing::Append(list, item);
    std::u16string name;
    const TWinError error = machine.Shell().GetDisplayName(desktop, list, DisplayNameForm::ForParsing, name);
    EXPECT_EQ(ToUtf8(name), ToUtf8(expected));
    EXPECT_EQ(error, expected.empty() ? WinError::NotSupported : WinError::Success) << ToUtf8(expected);
  }

  TSimulatedFacts homeless;
  homeless.Environment = {{u"USERPROFILE", u""}};
  TSimulatedMachine other(homeless);
  std::u16string name = u"untouched";
  testing::TBytes list = folder;
  testing::Append(list, file);
  EXPECT_EQ(other.Shell().GetDisplayName(desktop, list, DisplayNameForm::ForParsing, name), WinError::FileNotFound);
  EXPECT_EQ(name, u"untouched");
}

TEST(SimulatedIconsTest, KeepsThePictureOfTheRightSize) {
  TSimulatedMachine machine;
  const std::uint8_t sides[] = {16, 32, 48};
  machine.Files().AddFile(u"C:\\three.ico", testing::MakeIconFile(sides));
  TIcon large, small;
  ASSERT_EQ(machine.Icons().ExtractIcons(u"C:\\three.ico", 0, large, small), WinError::Success);
  EXPECT_EQ(machine.Icons().ExtractIcons(u"C:\\three.ico", 1, large, small), WinError::ResourceNameNotFound);
  TImageList list;
  ASSERT_EQ(machine.Icons().MakeImageList(32, 32, 1, 1, list), WinError::Success);
  std::int32_t index = 0;
  ASSERT_EQ(machine.Icons().AppendIcon(list, large, index), WinError::Success);
  ASSERT_EQ(machine.Icons().AppendIcon(list, small, index), WinError::Success);
  const std::vector<TSimulatedIcon> images = machine.Icons().ImagesOf(list.Value());
  ASSERT_EQ(images.size(), 2U);
  EXPECT_EQ(*images[0].Picture, testing::MakePicture(32, 0xFF000000U + 32));
  EXPECT_EQ(*images[1].Picture, testing::MakePicture(16, 0xFF000000U + 16));
}

TEST(SimulatedMachineTest, KnowsOlderSystems) {
  TSimulatedMachine machine(testing::FactsOfXP());
  TMachine facilities = machine.Facilities();
  std::u16string text = u"untouched";
  std::uint32_t type = 0;
  bool answer = true;
  EXPECT_EQ(facilities.System.GetLocaleTextByName(u"en-US", LocaleInfo::Language, text), WinError::ProcedureNotFound);
  EXPECT_EQ(facilities.System.GetProductType(6, 0, 0, 0, type), WinError::ProcedureNotFound);
  EXPECT_EQ(facilities.System.QueryWow64(answer), WinError::ProcedureNotFound) << "before service pack 2";
  EXPECT_EQ(facilities.Shell.GetSpecialFolder(SpecialFolder::ProgramFilesX86, text), WinError::FileNotFound);
  EXPECT_EQ(text, u"untouched");
  EXPECT_EQ(facilities.System.GetLocaleText(0x9, LocaleInfo::Language, text), WinError::Success);
  EXPECT_EQ(text, u"English (United States)");
  EXPECT_EQ(facilities.Shell.GetSpecialFolder(SpecialFolder::CommonAppData, text), WinError::Success);
  EXPECT_EQ(text, u"C:\\Documents and Settings\\All Users\\Application Data");
  TFileFacts folder;
  EXPECT_EQ(facilities.Files.GetFacts(text, folder), WinError::Success);
  TDllVersion version;
  EXPECT_EQ(facilities.Modules.QueryDllVersion(u"shell32", version), WinError::Success);
  EXPECT_EQ(version.Major, 6U);
}

TEST(SimulatedSystemTest, KeepsLocalTimesInRange) {
  TSimulatedFacts facts;
  facts.TimeZoneMinutes = -90;
  TSimulatedMachine machine(facts);
  constexpr std::uint64_t Hour = 36'000'000'000;
  TFileTime local{1};
  EXPECT_EQ(machine.System().ToLocalTime({2 * Hour}, local), WinError::Success);
  EXPECT_EQ(local.Ticks, Hour / 2);
  EXPECT_EQ(machine.System().ToLocalTime({Hour}, local), WinError::InvalidParameter);
  EXPECT_EQ(machine.System().ToLocalTime({0xFFFFFFFFFFFFFFFF}, local), WinError::InvalidParameter);
  EXPECT_EQ(local.Ticks, Hour / 2);
}

}  // namespace
}  // namespace varcolin
