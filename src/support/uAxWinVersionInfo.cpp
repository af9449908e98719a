#include "support/uAxWinVersionInfo.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <utility>

#include "platform/Modules.h"
#include "platform/Shell.h"
#include "platform/SystemFacts.h"
#include "support/uFormat.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using enum TWindowsVersion;
using enum TWindowsEdition;

constexpr std::u16string_view VersionTexts[] = {
    u"Unknown",
    u"Win32s",
    u"Windows 95",
    u"Windows NT",
    u"Windows 98",
    u"Windows 98 SE",
    u"Windows Millennium",
    u"Windows 2000",
    u"Windows XP",
    u"Windows Server 2003",
    u"Windows Server 2003 R2",
    u"Windows Home Server",
    u"Windows Vista",
    u"Windows Server 2008",
    u"Windows Server 2008 R2",
    u"Windows 7",
    u"Windows 8",
    u"Windows Server 2012",
    u"Windows Maximum",
};
constexpr std::u16string_view ArchitectureTexts[] = {u"Unknown", u"x32", u"x64", u"Itanuim"};
constexpr std::u16string_view ServicePackTexts[] = {
    u"Unknown",        u"",
    u"Service Pack 1", u"Service Pack 2",
    u"Service Pack 3", u"Service Pack 4",
    u"Service Pack 5", u"Service Pack Maximum",
};
constexpr std::u16string_view EditionTexts[] = {
    u"Unknown Edition",
    u"",
    u"Starter Edition",
    u"Home Basic Edition",
    u"Home Edition",
    u"Home Premium Edition",
    u"Home Server Edition",
    u"Business Edition",
    u"Cluster Server Edition",
    u"Datacenter Edition",
    u"Enterprise Edition",
    u"Advanced Edition",
    u"Professional Edition",
    u"Enterprise Edition",
    u"Small Business Edition",
    u"Small Business Premium Edition",
    u"Standard Edition",
    u"Storage Enterprise Edition",
    u"Storage Express Edition",
    u"Storage Standard Edition",
    u"Storage Workgroup Edition",
    u"Web Server Edition",
    u"Media Center Edition",
    u"Ultimate Edition",
    u"Tablet PC Edition",
    u"Appliance Edition",
    u"Embedded Edition",
    u"Unlicensed",
};
static_assert(std::size(VersionTexts) == static_cast<std::size_t>(wvWinMaximum) + 1);
static_assert(std::size(EditionTexts) == static_cast<std::size_t>(weUnlicensed) + 1);

template <class TEnum, std::size_t Count>
constexpr std::u16string_view TextFrom(const std::u16string_view (&ATexts)[Count], TEnum AValue) noexcept {
  const auto index = static_cast<std::size_t>(AValue);
  return index < Count ? ATexts[index] : ATexts[0];
}

/// Kinds of system that the shell's IsOS tells apart.
enum : std::uint32_t {
  OsWin2000Pro = 8,
  OsWin2000Server = 9,
  OsWin2000AdvServer = 10,
  OsWin2000Datacenter = 11,
  OsEmbedded = 13,
  OsHome = 19,
  OsProfessional = 20,
  OsDatacenter = 21,
  OsAdvServer = 22,
  OsServer = 23,
  OsPersonalTerminalServer = 25,
  OsWow6432 = 30,
  OsWebServer = 31,
  OsSmallBusinessServer = 32,
  OsTabletPC = 33,
  OsMediaCenter = 35,
  OsAppliance = 36,
};

/// Indices of ISystemFacts::SystemMetric.
enum : std::int32_t { MetricTabletPC = 86, MetricMediaCenter = 87, MetricStarter = 88, MetricServerR2 = 89 };

constexpr std::uint16_t SuiteHomeServer = 0x8000;
constexpr std::uint32_t UnlicensedProduct = 0xABCDABCD;

struct TState {
  ISystemFacts& System;
  IShell& Shell;
  IModules& Modules;
  // Answers; 0 stands for "not yet". Two threads may compute one at the same time: they get the same.
  std::atomic<std::int32_t> Version{0};
  std::atomic<std::int32_t> Architecture{0};
  std::atomic<std::int32_t> ServicePack{0};
  std::atomic<std::int32_t> Edition{0};
  std::mutex DllLock;
  std::map<std::u16string, TDllVersion, TTextLess> DllVersions;

