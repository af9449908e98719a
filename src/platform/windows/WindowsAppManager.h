// IAppManager over the real Windows calls.
#pragma once

#include "platform/AppManager.h"

namespace varcolin {

class TWindowsAppManager final : public IAppManager {
 public:
  [[nodiscard]] TWinError EnumInstalledApps(TInstalledApps& AApps) override;
  [[nodiscard]] TWinError NextApp(const TInstalledApps& AApps, TInstalledApp& AApp) override;
  [[nodiscard]] TWinError GetSlowAppInfo(const TInstalledApp& AApp, TSlowAppInfo& AInfo) override;
  void CloseValue(TInstalledAppsTag, std::uintptr_t AApps) noexcept override;
  void CloseValue(TInstalledAppTag, std::uintptr_t AApp) noexcept override;
};

}  // namespace varcolin
