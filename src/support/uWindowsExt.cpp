#include "support/uWindowsExt.h"

#include <memory>

#include "platform/Processes.h"
#include "platform/Sync.h"
#include "platform/SystemFacts.h"
#include "support/uExceptions.h"

namespace varcolin {
namespace {

struct TState {
  IProcesses& Processes;
  ISystemFacts& System;
  ISync& Sync;

  TState(IProcesses& AProcesses, ISystemFacts& ASystem, ISync& ASync) noexcept
      : Processes(AProcesses), System(ASystem), Sync(ASync) {}
};
std::unique_ptr<TState> LoadedState;

TState& State() {
  if (LoadedState == nullptr) throw EAssertionFailed(u"uWindowsExt", __LINE__);
  return *LoadedState;
}

}  // namespace

void WindowsExt::Load(IProcesses& AProcesses, ISystemFacts& ASystem, ISync& ASync) {
  LoadedState = std::make_unique<TState>(AProcesses, ASystem, ASync);
}

void WindowsExt::Unload() noexcept { LoadedState.reset(); }

std::uint32_t WindowsExt::GetTickDelta(std::uint32_t AStart) { return State().Sync.TickCount() - AStart; }

std::u16string WindowsExt::GetUserSID() {
  std::u16string sid;
  const TWinError error = State().Processes.GetUserSid(sid);
  if (error != WinError::Success) throw EOSError(error, State().System.ErrorText(error));
  return sid;
}

std::u16string WindowsExt::GetLocaleInfoEx(std::u16string_view ALocale, std::uint32_t AType) {
  std::u16string text;
  if (State().System.GetLocaleTextByName(ALocale, AType, text) != WinError::Success) return {};
  return text;
}

}  // namespace varcolin
