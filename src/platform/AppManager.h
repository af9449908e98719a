// The shell's application manager: what the shell knows of each installed application.
#pragma once

#include <string>

#include "platform/Types.h"

namespace varcolin {

struct TInstalledAppsTag {};
struct TInstalledAppTag {};
class IAppManager;

/// A walk over the installed applications.
using TInstalledApps = THandle<IAppManager, TInstalledAppsTag>;
/// One installed application.
using TInstalledApp = THandle<IAppManager, TInstalledAppTag>;

/// What takes the shell long to find out about an application (Windows: SLOWAPPINFO).
struct TSlowAppInfo {
  std::uint64_t Size = 0;      ///< bytes
  TFileTime LastUsed;          ///< 0 when unknown
  std::int32_t TimesUsed = 0;  ///< negative when unknown
  std::u16string Image;        ///< path of the executable; may be empty

  friend bool operator==(const TSlowAppInfo&, const TSlowAppInfo&) = default;
};

/// Every method and every handle is for one thread, which has joined COM (ICom).
class IAppManager {
 public:
  virtual ~IAppManager() = default;

  /// Begins a walk. 0x80040154 where the shell has no application manager, 0x800401F0 on a thread that has not joined
  /// COM. Windows: CoCreateInstance of CLSID_EnumInstalledApps in the process.
  [[nodiscard]] virtual TWinError EnumInstalledApps(TInstalledApps& AApps) = 0;
  /// The next application. NoMoreItems after the last one, and for whatever else keeps the shell from going on.
  /// Windows: IEnumInstalledApps::Next.
  [[nodiscard]] virtual TWinError NextApp(const TInstalledApps& AApps, TInstalledApp& AApp) = 0;
  /// Makes the shell work out an application's information, which it keeps; this may take seconds. Windows:
  /// IShellApp::GetSlowAppInfo.
  [[nodiscard]] virtual TWinError GetSlowAppInfo(const TInstalledApp& AApp, TSlowAppInfo& AInfo) = 0;

  /// Give handles back. Windows: IUnknown::Release.
  virtual void CloseValue(TInstalledAppsTag, std::uintptr_t AApps) noexcept = 0;
  virtual void CloseValue(TInstalledAppTag, std::uintptr_t AApp) noexcept = 0;
};

}  // namespace varcolin
