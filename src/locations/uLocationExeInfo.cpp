#include "locations/uLocationExeInfo.h"

#include <algorithm>
#include <utility>
#include <vector>

#include "platform/Files.h"
#include "platform/Shell.h"
#include "products/uItemFolder.h"
#include "registry/uKeySnapshot.h"
#include "services/uDLLGlobals.h"
#include "services/uStatisticsLog.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uExceptions.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::u16string_view RunPath = u"Software\\Microsoft\\Windows\\CurrentVersion\\Run";
constexpr std::u16string_view UsageSettingsPath =
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\UserAssist\\Settings";
constexpr std::u16string_view UsageCountPath =
    u"Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\UserAssist\\{75048700-EF1F-11D0-9888-006097DEACF9}"
    u"\\Count";
constexpr std::u16string_view RunRecord = u"UEME_RUNPATH:";

bool IsExecutable(std::u16string_view AFile) { return SameText(ExtractFileExt(AFile), u".exe"); }
bool IsShortcut(std::u16string_view AFile) { return SameText(ExtractFileExt(AFile), u".lnk"); }

/// Path of a special folder with a trailing backslash; empty when there is none.
std::u16string SpecialFolderPath(std::int32_t ACsidl) {
  TOleText folder;
  DLLGlobals::ShellHelper()->GetSpecialFolder(ACsidl, folder.Receive());
  return folder.View().empty() ? std::u16string{} : IncludeTrailingPathDelimiter(folder.View());
}

/// A letter moved by half the alphabet; any other unit as it is.
char16_t Unscrambled(char16_t AUnit) noexcept {
  constexpr int HalfOfAlphabet = 13;
  const auto isIn = [AUnit](char16_t AFirst, char16_t ALast) { return AUnit >= AFirst && AUnit <= ALast; };
  if (isIn(u'a', u'm') || isIn(u'A', u'M')) return static_cast<char16_t>(AUnit + HalfOfAlphabet);
  if (isIn(u'n', u'z') || isIn(u'N', u'Z')) return static_cast<char16_t>(AUnit - HalfOfAlphabet);
  return AUnit;
}

}  // namespace

void TLocationExeInfo::ReadLocation() {
  try {
    ReadStartMenu();
    ReadRunKeys();
    ReadUsageRecords();
  } catch (const EAbort&) {
    // the reader thread sees for itself that it is to end
  } catch (const std::exception&) {
    StatisticsLog::AddErrorLn();
  }
}

void TLocationExeInfo::PassOn(std::u16string_view AFile) {
  CheckTerminated();
  try {
    TItemFolder::AddItem(AFile);
  } catch (const EAbort&) {
    throw;
  } catch (const std::exception&) {
    StatisticsLog::AddErrorLn();
  }
}

void TLocationExeInfo::ReadStartMenu() {
  for (const std::int32_t csidl : {SpecialFolder::Programs, SpecialFolder::CommonPrograms}) {
    if (std::u16string folder = SpecialFolderPath(csidl); !folder.empty()) ReadFolder(std::move(folder));
  }
}

void TLocationExeInfo::ReadFolder(std::u16string AFolder) {
  struct TLevel {
    std::u16string Folder;
    bool IsLinked;  ///< whether a link to a folder led here: below it no further one is followed, so every walk ends
    TFindHandle Walk;
  };
  // the folders that are being walked, each inside the one before: no depth of nesting exhausts the stack
  std::vector<TLevel> levels;
  TFoundFile found;
  // every walk gives its first entry by being opened
  const auto enter = [&](std::u16string APath, bool AIsLinked) {
    CheckTerminated();
    levels.push_back({std::move(APath), AIsLinked, {}});
    return FFiles.FindFirst(levels.back().Folder + u"*.*", levels.back().Walk, found);
  };
  TWinError code = enter(std::move(AFolder), false);
  while (!levels.empty()) {
    const TLevel& level = levels.back();
    if (code != WinError::Success) {
      levels.pop_back();
      if (!levels.empty()) code = FFiles.FindNext(levels.back().Walk, found);
      continue;
    }
    const bool isLink = (found.Facts.Attributes & FileAttribute::ReparsePoint) != 0;
    if (!found.Facts.IsFolder()) {
      if (IsShortcut(found.Name)) PassOn(level.Folder + found.Name);
    } else if (found.Name != u"." && found.Name != u".." && !(isLink && level.IsLinked)) {
      code = enter(level.Folder + found.Name + u"\\", isLink || level.IsLinked);
      continue;
    }
    code = FFiles.FindNext(level.Walk, found);
  }
}

void TLocationExeInfo::ReadRunKeys() {
  std::vector<std::uint32_t> views{KeyAccess::Read};
  if (WinVersionInfo::IsWow64Process()) views.push_back(KeyAccess::Read | KeyAccess::Wow64_64Key);
  for (const std::uint32_t access : views) {
    for (const ERegistryRoot root : {ERegistryRoot::CurrentUser, ERegistryRoot::LocalMachine}) {
      ReadRunKey(root, access);
    }
  }
}

void TLocationExeInfo::ReadRunKey(ERegistryRoot ARoot, std::uint32_t AAccess) {
  const auto values = TKeySnapshot::ReadAt(FRegistry, ARoot, RunPath, AAccess);
  if (!values) return;
  values->ForEachValue([](std::u16string_view, std::uint32_t AType, std::span<const std::byte> AData) {
    if (AType != RegType::String && AType != RegType::ExpandString) return;
    const std::u16string file = LowerCase(Dequoted(TextFromBytes(AData)));
    if (IsExecutable(file)) PassOn(file);
  });
}

std::u16string TLocationExeInfo::UsedPath(std::u16string_view AName, bool AIsScrambled) {
  std::u16string name(AName);
  if (AIsScrambled) std::ranges::transform(name, name.begin(), Unscrambled);
  if (!StartsText(RunRecord, name)) return {};
  return name.substr(RunRecord.size());
}

void TLocationExeInfo::ReadUsageRecords() {
  constexpr std::int32_t DesktopNamespace = 0;
  constexpr std::uint32_t Access = KeyAccess::Read | KeyAccess::Wow64_64Key;
  const auto settings = TKeySnapshot::ReadAt(FRegistry, ERegistryRoot::CurrentUser, UsageSettingsPath, Access);
  const bool isScrambled = !settings || !settings->Flag(u"NoEncrypt");
  const auto records = TKeySnapshot::ReadAt(FRegistry, ERegistryRoot::CurrentUser, UsageCountPath, Access);
  if (!records) return;
  const std::u16string desktop = SpecialFolderPath(DesktopNamespace);
  records->ForEachValue([&](std::u16string_view AName, std::uint32_t, std::span<const std::byte>) {
    const std::u16string path = UsedPath(AName, isScrambled);
    if (IsExecutable(path)) {
      PassOn(path);
    } else if (IsShortcut(path)) {
      // the shell records a shortcut of the desktop by its name alone
      PassOn(ExtractFilePath(path).empty() ? desktop + path : path);
    }
  });
}

}  // namespace varcolin
