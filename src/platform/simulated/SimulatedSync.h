// Events, named mutexes and thread priorities of a simulated machine.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <unordered_map>

#include "platform/Sync.h"
#include "platform/simulated/SimulatedClock.h"

namespace varcolin {

/// Waits and sleeps pass on the machine's clock. The clock outlives the object.
class TSimulatedSync final : public ISync {
 public:
  explicit TSimulatedSync(TSimulatedClock& AClock) noexcept : FClock(AClock) {}

  [[nodiscard]] TWinError MakeEvent(bool ASignaled, TEvent& AEvent) override;
  void SignalEvent(const TEvent& AEvent) noexcept override;
  void ResetSignal(const TEvent& AEvent) noexcept override;
  [[nodiscard]] EWaitResult WaitForEvent(const TEvent& AEvent, std::uint32_t ATimeout) override;
  [[nodiscard]] EWaitResult WaitForAny(std::span<const TWaitable> AHandles, std::uint32_t ATimeout) override;
  void SleepFor(std::uint32_t ATime) override;
  [[nodiscard]] std::uint32_t TickCount() override { return FClock.TickCount(); }
  [[nodiscard]] TWinError SetOwnPriority(std::int32_t APriority) override;

  [[nodiscard]] TWinError MakeNamedMutex(std::u16string_view AName, TNamedMutex& AMutex, bool& AExisted) override;
  [[nodiscard]] TWinError OpenNamedMutex(std::u16string_view AName, TNamedMutex& AMutex) override;

  void CloseValue(TEventTag, std::uintptr_t AEvent) noexcept override;
  void CloseValue(TMutexTag, std::uintptr_t AMutex) noexcept override;

  /// Lets threads wait for a signal of another facility: the value of the handle that this facility gives out.
  [[nodiscard]] std::uintptr_t AddWaitable(std::shared_ptr<TClockSignal> ASignal);
  void RemoveWaitable(std::uintptr_t AValue) noexcept;

  /// Priority of the calling thread; 0 is the normal one.
  [[nodiscard]] static std::int32_t OwnPriority() noexcept;
  /// Number of events and mutexes that are open.
  [[nodiscard]] std::size_t OpenHandleCount();

  /// Opens or closes a named mutex on behalf of another process of the machine; the two pair up. These are not counted
  /// as open handles.
  void HoldMutex(std::u16string_view AName);
  void ReleaseMutex(std::u16string_view AName);

  /// The state behind an event, for a facility that signals it later, as the system keeps an event alive that it was
  /// given; empty for an invalid handle.
  [[nodiscard]] std::shared_ptr<TClockSignal> ShareEvent(const TEvent& AEvent);
  void SignalShared(TClockSignal& ASignal) { FClock.Change(ASignal, true); }
  void ResetShared(TClockSignal& ASignal) { FClock.Change(ASignal, false); }

 private:
  [[nodiscard]] std::uintptr_t NewHandle() noexcept { return FLastHandle += 4; }
  void ReleaseName(const std::u16string& AName);

  TSimulatedClock& FClock;
  std::mutex FMutex;
  std::uintptr_t FLastHandle = 0;
  std::unordered_map<std::uintptr_t, std::shared_ptr<TClockSignal>> FEvents;
  std::unordered_map<std::uintptr_t, std::shared_ptr<TClockSignal>> FWaitables;  // of other facilities
  std::unordered_map<std::uintptr_t, std::u16string> FMutexes;                   // handle to name
  std::map<std::u16string, std::size_t, std::less<>> FMutexNames;                // name to number of handles
};

}  // namespace varcolin
