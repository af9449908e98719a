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
  const std::lock_guard lock(FMutex);
  FElapsed += AMilliseconds * StepsPerMillisecond;
  ReleaseDue();
}

void TSimulatedClock::ReleaseDue() {
  const std::uint64_t now = Elapsed();
  const auto due = [now](TWaiter* AWaiter) {
    AWaiter->Signaled = AWaiter->Signal != nullptr && AWaiter->Signal->FSet;
    AWaiter->Released = AWaiter->Signaled || AWaiter->Deadline <= now;
    return AWaiter->Released;
  };
  if (std::erase_if(FWaiters, due) != 0) FReleased.notify_all();
}

bool TSimulatedClock::Wait(const TClockSignal* ASignal, std::uint32_t ATimeout) {
  std::unique_lock lock(FMutex);
  if (ASignal != nullptr && ASignal->FSet) return true;
  if (ATimeout == 0) return false;
  const bool forever = ATimeout == WaitForever;
  TWaiter waiter{ASignal, forever ? Never : Elapsed() + ATimeout * StepsPerMillisecond};
  FWaiters.push_back(&waiter);
  FBlocked.notify_all();
  while (!waiter.Released) {
    if (FMode == EClockMode::Manual || forever) {
      FReleased.wait(lock);
      continue;
    }
    const std::uint64_t now = Elapsed();
    if (now < waiter.Deadline) {
      const std::uint64_t rest = std::min(waiter.Deadline - now, 3'600'000 * StepsPerMillisecond);
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
