#include "services/uStatisticsLog.h"

#include <exception>
#include <memory>
#include <mutex>
#include <optional>

#include "platform/Com.h"
#include "platform/Files.h"
#include "platform/Modules.h"
#include "platform/SystemFacts.h"
#include "registry/uKeyCache.h"
#include "services/uDLLGlobals.h"
#include "services/uLogText.h"
#include "services/uRegistryDump.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uDateTime.h"
#include "support/uExceptions.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::u16string_view LogFileName = u"Varcolin.log";
constexpr std::u16string_view UninstallKey = u"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr std::size_t SeparatorLength = 80;
constexpr std::uint64_t TicksPerMillisecond = 10'000;

std::u16string_view BooleanText(bool AValue) noexcept { return AValue ? u"True" : u"False"; }

struct TState {
  IRegistry& Registry;
  IWritableFiles& Files;
  ISystemFacts& System;
  IModules& Modules;
  ICom& Com;
  std::recursive_mutex Lock;  // re-entrant: Reset and AddError hold it while they add lines
  TLogText Text;
  std::optional<std::u16string> TimeSeparator;
  std::uint64_t PrefixTime = 0;  // universal time in milliseconds for which Prefix was made
  std::u16string Prefix;

  TState(IRegistry& ARegistry, IWritableFiles& AFiles, ISystemFacts& ASystem, IModules& AModules, ICom& ACom) noexcept
      : Registry(ARegistry), Files(AFiles), System(ASystem), Modules(AModules), Com(ACom) {}
};
std::unique_ptr<TState> LoadedState;

TState& State() {
  if (LoadedState == nullptr) throw EAssertionFailed(u"uStatisticsLog", __LINE__);
  return *LoadedState;
}

TSystemTime LocalTime(ISystemFacts& ASystem, TFileTime AUniversal) {
  TFileTime local = AUniversal;
  // a time that cannot be converted is shown as it is
  static_cast<void>(ASystem.ToLocalTime(AUniversal, local));
  return FileTimeToSystemTime(local);
}

const std::u16string& TimeSeparator(TState& AState) {
  if (!AState.TimeSeparator) {
    std::u16string text;
    const bool known =
        AState.System.GetLocaleText(LocaleInfo::UserDefault, LocaleInfo::TimeSeparator, text) == WinError::Success;
    AState.TimeSeparator = known ? text : u":";
  }
  return *AState.TimeSeparator;
}

/// The time that begins a line, with what separates it from the text.
std::u16string_view LinePrefix(TState& AState) {
  const TFileTime now = AState.System.UniversalTime();
  const std::uint64_t time = now.Ticks / TicksPerMillisecond;
  if (AState.Prefix.empty() || AState.PrefixTime != time) {
    AState.Prefix = FormatTime(LocalTime(AState.System, now), TimeSeparator(AState)) + u": ";
    AState.PrefixTime = time;
  }
  return AState.Prefix;
}

/// Appends one line whose text APut writes part by part; all of it or nothing.
template <class TPut>
void AddLine(TState& AState, TPut APut) {
  const std::u16string_view prefix = LinePrefix(AState);
  const std::size_t size = AState.Text.Size();
  try {
    APut(AState.Text << prefix);
    AState.Text.EndLine();
  } catch (...) {
    AState.Text.ShrinkTo(size);
    throw;
  }
}

void AddSeparator() { StatisticsLog::Add(std::u16string(SeparatorLength, u'-')); }

void AddSystemLines(TState& /*AState*/) {
  const auto add = [](std::u16string_view AFormat, std::u16string_view AText) { StatisticsLog::Add(AFormat, {AText}); };
  add(u"Version:        %s", TextOf(WinVersionInfo::WindowsVersion()));
  add(u"Architecture:   %s", TextOf(WinVersionInfo::ProcessorArchitecture()));
  add(u"Service Pack:   %s", TextOf(WinVersionInfo::ServicePack()));
  add(u"Edition:        %s", TextOf(WinVersionInfo::WindowsEdition()));
  for (const std::u16string_view library : {u"shlwapi.dll", u"shell32.dll", u"comctl32.dll"}) {
    TDllVersion version;
    if (WinVersionInfo::GetDllVersion(library, version)) {
      StatisticsLog::Add(u"%s: %d.%d", {library, version.Major, version.Minor});
    }
  }
  add(u"IsWow64Process: %s", BooleanText(WinVersionInfo::IsWow64Process()));
}

void AddUserLines(TState& AState) {
  const TInterfaceRef<IGlobals> globals = DLLGlobals::Globals();
  TOleText text;
  globals->GetNameOfUser(text.Receive());
  StatisticsLog::Add(u"User name       : %s", {text.View()});
  StatisticsLog::Add(u"User is admin   : %s", {BooleanText(DLLGlobals::BrismereService()->IsUserAdmin())});
  globals->GetProductVersion(text.Receive());
  StatisticsLog::Add(u"Product version : %s", {text.View()});
  std::u16string ownPath;
  const TWinError error = AState.Modules.GetOwnPath(ownPath);
  if (error != WinError::Success) throw EOSError(error, AState.System.ErrorText(error));
  StatisticsLog::Add(u"Program version : %s", {DLLGlobals::VersionValue(ownPath, u"FileVersion")});
}

