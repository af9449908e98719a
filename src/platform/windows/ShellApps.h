// The shell's interfaces for installed applications, which it publishes but the compiler's headers lack. This header
// needs no Windows header.
#pragma once

#include "intf/intf_Base.h"

namespace varcolin {

/// Windows: SLOWAPPINFO.
struct TShellSlowAppInfo {
  std::uint64_t Size;
  std::uint32_t LastUsedLow;  ///< with LastUsedHigh a FILETIME
  std::uint32_t LastUsedHigh;
  std::int32_t TimesUsed;
  wchar_t* Image;  ///< the receiver's, to be freed with CoTaskMemFree; may be null
};
static_assert(sizeof(void*) != 4 || sizeof(TShellSlowAppInfo) == 24);

/// Windows: IShellApp, as far as it is used, which IInstalledApp begins with.
struct IShellInstalledApp : IInterface {
  static constexpr TGUID IID{0xA3E14960, 0x935F, 0x11D1, {0xB8, 0xB8, 0x00, 0x60, 0x08, 0x05, 0x93, 0x82}};

  virtual TResultCode VARCOLIN_CALL GetAppInfo(void* AInfo) = 0;
  virtual TResultCode VARCOLIN_CALL GetPossibleActions(std::uint32_t* AActions) = 0;
  virtual TResultCode VARCOLIN_CALL GetSlowAppInfo(TShellSlowAppInfo* AInfo) = 0;

 protected:
  ~IShellInstalledApp() = default;
};

/// Windows: IEnumInstalledApps.
struct IShellEnumInstalledApps : IInterface {
  static constexpr TGUID IID{0x1BC752E1, 0x9046, 0x11D1, {0xB8, 0xB3, 0x00, 0x60, 0x08, 0x05, 0x93, 0x82}};

  /// Result 0 (S_OK) while there are more.
  virtual TResultCode VARCOLIN_CALL Next(IShellInstalledApp** AApp) = 0;
  virtual TResultCode VARCOLIN_CALL Reset() = 0;

 protected:
  ~IShellEnumInstalledApps() = default;
};

/// The class of the enumerator (Windows: CLSID_EnumInstalledApps).
inline constexpr TGUID EnumInstalledAppsClass{
    0x0B124F8F, 0x91F0, 0x11D1, {0xB8, 0xB5, 0x00, 0x60, 0x08, 0x05, 0x93, 0x82}};

}  // namespace varcolin
