// Events, named mutexes, waiting, the tick count and the priority of threads.
#pragma once

#include <span>
#include <string_view>

#include "platform/Types.h"

namespace varcolin {

struct TEventTag {
  static constexpr bool IsWaitable = true;
};
struct TMutexTag {};
class ISync;

/// A manual-reset event.
using TEvent = THandle<ISync, TEventTag>;
/// A named mutex that is kept to show other processes that it exists; it is never waited for.
using TNamedMutex = THandle<ISync, TMutexTag>;

/// What a thread can wait for: an event, or another facility's handle whose tag says that it is waitable. It refers to
/// the handle without owning it.
class TWaitable {
 public:
  template <class TFacility, class TTag>
  requires(TTag::IsWaitable) TWaitable(const THandle<TFacility, TTag>& AHandle)
  noexcept : FValue(AHandle.Value()) {}

  [[nodiscard]] std::uintptr_t Value() const noexcept { return FValue; }

 private:
  std::uintptr_t FValue;
};

/// How much of the processor a thread gets beside others (Windows: SetThreadPriority).
namespace ThreadPriority {
inline constexpr std::int32_t Lowest = -2;
}  // namespace ThreadPriority

class ISync {
 public:
  virtual ~ISync() = default;

  /// A new unnamed manual-reset event. Windows: CreateEventW.
  [[nodiscard]] virtual TWinError MakeEvent(bool ASignaled, TEvent& AEvent) = 0;
  /// Windows: SetEvent.
  virtual void SignalEvent(const TEvent& AEvent) noexcept = 0;
  /// Windows: ResetEvent.
  virtual void ResetSignal(const TEvent& AEvent) noexcept = 0;
  /// Waits until AEvent is signalled, for at most ATimeout milliseconds (0: only looks). Windows: WaitForSingleObject.
  [[nodiscard]] virtual EWaitResult WaitForEvent(const TEvent& AEvent, std::uint32_t ATimeout) = 0;
  /// The same until any one of them is signalled; Failed for more than 64, for none, and for one that is no such
  /// handle. Windows: WaitForMultipleObjects.
  [[nodiscard]] virtual EWaitResult WaitForAny(std::span<const TWaitable> AHandles, std::uint32_t ATimeout) = 0;
  /// Lets ATime milliseconds pass for the calling thread. Windows: Sleep.
  virtual void SleepFor(std::uint32_t ATime) = 0;
  /// Milliseconds since the system started, modulo 2^32. Windows: GetTickCount.
  [[nodiscard]] virtual std::uint32_t TickCount() = 0;

  /// Gives the calling thread another priority (ThreadPriority). Windows: SetThreadPriority on GetCurrentThread.
  [[nodiscard]] virtual TWinError SetOwnPriority(std::int32_t APriority) = 0;

  /// Creates or opens a named mutex without taking it. AExisted: whether it existed already. Windows: CreateMutexW.
  [[nodiscard]] virtual TWinError MakeNamedMutex(std::u16string_view AName, TNamedMutex& AMutex, bool& AExisted) = 0;
  /// Opens an existing named mutex with all access; FileNotFound when there is none. Windows: OpenMutexW.
  [[nodiscard]] virtual TWinError OpenNamedMutex(std::u16string_view AName, TNamedMutex& AMutex) = 0;

  /// Give handles back; called by the handle classes. Windows: CloseHandle.
  virtual void CloseValue(TEventTag, std::uintptr_t AEvent) noexcept = 0;
  virtual void CloseValue(TMutexTag, std::uintptr_t AMutex) noexcept = 0;
};

}  // namespace varcolin
