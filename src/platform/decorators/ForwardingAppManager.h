// An application manager that forwards to another.
#pragma once

#include "platform/AppManager.h"
#include "platform/decorators/CallGate.h"

namespace varcolin {

/// Forwards each call to another facility when the gate admits it.
class TForwardingAppManager : public TForwarding<IAppManager> {
 public:
  explicit TForwardingAppManager(IAppManager& AInner, ICallGate& AGate = OpenGate)
      : TForwarding(AInner, AGate, "Apps") {}

  [[nodiscard]] TWinError EnumInstalledApps(TInstalledApps& AApps) override {
    return Look("EnumInstalledApps", {}, [&] { return Inner().EnumInstalledApps(AApps); });
  }
  [[nodiscard]] TWinError NextApp(const TInstalledApps& AApps, TInstalledApp& AApp) override {
    return Look("NextApp", {}, [&] { return Inner().NextApp(AApps, AApp); });
  }
  [[nodiscard]] TWinError GetSlowAppInfo(const TInstalledApp& AApp, TSlowAppInfo& AInfo) override {
    return Look("GetSlowAppInfo", {}, [&] { return Inner().GetSlowAppInfo(AApp, AInfo); });
  }
  void CloseValue(TInstalledAppsTag ATag, std::uintptr_t AApps) noexcept override { Inner().CloseValue(ATag, AApps); }
  void CloseValue(TInstalledAppTag ATag, std::uintptr_t AApp) noexcept override { Inner().CloseValue(ATag, AApp); }
};

}  // namespace varcolin
