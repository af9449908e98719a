// The clock of a simulated machine: its time, its tick count and everything that waits for time to pass.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <map>
#include <mutex>
#include <span>
#include <thread>
#include <vector>

#include "platform/Types.h"

namespace varcolin {

enum class EClockMode {
  Manual,   ///< time stands still until somebody advances it
  Running,  ///< time passes as on the computer
};

/// A state that threads can wait for on a clock. Only the clock reads and changes it.
class TClockSignal {
  friend class TSimulatedClock;
  bool FSet = false;
};

/// Time of a simulated machine. A new clock is in manual mode. Every method may be called from any thread.
class TSimulatedClock {
 public:
  /// AStart: the universal time that the clock shows first.
  explicit TSimulatedClock(TFileTime AStart);
  TSimulatedClock(const TSimulatedClock&) = delete;
  TSimulatedClock& operator=(const TSimulatedClock&) = delete;

  /// The current universal time.
  [[nodiscard]] TFileTime Now();
  /// Milliseconds since the machine started, modulo 2^32.
  [[nodiscard]] std::uint32_t TickCount();

  void SetMode(EClockMode AMode);
  /// Sets the universal time as a user would; ticks and waits do not notice.
  void SetTime(TFileTime ATime);
  /// Sets the tick count, to bring its overflow near; time and waits do not notice.
  void SetTickCount(std::uint32_t ATicks);
  /// Lets time pass. Waits whose time has come end, and events whose time has come happen, before this returns; waits
  /// that have ended no longer count as blocked.
  void Advance(std::uint32_t AMilliseconds);

  /// Lets AEvent happen when ADelay milliseconds have passed; events happen one after the other, in the order of their
  /// times. In running mode they happen in a thread that waits, so they are late while none does. An event may plan
  /// further events but not wait, and it may call everything that calls the clock.
  void Plan(std::uint32_t ADelay, std::function<void()> AEvent);

  /// Waits for ASignal (none: just for time to pass) for at most ATimeout milliseconds; 0 only looks, `WaitForever`
  /// sets no limit. Whether the signal came. The signal must outlive the call.
  [[nodiscard]] bool Wait(const TClockSignal* ASignal, std::uint32_t ATimeout);
  /// The same for any one of several signals.
  [[nodiscard]] bool WaitForAny(std::span<const TClockSignal* const> ASignals, std::uint32_t ATimeout);
  /// Changes a signal; setting it ends all waits for it, even when it is taken back at once.
  void Change(TClockSignal& ASignal, bool ASet);

  /// Number of threads inside Wait.
  [[nodiscard]] std::size_t BlockedCount();
  /// Returns when at least ACount threads are inside Wait.
  void WaitUntilBlocked(std::size_t ACount);
  /// Advances in steps of AStep milliseconds until APredicate() holds; each step is made only when at least AThreads
  /// threads wait, so that none of them is left behind.
  template <class TPredicate>
  void AdvanceUntil(TPredicate APredicate, std::uint32_t AStep, std::size_t AThreads = 1) {
    while (!APredicate()) {
      if (BlockedCount() >= AThreads) {
        Advance(AStep);
      } else {
        std::this_thread::yield();
      }
    }
  }

 private:
  struct TWaiter {
    std::span<const TClockSignal* const> Signals;
    std::uint64_t Deadline;
    bool Released = false;
    bool Signaled = false;
  };

  // 100-nanosecond steps since the clock was made; needs the lock, as the other private methods do
  [[nodiscard]] std::uint64_t Elapsed() const;
  void ReleaseDue();
  [[nodiscard]] static bool IsAnySet(std::span<const TClockSignal* const> ASignals);

  // lets the events happen whose time is not after ATime; the lock must not be held
  void RunEvents(std::uint64_t ATime);

  std::mutex FEventMutex;  // held while events happen; taken before FMutex
  std::mutex FMutex;
  std::condition_variable FReleased;  // some waits have ended
  std::condition_variable FBlocked;   // a wait has begun
  EClockMode FMode = EClockMode::Manual;
  std::uint64_t FElapsed = 0;                           // up to the last change of mode
  std::chrono::steady_clock::time_point FRunningSince;  // in running mode
  std::uint64_t FTimeOffset;                            // universal time = offset + elapsed
  std::uint64_t FTickOffset;                            // ticks * 10,000 = offset + elapsed
  std::vector<TWaiter*> FWaiters;
  std::multimap<std::uint64_t, std::function<void()>> FEvents;  // by time
};

}  // namespace varcolin