  TState(ISystemFacts& ASystem, IShell& AShell, IModules& AModules) noexcept
      : System(ASystem), Shell(AShell), Modules(AModules) {}
};
std::unique_ptr<TState> LoadedState;

TState& State() {
  if (LoadedState == nullptr) throw EAssertionFailed(u"uAxWinVersionInfo", __LINE__);
  return *LoadedState;
}

[[noreturn]] void RaiseFailure(std::u16string_view AFunction, TWinError ACode) {
  throw TWinVersionInfoException(AFunction, ACode, State().System.ErrorText(ACode));
}

TVersionFacts VersionFacts() {
  TVersionFacts facts;
  const TWinError error = State().System.GetVersionFacts(facts);
  if (error != WinError::Success) RaiseFailure(u"GetVersionEx", error);
  return facts;
}

/// The kept answer, or AAsk's, which is kept then.
template <class TEnum, class TAsk>
TEnum Once(std::atomic<std::int32_t>& AKept, TAsk AAsk) {
  std::int32_t value = AKept.load(std::memory_order_relaxed);
  if (value == 0) {
    value = static_cast<std::int32_t>(AAsk());
    AKept.store(value, std::memory_order_relaxed);
  }
  return static_cast<TEnum>(value);
}

TWindowsVersion VersionOfNT(const TVersionFacts& AFacts) {
  const bool workstation = AFacts.ProductType == ProductType::Workstation;
  if (AFacts.Major > 6 || (AFacts.Major == 6 && AFacts.Minor >= 2)) return workstation ? wvWin8 : wvWinSrv2012;
  if (AFacts.Major == 6 && AFacts.Minor == 1) return workstation ? wvWin7 : wvWinSrv2008R2;
  if (AFacts.Major == 6) return workstation ? wvWinVista : wvWinSrv2008;
  if (AFacts.Major < 5) return wvWinNT4;
  if (AFacts.Minor == 0) return wvWin2000;
  if (AFacts.Minor == 1) return wvWinXP;
  if ((AFacts.SuiteMask & SuiteHomeServer) != 0) return wvWinSrvHome;
  if (workstation) return wvWinXP;  // the 64-bit edition
  return State().System.SystemMetric(MetricServerR2) == 0 ? wvWinSrv2003 : wvWinSrv2003R2;
}

TWindowsVersion AskVersion() {
  const TVersionFacts facts = VersionFacts();
  switch (facts.Platform) {
    case VersionPlatform::Win32s:
      return wvWin32s;
    case VersionPlatform::Windows9x:
      if (facts.Major != 4) return wvUnknown;
      if (facts.Minor >= 90) return wvWinME;
      if (facts.Minor < 10) return wvWin95;
      return facts.ServicePackText.size() >= 2 && facts.ServicePackText[1] == u'A' ? wvWin98SE : wvWin98;
    case VersionPlatform::WindowsNT:
      return VersionOfNT(facts);
    default:
      return wvUnknown;
  }
}

/// The edition of a product type; weUnknown when it names none.
TWindowsEdition EditionOfProduct(std::uint32_t AType) noexcept {
  constexpr TWindowsEdition editions[] = {
      weUnknown,          weUltimate,
      weHomeBasic,        weHomePremium,
      weEnterprise,       weHomeBasic,
      weBusiness,         weStandardEdition,
      weServerDatacenter, weSmallBusiness,
      weServerEnterprise, weStarter,
      weServerDatacenter, weStandardEdition,
      weServerEnterprise, weServerEnterprise,
      weBusiness,         weWebServer,
      weClusterServer,    weHomeServer,
      weStorageExpress,   weStorageStandard,
      weStorageWorkgroup, weStorageEnterprise,
      weSmallBusiness,    weSmallBusinessPremium,
      weHomePremium,      weEnterprise,
      weUltimate,         weWebServer,
  };
  if (AType == UnlicensedProduct) return weUnlicensed;
  return AType < std::size(editions) ? editions[AType] : weUnknown;
}

