#include "support/uWindowsExt.h"

#include <memory>

#include "platform/Sync.h"
#include "platform/SystemFacts.h"
#include "support/uExceptions.h"
#include "support/uFormat.h"

namespace varcolin {
namespace {

struct TState {
  IProcesses& Processes;
  IProcessStart& Starts;
  ITopWindows& Windows;
  ISystemFacts& System;
  ISync& Sync;
};
std::unique_ptr<TState> LoadedState;

TState& State() {
  if (LoadedState == nullptr) throw EAssertionFailed(u"uWindowsExt", __LINE__);
  return *LoadedState;
}

void Check(TWinError ACode) {
  if (ACode != WinError::Success) throw EOSError(ACode, State().System.ErrorText(ACode));
}

}  // namespace

void WindowsExt::Load(IProcesses& AProcesses, IProcessStart& AStarts, ITopWindows& AWindows, ISystemFacts& ASystem,
                      ISync& ASync) {
  LoadedState = std::make_unique<TState>(TState{AProcesses, AStarts, AWindows, ASystem, ASync});
}

void WindowsExt::Unload() noexcept { LoadedState.reset(); }

void WindowsExt::CreateProcessAsCurrentUser(std::u16string_view ACommand, TProcessInfo& AProcessInfo) {
  constexpr std::uint32_t flags =
      StartFlag::DefaultErrorMode | StartFlag::BreakAwayFromJob | StartFlag::NewProcessGroup;
  IProcessStart& starts = State().Starts;
  TToken own;
  TToken primary;
  Check(starts.OpenOwnToken(TokenAccess::All, own));
  Check(starts.DuplicateAsPrimary(own, primary));
  const TWinError code = starts.StartAsUser(primary, ACommand, flags, AProcessInfo);
  if (code == WinError::PrivilegeNotHeld) {
    Check(starts.StartAsSelf(ACommand, flags, AProcessInfo));
  } else if (code != WinError::Success) {
    throw Exception(Format(u"Error execute command: \"%s\". Message: %s.", {ACommand, State().System.ErrorText(code)}));
  }
}

void WindowsExt::CreateProcessAsCurrentUser(std::u16string_view ACommand) {
  TProcessInfo process;
  CreateProcessAsCurrentUser(ACommand, process);
}

std::vector<TProcessEntry> WindowsExt::WTSEnumerateProcesses() {
  std::vector<TProcessEntry> processes;
  Check(State().Processes.EnumProcesses(processes));
  return processes;
}

std::u16string WindowsExt::GetModuleFileNameEx(const TProcess& AProcess) {
  std::u16string path;
  return State().Processes.GetModulePath(AProcess, path) == WinError::Success ? path : std::u16string();
}

std::u16string WindowsExt::GetProcessImageFileName(const TProcess& AProcess) {
  std::u16string path;
  return State().Processes.GetImagePath(AProcess, path) == WinError::Success ? path : std::u16string();
}

std::u16string WindowsExt::GetWindowText(TWindowHandle AWnd) { return State().Windows.GetTitle(AWnd); }

std::uint32_t WindowsExt::GetTickDelta(std::uint32_t AStart) { return State().Sync.TickCount() - AStart; }

std::u16string WindowsExt::GetUserSID() {
  std::u16string sid;
  Check(State().Processes.GetUserSid(sid));
  return sid;
}

std::u16string WindowsExt::GetLocaleInfoEx(std::u16string_view ALocale, std::uint32_t AType) {
  std::u16string text;
  if (State().System.GetLocaleTextByName(ALocale, AType, text) != WinError::Success) return {};
  return text;
}

}  // namespace varcolin
