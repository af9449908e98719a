// Which Windows this is, from what the system tells of itself.
#include <gtest/gtest.h>

#include <map>
#include <set>

#include "contract/MachineUnderTest.h"
#include "platform/decorators/ForwardingModules.h"
#include "platform/decorators/ForwardingSystem.h"
#include "support/uAxWinVersionInfo.h"

namespace varcolin {
namespace {

using enum TWindowsVersion;
using enum TWindowsEdition;

TVersionFacts Version(std::uint32_t AMajor, std::uint32_t AMinor, std::uint16_t ASuite = 0) {
  TVersionFacts facts;
  facts.Major = AMajor;
  facts.Minor = AMinor;
  facts.Build = 2600;
  facts.SuiteMask = ASuite;
  return facts;
}

/// A system that tells just what a test wants, also what no machine would.
class TFakeSystem final : public TForwardingSystemFacts, public TForwardingShell, public TForwardingModules {
 public:
  TFakeSystem()
      : TForwardingSystemFacts(testing::MachineUnderTest().System),
        TForwardingShell(testing::MachineUnderTest().Shell),
        TForwardingModules(testing::MachineUnderTest().Modules) {}

  TVersionFacts Facts = Version(6, 1);
  TWinError VersionError = WinError::Success;
  int VersionCalls = 0;
  std::uint16_t SeenArchitecture = Architecture::Intel;
  std::uint16_t NativeArchitecture = Architecture::Amd64;
  std::uint32_t ProductType = 0;
  TWinError ProductError = WinError::Success;
  bool Wow64 = true;
  TWinError Wow64Error = WinError::Success;
  std::map<std::int32_t, std::int32_t> Metrics;
  std::set<std::uint32_t> Kinds;
  std::uint32_t ShlwapiMajor = 6;

  TWinError GetVersionFacts(TVersionFacts& AFacts) override {
    ++VersionCalls;
    if (VersionError == WinError::Success) AFacts = Facts;
    return VersionError;
  }
  TWinError ProcessorArchitecture(bool ANative, std::uint16_t& AArchitecture) override {
    AArchitecture = ANative ? NativeArchitecture : SeenArchitecture;
    return WinError::Success;
  }
  TWinError GetProductType(std::uint32_t AMajor, std::uint32_t, std::uint32_t, std::uint32_t ASpMinor,
                           std::uint32_t& AType) override {
    EXPECT_TRUE(AMajor == 0xFFFFFFFF && ASpMinor == 0xFFFFFFFF);
    if (ProductError == WinError::Success) AType = ProductType;
    return ProductError;
  }
  TWinError QueryWow64(bool& AIsWow64) override {
    if (Wow64Error == WinError::Success) AIsWow64 = Wow64;
    return Wow64Error;
  }
  std::int32_t SystemMetric(std::int32_t AIndex) override { return Metrics[AIndex]; }
  std::u16string ErrorText(TWinError) override { return u"It failed."; }
  TWinError QueryIsOS(std::uint32_t AKind, bool& AAnswer) override {
    AAnswer = Kinds.contains(AKind);
    return WinError::Success;
  }
  TWinError QueryDllVersion(std::u16string_view AName, TDllVersion& AVersion) override {
    if (AName != u"shlwapi.dll") return WinError::ModuleNotFound;
    AVersion = {ShlwapiMajor, 1, 2, 2};
    return WinError::Success;
  }
};

class WinVersion : public ::testing::Test {
 protected:
  ~WinVersion() override { WinVersionInfo::Unload(); }
  void Load() { WinVersionInfo::Load(System, System, System); }

