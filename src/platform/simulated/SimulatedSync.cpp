#include "platform/simulated/SimulatedSync.h"

#include <utility>
#include <vector>

#include "support/uText.h"

namespace varcolin {

namespace {

constexpr std::u16string_view LocalPrefix = u"Local\\";
constexpr std::u16string_view GlobalPrefix = u"Global\\";

thread_local std::int32_t ThisThreadsPriority = 0;

// The name as the object table holds it: "Local\X" is X. Names are case-sensitive, their prefixes too.
TWinError MutexName(std::u16string_view AName, std::u16string& AResult) {
  std::u16string_view rest = AName;
  if (rest.starts_with(LocalPrefix)) {
    AName.remove_prefix(LocalPrefix.size());
    rest = AName;
  } else if (rest.starts_with(GlobalPrefix)) {
    rest.remove_prefix(GlobalPrefix.size());
  }
  if (rest.find(u'\\') != std::u16string_view::npos) return WinError::PathNotFound;
  AResult = AName;
  return WinError::Success;
}

}  // namespace

TWinError TSimulatedSync::MakeEvent(bool ASignaled, TEvent& AEvent) {
  auto signal = std::make_shared<TClockSignal>();
  if (ASignaled) FClock.Change(*signal, true);
  std::uintptr_t handle = 0;
  {
    const std::lock_guard lock(FMutex);
    handle = NewHandle();
    FEvents.emplace(handle, std::move(signal));
  }
  AEvent = TEvent(*this, handle);  // outside the lock: this may close the event that was there
  return WinError::Success;
}

std::shared_ptr<TClockSignal> TSimulatedSync::ShareEvent(const TEvent& AEvent) {
  const std::lock_guard lock(FMutex);
  const auto found = FEvents.find(AEvent.Value());
  return found == FEvents.end() ? nullptr : found->second;
}

void TSimulatedSync::SignalEvent(const TEvent& AEvent) noexcept {
  if (const auto signal = ShareEvent(AEvent)) FClock.Change(*signal, true);
}

void TSimulatedSync::ResetSignal(const TEvent& AEvent) noexcept {
  if (const auto signal = ShareEvent(AEvent)) FClock.Change(*signal, false);
}

EWaitResult TSimulatedSync::WaitForEvent(const TEvent& AEvent, std::uint32_t ATimeout) {
  const auto signal = ShareEvent(AEvent);
  if (!signal) return EWaitResult::Failed;
  return FClock.Wait(signal.get(), ATimeout) ? EWaitResult::Signaled : EWaitResult::TimedOut;
}

EWaitResult TSimulatedSync::WaitForAny(std::span<const TWaitable> AHandles, std::uint32_t ATimeout) {
  constexpr std::size_t MaximumHandles = 64;
  if (AHandles.empty() || AHandles.size() > MaximumHandles) return EWaitResult::Failed;
  std::vector<std::shared_ptr<TClockSignal>> owners;  // a handle may be closed while somebody waits for it
  {
    const std::lock_guard lock(FMutex);
    for (const TWaitable& handle : AHandles) {
      for (const auto* const table : {&FEvents, &FWaitables}) {
        if (const auto found = table->find(handle.Value()); found != table->end()) owners.push_back(found->second);
      }
    }
  }
  if (owners.size() != AHandles.size()) return EWaitResult::Failed;
  std::vector<const TClockSignal*> signals;
  for (const auto& owner : owners) signals.push_back(owner.get());
  return FClock.WaitForAny(signals, ATimeout) ? EWaitResult::Signaled : EWaitResult::TimedOut;
}

std::uintptr_t TSimulatedSync::AddWaitable(std::shared_ptr<TClockSignal> ASignal) {
  const std::lock_guard lock(FMutex);
  const std::uintptr_t value = NewHandle();
  FWaitables.emplace(value, std::move(ASignal));
  return value;
}

void TSimulatedSync::RemoveWaitable(std::uintptr_t AValue) noexcept {
  const std::lock_guard lock(FMutex);
  FWaitables.erase(AValue);
}

void TSimulatedSync::SleepFor(std::uint32_t ATime) {
  if (ATime == 0) std::this_thread::yield();
  static_cast<void>(FClock.Wait(nullptr, ATime));
}

TWinError TSimulatedSync::SetOwnPriority(std::int32_t APriority) {
  constexpr std::int32_t idle = -15;
  constexpr std::int32_t timeCritical = 15;
  const bool isKnown = (APriority >= ThreadPriority::Lowest && APriority <= -ThreadPriority::Lowest) ||
                       APriority == idle || APriority == timeCritical;
  if (!isKnown) return WinError::InvalidParameter;
  ThisThreadsPriority = APriority;
  return WinError::Success;
}

std::int32_t TSimulatedSync::OwnPriority() noexcept { return ThisThreadsPriority; }

TWinError TSimulatedSync::MakeNamedMutex(std::u16string_view AName, TNamedMutex& AMutex, bool& AExisted) {
  std::u16string name;
  if (const TWinError error = MutexName(AName, name); error != WinError::Success) return error;
  std::uintptr_t handle = 0;
  bool existed = false;
  {
    const std::lock_guard lock(FMutex);
    handle = NewHandle();
    if (!name.empty()) existed = FMutexNames[name]++ != 0;  // one without a name is nobody else's
    FMutexes.emplace(handle, std::move(name));
  }
  AExisted = existed;
  AMutex = TNamedMutex(*this, handle);
  return WinError::Success;
}

TWinError TSimulatedSync::OpenNamedMutex(std::u16string_view AName, TNamedMutex& AMutex) {
  std::u16string name;
  if (const TWinError error = MutexName(AName, name); error != WinError::Success) return error;
  if (name.empty()) return WinError::InvalidHandle;
  std::uintptr_t handle = 0;
  {
    const std::lock_guard lock(FMutex);
    const auto found = FMutexNames.find(name);
    if (found == FMutexNames.end()) return WinError::FileNotFound;
    ++found->second;
    handle = NewHandle();
    FMutexes.emplace(handle, std::move(name));
  }
  AMutex = TNamedMutex(*this, handle);
  return WinError::Success;
}

void TSimulatedSync::ReleaseName(const std::u16string& AName) {
  const auto found = FMutexNames.find(AName);
  if (found != FMutexNames.end() && --found->second == 0) FMutexNames.erase(found);
}

void TSimulatedSync::CloseValue(TEventTag, std::uintptr_t AEvent) noexcept {
  const std::lock_guard lock(FMutex);
  FEvents.erase(AEvent);
}

void TSimulatedSync::CloseValue(TMutexTag, std::uintptr_t AMutex) noexcept {
  const std::lock_guard lock(FMutex);
  const auto found = FMutexes.find(AMutex);
  if (found == FMutexes.end()) return;
  ReleaseName(found->second);
  FMutexes.erase(found);
}

std::size_t TSimulatedSync::OpenHandleCount() {
  const std::lock_guard lock(FMutex);
  return FEvents.size() + FMutexes.size();
}

void TSimulatedSync::HoldMutex(std::u16string_view AName) {
  std::u16string name;
  if (MutexName(AName, name) != WinError::Success || name.empty()) return;
  const std::lock_guard lock(FMutex);
  ++FMutexNames[name];
}

void TSimulatedSync::ReleaseMutex(std::u16string_view AName) {
  std::u16string name;
  if (MutexName(AName, name) != WinError::Success) return;
  const std::lock_guard lock(FMutex);
  ReleaseName(name);
}

}  // namespace varcolin