TWindowsEdition EditionOfSuite() {
  constexpr std::pair<std::uint16_t, TWindowsEdition> suites[] = {
      {0x0021, weSmallBusiness}, {0x0002, weEnterprise},      {0x0080, weServerDatacenter}, {0x0200, weHome},
      {0x0400, weWebServer},     {0x2000, weStorageStandard}, {0x4000, weClusterServer},    {0x0040, weEmbedded},
  };
  const std::uint16_t mask = VersionFacts().SuiteMask;
  for (const auto& [bits, edition] : suites) {
    if ((mask & bits) == 0) continue;
    return edition == weEnterprise && WinVersionInfo::WindowsVersion() == wvWin2000 ? weAdvanced : edition;
  }
  return weUnknown;
}

TWindowsEdition EditionOfShell() {
  constexpr std::pair<std::uint32_t, TWindowsEdition> kinds[] = {
      {OsWin2000Pro, weProfessional},
      {OsWin2000Server, weStandardEdition},
      {OsServer, weStandardEdition},
      {OsWin2000AdvServer, weAdvanced},
      {OsWin2000Datacenter, weServerDatacenter},
      {OsDatacenter, weServerDatacenter},
      {OsEmbedded, weEmbedded},
      {OsSmallBusinessServer, weSmallBusiness},
      {OsAppliance, weAppliance},
      {OsWebServer, weWebServer},
      {OsAdvServer, weEnterprise},
      {OsProfessional, weProfessional},
      {OsHome, weHome},
      {OsPersonalTerminalServer, weHome},
      {OsMediaCenter, weMediaCenter},
      {OsTabletPC, weTabletPC},
  };
  for (const auto& [kind, edition] : kinds) {
    if (!WinVersionInfo::IsOS(kind)) continue;
    return edition == weEnterprise && WinVersionInfo::WindowsVersion() == wvWin2000 ? weAdvanced : edition;
  }
  return weUnknown;
}

TWindowsEdition EditionOfMetrics() {
  ISystemFacts& system = State().System;
  if (system.SystemMetric(MetricMediaCenter) != 0) return weMediaCenter;
  if (system.SystemMetric(MetricStarter) != 0) return weStarter;
  if (system.SystemMetric(MetricTabletPC) != 0) return weTabletPC;
  return weUnknown;
}

TWindowsEdition AskEdition() {
  if (WinVersionInfo::WindowsVersion() >= wvWinVista) {
    std::uint32_t type = 0;
    constexpr std::uint32_t any = 0xFFFFFFFF;
    const TWinError error = State().System.GetProductType(any, any, any, any, type);
    if (error != WinError::Success) RaiseFailure(u"GetProductInfo", error);
    if (const TWindowsEdition edition = EditionOfProduct(type); edition != weUnknown) return edition;
  }
  for (const auto ask : {EditionOfSuite, EditionOfShell, EditionOfMetrics}) {
    if (const TWindowsEdition edition = ask(); edition != weUnknown) return edition;
  }
  return weNone;
}

}  // namespace

std::u16string_view TextOf(TWindowsVersion AVersion) noexcept { return TextFrom(VersionTexts, AVersion); }
std::u16string_view TextOf(TProcessorArchitecture AArchitecture) noexcept {
  return TextFrom(ArchitectureTexts, AArchitecture);
}
std::u16string_view TextOf(TServicePack AServicePack) noexcept { return TextFrom(ServicePackTexts, AServicePack); }
std::u16string_view TextOf(TWindowsEdition AEdition) noexcept { return TextFrom(EditionTexts, AEdition); }

TWinVersionInfoException::TWinVersionInfoException(std::u16string_view AFunction, TWinError ACode,
                                                   std::u16string_view AText)
    : Exception(
          Format(u"WinVersionInfo.%s() (Error code: %d). %s", {AFunction, static_cast<std::int32_t>(ACode), AText})) {}

void WinVersionInfo::Load(ISystemFacts& ASystem, IShell& AShell, IModules& AModules) {
  LoadedState = std::make_unique<TState>(ASystem, AShell, AModules);
}

void WinVersionInfo::Unload() noexcept { LoadedState.reset(); }

