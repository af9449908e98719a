#include "platform/simulated/SimulatedClock.h"

#include <algorithm>
#include <limits>

#include "platform/Sync.h"

namespace varcolin {

namespace {

constexpr std::uint64_t StepsPerMillisecond = 10'000;
constexpr std::uint64_t Never = std::numeric_limits<std::uint64_t>::max();
// A machine that has been up for a while: code that compares tick counts meets no special start.
constexpr std::uint64_t InitialTicks = 600'000;

using TSteps = std::chrono::duration<std::uint64_t, std::ratio<1, 10'000'000>>;

}  // namespace

TSimulatedClock::TSimulatedClock(TFileTime AStart)
    : FTimeOffset(AStart.Ticks), FTickOffset(InitialTicks * StepsPerMillisecond) {}

std::uint64_t TSimulatedClock::Elapsed() const {
  if (FMode == EClockMode::Manual) return FElapsed;
  return FElapsed + std::chrono::duration_cast<TSteps>(std::chrono::steady_clock::now() - FRunningSince).count();
}

TFileTime TSimulatedClock::Now() {
  const std::lock_guard lock(FMutex);
  return {FTimeOffset + Elapsed()};
}

std::uint32_t TSimulatedClock::TickCount() {
  const std::lock_guard lock(FMutex);
  return static_cast<std::uint32_t>((FTickOffset + Elapsed()) / StepsPerMillisecond);
}

void TSimulatedClock::SetMode(EClockMode AMode) {
  const std::lock_guard lock(FMutex);
  FElapsed = Elapsed();
  FMode = AMode;
  FRunningSince = std::chrono::steady_clock::now();
  FReleased.notify_all();  // sleepers choose anew how they wait
}

void TSimulatedClock::SetTime(TFileTime ATime) {
  const std::lock_guard lock(FMutex);
  FTimeOffset = ATime.Ticks - Elapsed();
}

void TSimulatedClock::SetTickCount(std::uint32_t ATicks) {
  const std::lock_guard lock(FMutex);
  FTickOffset = ATicks * StepsPerMillisecond - Elapsed();  // may wrap around; adding the elapsed time undoes it
}

void TSimulatedClock::Advance(std::uint32_t AMilliseconds) {
  std::uint64_t target = 0;
  {
    const std::lock_guard lock(FMutex);
    target = Elapsed() + AMilliseconds * StepsPerMillisecond;
  }
  RunEvents(target);
  const std::lock_guard lock(FMutex);
  if (FMode == EClockMode::Running) FRunningSince = std::chrono::steady_clock::now();
  FElapsed = std::max(FElapsed, target);
  ReleaseDue();
}

void TSimulatedClock::Plan(std::uint32_t ADelay, std::function<void()> AEvent) {
  const std::lock_guard lock(FMutex);
  FEvents.emplace(Elapsed() + ADelay * StepsPerMillisecond, std::move(AEvent));
  FReleased.notify_all();  // who waits in running mode may have to wake earlier
}

void TSimulatedClock::RunEvents(std::uint64_t ATime) {
  const std::lock_guard events(FEventMutex);
  for (;;) {
    std::function<void()> event;
    {
      const std::lock_guard lock(FMutex);
      const auto next = FEvents.begin();
      if (next == FEvents.end() || next->first > ATime) return;
      if (FMode == EClockMode::Manual) FElapsed = std::max(FElapsed, next->first);
      ReleaseDue();
      event = std::move(next->second);
      FEvents.erase(next);
    }
    event();
  }
}

void TSimulatedClock::ReleaseDue() {
  const std::uint64_t now = Elapsed();
  const auto due = [now](TWaiter* AWaiter) {
    AWaiter->Signaled = IsAnySet(AWaiter->Signals);
    AWaiter->Released = AWaiter->Signaled || AWaiter->Deadline <= now;
    return AWaiter->Released;
  };
  if (std::erase_if(FWaiters, due) != 0) FReleased.notify_all();
}

bool TSimulatedClock::IsAnySet(std::span<const TClockSignal* const> ASignals) {
  return std::ranges::any_of(ASignals, [](const TClockSignal* ASignal) { return ASignal->FSet; });
}

bool TSimulatedClock::Wait(const TClockSignal* ASignal, std::uint32_t ATimeout) {
  return WaitForAny({&ASignal, ASignal == nullptr ? 0U : 1U}, ATimeout);
}

bool TSimulatedClock::WaitForAny(std::span<const TClockSignal* const> ASignals, std::uint32_t ATimeout) {
  std::unique_lock lock(FMutex);
  if (IsAnySet(ASignals)) return true;
  if (ATimeout == 0) return false;
  const bool forever = ATimeout == WaitForever;
  TWaiter waiter{ASignals, forever ? Never : Elapsed() + ATimeout * StepsPerMillisecond};
  FWaiters.push_back(&waiter);
  FBlocked.notify_all();
  while (!waiter.Released) {
    if (FMode == EClockMode::Manual || (forever && FEvents.empty())) {
      FReleased.wait(lock);
      continue;
    }
    const std::uint64_t now = Elapsed();
    const std::uint64_t event = FEvents.empty() ? Never : FEvents.begin()->first;
    if (event <= now) {
      lock.unlock();
      RunEvents(now);
      lock.lock();
    } else if (now < waiter.Deadline) {
      const std::uint64_t rest = std::min(std::min(waiter.Deadline, event) - now, 3'600'000 * StepsPerMillisecond);
      FReleased.wait_for(lock, std::chrono::milliseconds(rest / StepsPerMillisecond + 1));
    }
    if (!waiter.Released) ReleaseDue();
  }
  return waiter.Signaled;
}

void TSimulatedClock::Change(TClockSignal& ASignal, bool ASet) {
  const std::lock_guard lock(FMutex);
  ASignal.FSet = ASet;
  if (ASet) ReleaseDue();
}

std::size_t TSimulatedClock::BlockedCount() {
  const std::lock_guard lock(FMutex);
  return FWaiters.size();
}

void TSimulatedClock::WaitUntilBlocked(std::size_t ACount) {
  std::unique_lock lock(FMutex);
  FBlocked.wait(lock, [&] { return FWaiters.size() >= ACount; });
}

}  // namespace varcolin
