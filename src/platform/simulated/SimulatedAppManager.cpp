#include "platform/simulated/SimulatedAppManager.h"

#include <utility>

#include "platform/simulated/SimulatedClock.h"
#include "platform/simulated/SimulatedCom.h"

namespace varcolin {

namespace {

constexpr TWinError NotJoined = 0x800401F0;  // CO_E_NOTINITIALIZED

}  // namespace

TWinError TSimulatedAppManager::EnumInstalledApps(TInstalledApps& AApps) {
  if (!FCom.HasJoined()) return NotJoined;
  std::uintptr_t walk = 0;
  {
    const std::lock_guard lock(FMutex);
    if (FRefusal != WinError::Success) return FRefusal;
    ++FWalkCount;
    walk = FWalks.Add(FInstalled);
  }
  AApps = TInstalledApps(*this, walk);  // without the lock: this may close an older handle
  return WinError::Success;
}

TWinError TSimulatedAppManager::NextApp(const TInstalledApps& AApps, TInstalledApp& AApp) {
  std::uintptr_t app = 0;
  {
    const std::lock_guard lock(FMutex);
    TWalk* const walk = FWalks.Find(AApps.Value());
    if (walk == nullptr) return WinError::InvalidHandle;
    if (walk->IsEndless && walk->Next == walk->Apps.size()) walk->Next = 0;
    if (walk->Next == walk->Apps.size()) return WinError::NoMoreItems;
    app = FApps.Add(walk->Apps[walk->Next++]);
  }
  AApp = TInstalledApp(*this, app);
  return WinError::Success;
}

TWinError TSimulatedAppManager::GetSlowAppInfo(const TInstalledApp& AApp, TSlowAppInfo& AInfo) {
  TSimulatedApp app;
  {
    const std::lock_guard lock(FMutex);
    const TSimulatedApp* const found = FApps.Find(AApp.Value());
    if (found == nullptr) return WinError::InvalidHandle;
    app = *found;
    FAsked.push_back(app.Name);
  }
  if (app.Takes != 0) static_cast<void>(FClock.Wait(nullptr, app.Takes));
  if (app.Result == WinError::Success) AInfo = std::move(app.Info);
  return app.Result;
}

void TSimulatedAppManager::CloseValue(TInstalledAppsTag, std::uintptr_t AApps) noexcept {
  const std::lock_guard lock(FMutex);
  FWalks.Remove(AApps);
}

void TSimulatedAppManager::CloseValue(TInstalledAppTag, std::uintptr_t AApp) noexcept {
  const std::lock_guard lock(FMutex);
  FApps.Remove(AApp);
}

void TSimulatedAppManager::Install(std::vector<TSimulatedApp> AApps, bool AEndless) {
  const std::lock_guard lock(FMutex);
  FInstalled = {std::move(AApps), AEndless, 0};
}

void TSimulatedAppManager::Refuse(TWinError AResult) {
  const std::lock_guard lock(FMutex);
  FRefusal = AResult;
}

std::size_t TSimulatedAppManager::WalkCount() {
  const std::lock_guard lock(FMutex);
  return FWalkCount;
}

std::vector<std::u16string> TSimulatedAppManager::Asked() {
  const std::lock_guard lock(FMutex);
  return FAsked;
}

std::size_t TSimulatedAppManager::OpenHandleCount() {
  const std::lock_guard lock(FMutex);
  return FWalks.Count() + FApps.Count();
}

}  // namespace varcolin