void AddRegistryLines(TState& AState, TKeyCache& AKeys) {
  TRegistryDump dump(AKeys, [&AState](std::initializer_list<std::u16string_view> AParts) {
    AddLine(AState, [AParts](TLogText& AText) {
      for (const std::u16string_view part : AParts) AText << part;
    });
  });
  const bool wow64 = WinVersionInfo::IsWow64Process();
  for (const ERegistryRoot root : {ERegistryRoot::LocalMachine, ERegistryRoot::CurrentUser}) {
    dump.Run(root, UninstallKey, 0);
    if (wow64) dump.Run(root, UninstallKey, KeyAccess::Wow64_64Key);
  }
}

/// Writes one part of the header, and an error block when it fails.
template <class TSection>
void AddSection(TSection ASection) {
  try {
    ASection();
  } catch (const std::exception&) {
    StatisticsLog::AddError();
  }
  AddSeparator();
}

void AddHeader(TState& AState, TKeyCache& AKeys) {
  AddSeparator();
  const TSystemTime now = LocalTime(AState.System, AState.System.UniversalTime());
  StatisticsLog::Add(u"System info at %s.", {FormatDateAndTime(now, TimeSeparator(AState))});
  AddSeparator();
  AddSection([&] { AddSystemLines(AState); });
  AddSection([&] { AddUserLines(AState); });
  AddSection([&] { AddRegistryLines(AState, AKeys); });
}

/// Makes a folder, given with a trailing backslash, with all its missing parents.
void MakeFolders(IWritableFiles& AFiles, std::u16string_view AFolder) {
  TFileFacts facts;
  if (AFiles.GetFacts(ExcludeTrailingPathDelimiter(AFolder), facts) == WinError::Success) return;
  for (std::size_t at = AFolder.find(u'\\'); at != std::u16string_view::npos; at = AFolder.find(u'\\', at + 1)) {
    // most of them exist, and whether the last one does shows when the file is written
    if (at != 0 && AFolder[at - 1] != u':') static_cast<void>(AFiles.MakeFolder(AFolder.substr(0, at)));
  }
}

void AddErrorLines(bool AEmptyLineBefore) {
  const std::scoped_lock guard(State().Lock);
  const TErrorText error = CurrentErrorText();
  if (AEmptyLineBefore) StatisticsLog::Add(u"");
  AddSeparator();
  StatisticsLog::Add(u"Error class   : %s", {error.ClassText});
  StatisticsLog::Add(u"Error message : %s", {error.Message});
  AddSeparator();
}

}  // namespace

void StatisticsLog::Load(IRegistry& ARegistry, IWritableFiles& AFiles, ISystemFacts& ASystem, IModules& AModules,
                         ICom& ACom) {
  LoadedState = std::make_unique<TState>(ARegistry, AFiles, ASystem, AModules, ACom);
}

void StatisticsLog::Unload() noexcept { LoadedState.reset(); }

void StatisticsLog::Reset() {
  TKeyCache keys(State().Registry);
  Reset(keys);
}

void StatisticsLog::Reset(TKeyCache& AKeys) {
  TState& state = State();
  const std::scoped_lock guard(state.Lock);
  const TComScope com(state.Com, ECom::Multithreaded);
  try {
    state.Text.Clear();
    state.TimeSeparator.reset();
    state.Prefix.clear();
    AddHeader(state, AKeys);
  } catch (const std::exception&) {
    AddError();
  }
}

void StatisticsLog::Add(std::u16string_view AText) {
  TState& state = State();
  const std::scoped_lock guard(state.Lock);
  AddLine(state, [AText](TLogText& ALine) { ALine << AText; });
}

void StatisticsLog::Add(std::u16string_view AFormat, std::initializer_list<TFormatArg> AArgs) {
  Add(Format(AFormat, AArgs));
}

void StatisticsLog::AddError() noexcept {
  try {
    AddErrorLines(false);
  } catch (...) {
    // the log is where failures are told: there is nowhere to tell this one
  }
}

void StatisticsLog::AddErrorLn() noexcept {
  try {
    AddErrorLines(true);
  } catch (...) {
    // as above
  }
}

void StatisticsLog::Write() {
  TState& state = State();
  const std::scoped_lock guard(state.Lock);
  const std::u16string path = FilePath();
  MakeFolders(state.Files, ExtractFilePath(path));
  // a file that cannot be replaced or written is passed over; the lines are kept for the next time
  static_cast<void>(state.Files.RemoveFile(path));
  static_cast<void>(state.Files.WriteWhole(path, state.Text.Bytes()));
}

std::u16string StatisticsLog::FilePath() {
  TOleText text;
  DLLGlobals::Helper()->GetDataFolder(text.Receive());
  std::u16string path = IncludeTrailingPathDelimiter(text.View());
  DLLGlobals::Globals()->GetMakerName(text.Receive());
  path.append(text.View()).append(u"\\");
  DLLGlobals::Globals()->GetProductName(text.Receive());
  return path.append(text.View()).append(u"\\Logs\\").append(LogFileName);
}

}  // namespace varcolin
