#include "platform/windows/WindowsSync.h"

#include <algorithm>
#include <array>

#include "platform/windows/OwnedHandle.h"

namespace varcolin {

TWinError TWindowsSync::MakeEvent(bool ASignaled, TEvent& AEvent) {
  const HANDLE handle = CreateEventW(nullptr, TRUE, ASignaled ? TRUE : FALSE, nullptr);
  if (handle == nullptr) return LastFailure();
  AEvent = TEvent(*this, ToValue(handle));
  return WinError::Success;
}

void TWindowsSync::SignalEvent(const TEvent& AEvent) noexcept { SetEvent(ToHandle(AEvent.Value())); }

void TWindowsSync::ResetSignal(const TEvent& AEvent) noexcept { ResetEvent(ToHandle(AEvent.Value())); }

EWaitResult TWindowsSync::WaitForEvent(const TEvent& AEvent, std::uint32_t ATimeout) {
  return WaitForHandle(ToHandle(AEvent.Value()), ATimeout);
}

EWaitResult TWindowsSync::WaitForAny(std::span<const TWaitable> AHandles, std::uint32_t ATimeout) {
  std::array<HANDLE, MAXIMUM_WAIT_OBJECTS> handles;
  if (AHandles.size() > handles.size()) return EWaitResult::Failed;
  std::ranges::transform(AHandles, handles.begin(), [](const TWaitable& AHandle) { return ToHandle(AHandle.Value()); });
  const auto count = static_cast<DWORD>(AHandles.size());
  const DWORD result = WaitForMultipleObjects(count, handles.data(), FALSE, ATimeout);
  if (result < WAIT_OBJECT_0 + count) return EWaitResult::Signaled;
  return result == WAIT_TIMEOUT ? EWaitResult::TimedOut : EWaitResult::Failed;
}

void TWindowsSync::SleepFor(std::uint32_t ATime) { Sleep(ATime); }

std::uint32_t TWindowsSync::TickCount() { return GetTickCount(); }

TWinError TWindowsSync::SetOwnPriority(std::int32_t APriority) {
  return SetThreadPriority(GetCurrentThread(), APriority) != FALSE ? WinError::Success : LastFailure();
}

TWinError TWindowsSync::MakeNamedMutex(std::u16string_view AName, TNamedMutex& AMutex, bool& AExisted) {
  const TApiText name(AName);
  if (!name.IsWhole()) return WinError::InvalidName;
  SetLastError(ERROR_SUCCESS);
  const HANDLE handle = CreateMutexW(nullptr, FALSE, name.Get());
  if (handle == nullptr) return LastFailure();
  AExisted = GetLastError() == ERROR_ALREADY_EXISTS;
  AMutex = TNamedMutex(*this, ToValue(handle));
  return WinError::Success;
}

TWinError TWindowsSync::OpenNamedMutex(std::u16string_view AName, TNamedMutex& AMutex) {
  const TApiText name(AName);
  if (!name.IsWhole()) return WinError::InvalidName;
  const HANDLE handle = OpenMutexW(MUTEX_ALL_ACCESS, FALSE, name.Get());
  if (handle == nullptr) return LastFailure();
  AMutex = TNamedMutex(*this, ToValue(handle));
  return WinError::Success;
}

void TWindowsSync::CloseValue(TEventTag, std::uintptr_t AEvent) noexcept { CloseHandle(ToHandle(AEvent)); }

void TWindowsSync::CloseValue(TMutexTag, std::uintptr_t AMutex) noexcept { CloseHandle(ToHandle(AMutex)); }

}  // namespace varcolin
