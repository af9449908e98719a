// The application manager of a simulated machine's shell.
#pragma once

#include <cstddef>
#include <mutex>
#include <string>
#include <vector>

#include "platform/AppManager.h"
#include "platform/simulated/SimulatedHandles.h"

namespace varcolin {

class TSimulatedClock;
class TSimulatedCom;

/// An application as the shell knows it.
struct TSimulatedApp {
  std::u16string Name;
  TSlowAppInfo Info;
  TWinError Result = WinError::Success;  ///< of working out Info
  std::uint32_t Takes = 0;               ///< milliseconds that this takes
};

/// Any thread that has joined COM, as the facility says. A new machine's shell knows no application. The clock and COM
/// outlive the object.
class TSimulatedAppManager final : public IAppManager {
 public:
  TSimulatedAppManager(TSimulatedClock& AClock, TSimulatedCom& ACom) noexcept
      : FClock(AClock), FCom(ACom), FWalks(0x60000), FApps(0x70000) {}

  [[nodiscard]] TWinError EnumInstalledApps(TInstalledApps& AApps) override;
  [[nodiscard]] TWinError NextApp(const TInstalledApps& AApps, TInstalledApp& AApp) override;
  [[nodiscard]] TWinError GetSlowAppInfo(const TInstalledApp& AApp, TSlowAppInfo& AInfo) override;
  void CloseValue(TInstalledAppsTag, std::uintptr_t AApps) noexcept override;
  void CloseValue(TInstalledAppTag, std::uintptr_t AApp) noexcept override;

  /// What walks that begin from now on meet. AEndless: behind the last application comes the first one again.
  void Install(std::vector<TSimulatedApp> AApps, bool AEndless = false);
  /// From now on no walk can begin: the result of every such call, or Success to lift that.
  void Refuse(TWinError AResult);
  /// Walks that have begun so far.
  [[nodiscard]] std::size_t WalkCount();
  /// Names of the applications whose information was asked for so far, in order.
  [[nodiscard]] std::vector<std::u16string> Asked();
  /// Walks and applications that are held.
  [[nodiscard]] std::size_t OpenHandleCount();

 private:
  struct TWalk {
    std::vector<TSimulatedApp> Apps;
    bool IsEndless;
    std::size_t Next;
  };

  TSimulatedClock& FClock;
  TSimulatedCom& FCom;
  std::mutex FMutex;
  TWalk FInstalled{};
  TWinError FRefusal = WinError::Success;
  std::size_t FWalkCount = 0;
  std::vector<std::u16string> FAsked;
  THandleTable<TWalk> FWalks;
  THandleTable<TSimulatedApp> FApps;
};

}  // namespace varcolin
