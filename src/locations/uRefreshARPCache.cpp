#include "locations/uRefreshARPCache.h"

#include "platform/AppManager.h"
#include "platform/Com.h"
#include "platform/Sync.h"
#include "platform/SystemFacts.h"
#include "services/uStatisticsLog.h"
#include "support/uExceptions.h"

namespace varcolin {

namespace {

/// Makes the shell's enumerator of installed applications.
class CoEnumInstalledApps {
 public:
  /// Raises EOSError with the COM result where the shell has none.
  [[nodiscard]] static TInstalledApps Create(IAppManager& AApps, ISystemFacts& ASystem) {
    TInstalledApps apps;
    const TWinError code = AApps.EnumInstalledApps(apps);
    if (code != WinError::Success) throw EOSError(code, ASystem.ErrorText(code));
    return apps;
  }
};

}  // namespace

void TRefreshARPCache::Load(IAppManager& AApps, ISystemFacts& ASystem, ISync& ASync, ICom& ACom) noexcept {
  FFacilities = {&AApps, &ASystem, &ASync, &ACom};
}

void TRefreshARPCache::Unload() noexcept { FFacilities = {}; }

void TRefreshARPCache::Execute(const TThread& AThread) noexcept {
  // at another priority the walk only competes more
  static_cast<void>(FFacilities.Sync->SetOwnPriority(ThreadPriority::Lowest));
  const TComScope com(*FFacilities.Com, ECom::Apartment);
  try {
    LogWalk(AThread);
  } catch (const std::exception&) {
    StatisticsLog::AddErrorLn();
  }
  try {
    StatisticsLog::Write();
  } catch (const std::exception&) {
    // the log itself cannot be written: there is nowhere left to say so
  }
}

void TRefreshARPCache::LogWalk(const TThread& AThread) {
  StatisticsLog::Add(u"");
  StatisticsLog::Add(u"Begin update system ARP Cache.");
  try {
    Walk(AThread);
  } catch (const EAbort&) {
  } catch (const std::exception&) {
    StatisticsLog::AddErrorLn();
  }
  StatisticsLog::Add(u"");
  StatisticsLog::Add(u"End update system ARP Cache.");
}

void TRefreshARPCache::Walk(const TThread& AThread) {
  IAppManager& manager = *FFacilities.Apps;
  const TInstalledApps apps = CoEnumInstalledApps::Create(manager, *FFacilities.System);
  for (TInstalledApp app; manager.NextApp(apps, app) == WinError::Success; app.Close()) {
    if (AThread.Terminated()) throw EAbort();
    TSlowAppInfo info;
    // the shell keeps what it finds out; an application that it finds out nothing about is passed over
    static_cast<void>(manager.GetSlowAppInfo(app, info));
  }
}

}  // namespace varcolin
