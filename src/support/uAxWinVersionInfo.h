// Which Windows this is.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "platform/Types.h"
#include "support/uExceptions.h"

namespace varcolin {

class ISystemFacts;
class IShell;
class IModules;
struct TDllVersion;

/// Windows versions; range tests compare the order.
enum class TWindowsVersion : std::int32_t {
  wvUnknown,
  wvWin32s,
  wvWin95,
  wvWinNT4,
  wvWin98,
  wvWin98SE,
  wvWinME,
  wvWin2000,
  wvWinXP,
  wvWinSrv2003,
  wvWinSrv2003R2,
  wvWinSrvHome,
  wvWinVista,
  wvWinSrv2008,
  wvWinSrv2008R2,
  wvWin7,
  wvWin8,
  wvWinSrv2012,
  wvWinMaximum,
};

enum class TProcessorArchitecture : std::int32_t { paUnknown, pax32, pax64, paItanuim };

enum class TServicePack : std::int32_t { spUnknown, spNone, sp1, sp2, sp3, sp4, sp5, spMaximum };

enum class TWindowsEdition : std::int32_t {
  weUnknown,
  weNone,
  weStarter,
  weHomeBasic,
  weHome,
  weHomePremium,
  weHomeServer,
  weBusiness,
  weClusterServer,
  weServerDatacenter,
  weEnterprise,
  weAdvanced,
  weProfessional,
  weServerEnterprise,
  weSmallBusiness,
  weSmallBusinessPremium,
  weStandardEdition,
  weStorageEnterprise,
  weStorageExpress,
  weStorageStandard,
  weStorageWorkgroup,
  weWebServer,
  weMediaCenter,
  weUltimate,
  weTabletPC,
  weAppliance,
  weEmbedded,
  weUnlicensed,
};

/// Display texts of the enumerations' values.
[[nodiscard]] std::u16string_view TextOf(TWindowsVersion AVersion) noexcept;
[[nodiscard]] std::u16string_view TextOf(TProcessorArchitecture AArchitecture) noexcept;
[[nodiscard]] std::u16string_view TextOf(TServicePack AServicePack) noexcept;
[[nodiscard]] std::u16string_view TextOf(TWindowsEdition AEdition) noexcept;

/// A version function of Windows failed: "WinVersionInfo.%s() (Error code: %d). %s".
class TWinVersionInfoException final : public Exception {
 public:
  TWinVersionInfoException(std::u16string_view AFunction, TWinError ACode, std::u16string_view AText);
  [[nodiscard]] std::u16string_view ClassText() const noexcept override { return u"TWinVersionInfoException"; }
};

/// Class operations only. Each answer is computed once and kept, but for IsWow64Process. Any thread.
class WinVersionInfo {
 public:
  static void Load(ISystemFacts& ASystem, IShell& AShell, IModules& AModules);
  static void Unload() noexcept;

  /// Raises TWinVersionInfoException, as everything that depends on it, when Windows does not tell its version.
  [[nodiscard]] static TWindowsVersion WindowsVersion();
  [[nodiscard]] static TProcessorArchitecture ProcessorArchitecture();
  [[nodiscard]] static TServicePack ServicePack();
  /// Raises TWinVersionInfoException when the product type cannot be read on a Windows that has one.
  [[nodiscard]] static TWindowsEdition WindowsEdition();
  /// Whether this is a 32-bit process on 64-bit Windows. Never raises.
  [[nodiscard]] static bool IsWow64Process();
  /// Whether the version lies in a range, both ends included.
  [[nodiscard]] static bool IsWindows(TWindowsVersion AMin, TWindowsVersion AMax = TWindowsVersion::wvWinMaximum);
  /// The same for pairs of version and service pack, the version compared first.
  [[nodiscard]] static bool IsWindows(TWindowsVersion AMinVersion, TServicePack AMinServicePack,
                                      TWindowsVersion AMaxVersion, TServicePack AMaxServicePack);
  /// Version of a library that exports DllGetVersion; false on every failure.
  [[nodiscard]] static bool GetDllVersion(std::u16string_view ADllName, TDllVersion& AInfo);
  /// Whether such a library's (major, minor) lies in a range.
  [[nodiscard]] static bool IsDllVersion(std::u16string_view ADllName, std::uint32_t AMinMajor, std::uint32_t AMinMinor,
                                         std::uint32_t AMaxMajor, std::uint32_t AMaxMinor);
  /// One line: version, architecture, edition, service pack, build.
  [[nodiscard]] static std::u16string WindowsVersionString();
  /// The shell's IsOS test; false where it cannot be asked.
  [[nodiscard]] static bool IsOS(std::uint32_t AKind);
};

}  // namespace varcolin