  TFakeSystem System;
};

TEST_F(WinVersion, IsToldByNumbersAndProductType) {
  constexpr std::uint8_t station = ProductType::Workstation;
  constexpr std::uint8_t server = ProductType::Server;
  constexpr std::uint8_t controller = ProductType::DomainController;
  const struct {
    std::uint32_t Platform, Major, Minor;
    std::uint8_t Type;
    std::uint16_t Suite;
    const char16_t* ServicePack;
    TWindowsVersion Version;
  } rows[] = {
      {VersionPlatform::Win32s, 3, 10, station, 0, u"", wvWin32s},
      {VersionPlatform::Windows9x, 4, 0, station, 0, u" B", wvWin95},
      {VersionPlatform::Windows9x, 4, 10, station, 0, u"", wvWin98},
      {VersionPlatform::Windows9x, 4, 10, station, 0, u" A ", wvWin98SE},
      {VersionPlatform::Windows9x, 4, 90, station, 0, u"", wvWinME},
      {VersionPlatform::Windows9x, 3, 0, station, 0, u"", wvUnknown},
      {VersionPlatform::WindowsNT, 4, 0, server, 0, u"", wvWinNT4},
      {VersionPlatform::WindowsNT, 5, 0, server, 0, u"", wvWin2000},
      {VersionPlatform::WindowsNT, 5, 1, station, 0, u"", wvWinXP},
      {VersionPlatform::WindowsNT, 5, 2, station, 0, u"", wvWinXP},
      {VersionPlatform::WindowsNT, 5, 2, server, 0, u"", wvWinSrv2003},
      {VersionPlatform::WindowsNT, 5, 2, server, 0x8000, u"", wvWinSrvHome},
      {VersionPlatform::WindowsNT, 6, 0, station, 0, u"", wvWinVista},
      {VersionPlatform::WindowsNT, 6, 0, server, 0, u"", wvWinSrv2008},
      {VersionPlatform::WindowsNT, 6, 1, station, 0, u"", wvWin7},
      {VersionPlatform::WindowsNT, 6, 1, controller, 0, u"", wvWinSrv2008R2},
      {VersionPlatform::WindowsNT, 6, 2, station, 0, u"", wvWin8},
      {VersionPlatform::WindowsNT, 6, 3, controller, 0, u"", wvWinSrv2012},
      {VersionPlatform::WindowsNT, 10, 0, station, 0, u"", wvWin8},
      {VersionPlatform::WindowsNT, 10, 0, server, 0, u"", wvWinSrv2012},
      {VersionPlatform::WindowsNT, 11, 1, station, 0, u"", wvWin8},
      {7, 6, 1, station, 0, u"", wvUnknown},
  };
  for (const auto& row : rows) {
    System.Facts = Version(row.Major, row.Minor, row.Suite);
    System.Facts.Platform = row.Platform;
    System.Facts.ServicePackText = row.ServicePack;
    System.Facts.ProductType = row.Type;
    Load();
    EXPECT_EQ(WinVersionInfo::WindowsVersion(), row.Version) << row.Platform << ' ' << row.Major << '.' << row.Minor;
  }
  System.Facts = Version(5, 2);
  System.Facts.ProductType = server;
  System.Metrics[89] = 1;
  Load();
  EXPECT_EQ(WinVersionInfo::WindowsVersion(), wvWinSrv2003R2);
}

TEST_F(WinVersion, EditionComesFromTheFirstRuleThatTells) {
  const struct {
    std::uint32_t Major, Minor, Product;
    std::uint16_t Suite;
    std::set<std::uint32_t> Kinds;
    std::int32_t Metric;
    TWindowsEdition Edition;
  } rows[] = {
      {6, 1, 1, 0x0200, {19}, 87, weUltimate},
      {6, 1, 5, 0, {}, 0, weHomeBasic},
      {6, 1, 13, 0, {}, 0, weStandardEdition},
      {6, 1, 15, 0, {}, 0, weServerEnterprise},
      {6, 1, 19, 0, {}, 0, weHomeServer},
      {6, 1, 23, 0, {}, 0, weStorageEnterprise},
      {6, 1, 25, 0, {}, 0, weSmallBusinessPremium},
      {6, 1, 29, 0, {}, 0, weWebServer},
      {6, 1, 0xABCDABCD, 0, {}, 0, weUnlicensed},
      {6, 1, 48, 0x0200, {20}, 0, weHome},  // a product type without a value
      {6, 1, 0, 0, {20}, 0, weProfessional},
      {5, 1, 1, 0x0021, {}, 0, weSmallBusiness},
      {5, 1, 1, 0x0020, {}, 0, weSmallBusiness},
      {5, 1, 1, 0x0082, {}, 0, weEnterprise},
      {5, 0, 1, 0x0002, {}, 0, weAdvanced},
      {5, 2, 1, 0x2040, {}, 0, weStorageStandard},
      {5, 1, 1, 0x0040, {}, 0, weEmbedded},
      {5, 1, 1, 0x0100, {20, 35}, 0, weProfessional},
      {5, 1, 1, 0, {35, 33}, 0, weMediaCenter},
      {5, 1, 1, 0, {25}, 0, weHome},
      {5, 0, 1, 0, {22}, 0, weAdvanced},
      {5, 1, 1, 0, {22}, 0, weEnterprise},
      {5, 1, 1, 0, {}, 88, weStarter},
      {5, 1, 1, 0, {}, 86, weTabletPC},
      {5, 1, 1, 0, {}, 0, weNone},
  };
  for (const auto& row : rows) {
    System.Facts = Version(row.Major, row.Minor, row.Suite);
    System.ProductType = row.Product;
    System.Kinds = row.Kinds;
    System.Metrics = {{row.Metric, 1}};
    Load();
    EXPECT_EQ(WinVersionInfo::WindowsEdition(), row.Edition)
        << row.Major << '.' << row.Minor << ' ' << row.Product << ' ' << row.Suite;
  }
  System.ShlwapiMajor = 4;  // its IsOS is not to be asked
  System.Kinds = {20};
  Load();
  EXPECT_EQ(WinVersionInfo::WindowsEdition(), weNone);
}

TEST_F(WinVersion, AFailedAnswerIsRaisedAndAskedForAgain) {
  System.ProductError = 5;
  Load();
  try {
    static_cast<void>(WinVersionInfo::WindowsEdition());
    ADD_FAILURE() << "no exception";
  } catch (const TWinVersionInfoException& e) {
    EXPECT_EQ(e.Message(), u"WinVersionInfo.GetProductInfo() (Error code: 5). It failed.");
  }
  System.ProductError = WinError::Success;
  System.ProductType = 4;
  EXPECT_EQ(WinVersionInfo::WindowsEdition(), weEnterprise);

  System.VersionError = WinError::NotEnoughMemory;
  Load();
  EXPECT_THROW(static_cast<void>(WinVersionInfo::WindowsVersion()), TWinVersionInfoException);
  System.VersionError = WinError::Success;
  System.VersionCalls = 0;
  EXPECT_TRUE(WinVersionInfo::IsWindows(wvWinVista));
  EXPECT_TRUE(WinVersionInfo::IsWindows(wvWin7, wvWin7));
  EXPECT_FALSE(WinVersionInfo::IsWindows(wvUnknown, wvWinVista));
  EXPECT_EQ(System.VersionCalls, 1) << "an answer is kept";
}

TEST_F(WinVersion, Wow64FallsBackToTheShell) {
  Load();
  EXPECT_TRUE(WinVersionInfo::IsWow64Process());
  EXPECT_EQ(WinVersionInfo::ProcessorArchitecture(), TProcessorArchitecture::pax64);
  System.Wow64Error = WinError::ProcedureNotFound;
  EXPECT_FALSE(WinVersionInfo::IsWow64Process());
  System.Kinds = {30};
  EXPECT_TRUE(WinVersionInfo::IsWow64Process());
  System.Wow64Error = WinError::Success;
  System.Wow64 = false;
  Load();
  EXPECT_EQ(WinVersionInfo::ProcessorArchitecture(), TProcessorArchitecture::pax32);
}

TEST_F(WinVersion, RangesAndDescription) {
  using enum TServicePack;
  System.Facts = Version(5, 1);
  System.Facts.ServicePackMajor = 2;
  System.Wow64 = false;
  Load();
  EXPECT_TRUE(WinVersionInfo::IsWindows(wvWinXP, sp2, wvWinXP, sp2));
  EXPECT_FALSE(WinVersionInfo::IsWindows(wvWinXP, sp3, wvWin8, spNone));
  EXPECT_TRUE(WinVersionInfo::IsWindows(wvWin2000, sp4, wvWinVista, spNone));
  EXPECT_EQ(WinVersionInfo::WindowsVersionString(), u"Windows XP x32 Service Pack 2 (build: 2600)");
  EXPECT_TRUE(WinVersionInfo::IsDllVersion(u"shlwapi.dll", 5, 9, 6, 1));
  EXPECT_FALSE(WinVersionInfo::IsDllVersion(u"shlwapi.dll", 6, 2, 9, 0));
  EXPECT_FALSE(WinVersionInfo::IsDllVersion(u"absent.dll", 0, 0, 9, 9));

  System.Facts.ServicePackMajor = 9;
  System.Metrics[88] = 1;
  System.SeenArchitecture = 99;
  Load();
  EXPECT_EQ(WinVersionInfo::ServicePack(), sp5);
  EXPECT_EQ(WinVersionInfo::WindowsVersionString(), u"Windows XP Starter Edition Service Pack 5 (build: 2600)");
}

}  // namespace
}  // namespace varcolin