TWindowsVersion WinVersionInfo::WindowsVersion() { return Once<TWindowsVersion>(State().Version, AskVersion); }

TProcessorArchitecture WinVersionInfo::ProcessorArchitecture() {
  return Once<TProcessorArchitecture>(State().Architecture, [] {
    const bool native = IsWow64Process();
    std::uint16_t architecture = 0;
    const TWinError error = State().System.ProcessorArchitecture(native, architecture);
    if (error != WinError::Success) RaiseFailure(native ? u"GetNativeSystemInfo" : u"GetSystemInfo", error);
    switch (architecture) {
      case Architecture::Intel:
        return TProcessorArchitecture::pax32;
      case Architecture::Amd64:
        return TProcessorArchitecture::pax64;
      case Architecture::Itanium:
        return TProcessorArchitecture::paItanuim;
      default:
        return TProcessorArchitecture::paUnknown;
    }
  });
}

TServicePack WinVersionInfo::ServicePack() {
  return Once<TServicePack>(State().ServicePack, [] {
    const std::int32_t major = std::min<std::int32_t>(VersionFacts().ServicePackMajor, 5);
    return static_cast<TServicePack>(static_cast<std::int32_t>(TServicePack::spNone) + major);
  });
}

TWindowsEdition WinVersionInfo::WindowsEdition() { return Once<TWindowsEdition>(State().Edition, AskEdition); }

bool WinVersionInfo::IsWow64Process() {
  bool answer = false;
  if (State().System.QueryWow64(answer) == WinError::Success) return answer;
  return IsOS(OsWow6432);
}

bool WinVersionInfo::IsWindows(TWindowsVersion AMin, TWindowsVersion AMax) {
  const TWindowsVersion version = WindowsVersion();
  return AMin <= version && version <= AMax;
}

bool WinVersionInfo::IsWindows(TWindowsVersion AMinVersion, TServicePack AMinServicePack, TWindowsVersion AMaxVersion,
                               TServicePack AMaxServicePack) {
  const std::pair own{WindowsVersion(), ServicePack()};
  return std::pair{AMinVersion, AMinServicePack} <= own && own <= std::pair{AMaxVersion, AMaxServicePack};
}

bool WinVersionInfo::GetDllVersion(std::u16string_view ADllName, TDllVersion& AInfo) {
  return State().Modules.QueryDllVersion(ADllName, AInfo) == WinError::Success;
}

bool WinVersionInfo::IsDllVersion(std::u16string_view ADllName, std::uint32_t AMinMajor, std::uint32_t AMinMinor,
                                  std::uint32_t AMaxMajor, std::uint32_t AMaxMinor) {
  TState& state = State();
  const std::scoped_lock guard(state.DllLock);
  auto found = state.DllVersions.find(ADllName);
  if (found == state.DllVersions.end()) {
    TDllVersion asked;
    if (!GetDllVersion(ADllName, asked)) return false;
    found = state.DllVersions.emplace(ADllName, asked).first;
  }
  const std::pair version{found->second.Major, found->second.Minor};
  return std::pair{AMinMajor, AMinMinor} <= version && version <= std::pair{AMaxMajor, AMaxMinor};
}

std::u16string WinVersionInfo::WindowsVersionString() {
  std::u16string result(TextOf(WindowsVersion()));
  const auto append = [&result](std::u16string_view AText) { result.append(u" ").append(AText); };
  if (ProcessorArchitecture() != TProcessorArchitecture::paUnknown) append(TextOf(ProcessorArchitecture()));
  if (WindowsEdition() >= weStarter) append(TextOf(WindowsEdition()));
  if (ServicePack() >= TServicePack::sp1) append(TextOf(ServicePack()));
  return result + Format(u" (build: %u)", {VersionFacts().Build});
}

bool WinVersionInfo::IsOS(std::uint32_t AKind) {
  constexpr std::uint32_t any = 0xFFFFFFFF;
  bool answer = false;
  if (!IsDllVersion(u"shlwapi.dll", 5, 0, any, any)) return false;
  return State().Shell.QueryIsOS(AKind, answer) == WinError::Success && answer;
}

}  // namespace varcolin
