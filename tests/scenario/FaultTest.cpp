// Discovery on a machine whose calls fail.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>

#include "common/Session.h"
#include "host/Discovery.h"
#include "host/HostError.h"
#include "locations/uLocationExeInfo.h"
#include "platform/decorators/FaultInjection.h"
#include "support/uExceptions.h"

namespace varcolin::testing {
namespace {

using TLines = std::vector<std::string>;

#define UNINSTALL "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"
#define PRODUCTS \
  "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\S-1-5-18\\Products\\"

constexpr const char* Machine =
    "[" UNINSTALL
    "A]\n\"DisplayName\"=\"A\"\n\"UninstallString\"=\"C:\\\\T\\\\u.exe\"\n\"InstallLocation\"=\"C:\\\\T\"\n"
    "[" UNINSTALL
    "B]\n\"DisplayName\"=\"B\"\n\"DisplayName_Localized\"=\"@C:\\\\T\\\\u.exe,-1\"\n"
    "[" UNINSTALL
    "C]\n\"DisplayName\"=\"A\"\n\"SystemComponent\"=dword:1\n"
    "[" PRODUCTS
    "8765432143214321214321436587A9CB\\InstallProperties]\n\"DisplayName\"=\"Suite\"\n"
    "[" PRODUCTS
    "8765432143214321214321436587A9CB\\Patches\\00000000000000000000000000000010]\n\"DisplayName\"=\"Fix\"\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\HotFix\\KB123456]\n\"Installed\"=dword:1\n"
    "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\D]\n\"DisplayName\"=\"D\"\n"
    "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Component Based Servicing\\Packages\\P]\n"
    "\"CurrentState\"=dword:70\n";

constexpr std::string_view Manifest =
    "<assembly displayName='Fix'><assemblyIdentity name='P'/><package identifier='K' releaseType='Hotfix'/></assembly>";

/// Whether every title of a part stands in the whole.
bool IsSubset(TLines APart, TLines AWhole) {
  std::sort(APart.begin(), APart.end());
  std::sort(AWhole.begin(), AWhole.end());
  return std::includes(AWhole.begin(), AWhole.end(), APart.begin(), APart.end());
}

class FaultTest : public ::testing::TestWithParam<EFault> {};

TEST_P(FaultTest, NoFailedCallLosesMoreThanWhatItReads) {
  std::uint64_t number = 1;
  for (bool injected = true; injected; ++number) {
    TSession session;
    session.Machine().Files().AddFile(u"C:\\T\\u.exe", "content");
    session.Machine().Files().AddFile(u"C:\\Windows\\Servicing\\Packages\\P.mum", Manifest);
    session.Reg(Machine);
    std::atomic<bool> isArmed{false};
    // a sibling library that cannot be loaded ends the process, which is another test's
    TFaultPlan plan(GetParam(), number, TFaultPlan::UnexpectedError, [&](const TCall& ACall) {
      return isArmed && ACall.Method != "LoadModule" && ACall.Method != "FindExport";
    });
    TFaultyMachine faulty(session.Machine().Facilities(), plan);
    session.Load(faulty.Facilities());
    isArmed = true;
    session.Discover();
    isArmed = false;
    injected = plan.InjectionCount() > 0;
    const TLines programs = {"A", "B", "D", "Suite {12345678-1234-1234-1234-123456789ABC}"};
    const TLines found = session.ProgramTitles();
    EXPECT_TRUE(IsSubset(found, programs)) << "call " << number;
    // a single failure is at worst that of opening a list of keys, which holds two programs here
    if (GetParam() == EFault::Transient) {
      EXPECT_GE(found.size() + 2, programs.size()) << "call " << number;
    }
    session.Discover();
    TLines again = session.ProgramTitles();
    std::sort(again.begin(), again.end());
    EXPECT_EQ(again, programs) << "after call " << number;
    const TLines updates = session.UpdateTitles();
    EXPECT_EQ(std::count(updates.begin(), updates.end(), "Fix P (7) <Windows 7>"), 1) << "after call " << number;
    session.Unload();
    EXPECT_EQ(session.Machine().OpenHandleCount(), 0U) << "call " << number;
  }
  EXPECT_GT(number, 50U) << "the sweep has reached nothing";
}

INSTANTIATE_TEST_SUITE_P(Sweep, FaultTest, ::testing::Values(EFault::Transient, EFault::Persistent, EFault::Periodic));

TEST(FaultTest, AReaderThatFailsIsLoggedAndNotWaitedForAndAnotherMayStart) {
  TSession session;
  IVarcolin& manager = session.Load();
  std::atomic<int> calls{0};
  TLocationUninstall::RegisterClass([&]() -> std::unique_ptr<TLocationUninstall> {
    if (calls++ == 0) throw Exception(u"No place to look");
    return std::make_unique<TLocationExeInfo>(session.Machine().Registry(), session.Machine().Files());
  });
  {
    host::TDiscovery discovery(manager);
    EXPECT_THROW(discovery.WaitUntilLoaded(), host::EHostError);
  }
  manager.Stop();
  EXPECT_EQ(manager.GetState(), TVRCState::vrcsListLoading);
  const TLines log = session.LogLines();
  EXPECT_EQ(std::count(log.begin(), log.end(), "Error message : No place to look"), 1);
  session.Discover();
  EXPECT_EQ(manager.GetState(), TVRCState::vrcsLoaded);
}

TEST(FaultTest, HostileEntriesHideNoOther) {
  TSession session;
  auto& registry = session.Machine().Registry();
  const std::u16string uninstall = u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
  const std::u16string longName(16000, u'N');
  registry.SetTextAt(uninstall + u"0", u"DisplayName", longName);
  registry.SetTextAt(uninstall + u"1", u"DisplayName", u"Megabyte");
  const std::vector<std::byte> megabyte(1 << 20, std::byte{0x41});
  registry.SetValueAt(uninstall + u"1", u"UninstallString", RegType::String, megabyte);
  registry.SetTextAt(uninstall + u"2", u"DisplayName", u"Denied");
  registry.DenyAccess(uninstall + u"2");
  registry.SetValueAt(uninstall + u"3", u"DisplayName", RegType::String, {});
  registry.SetTextAt(uninstall + u"3", u"ProductID", u"{00000000-0000-0000-0000-000000000000}");
  registry.SetTextAt(uninstall + u"4", u"DisplayName", std::u16string(u"Lone \xD800 and \x0007"));
  registry.SetTextAt(uninstall + u"5", u"DisplayIcon", u"C:\\,,,-99999999999999999999");
  registry.SetTextAt(uninstall + u"5", u"DisplayName", u"Icon");
  registry.SetTextAt(uninstall + u"6", u"UninstallString", u"\"\"\"\" \"\" %%% \\\\?\\");
  registry.SetTextAt(uninstall + u"6", u"DisplayName", u"Command");
  for (int copy = 0; copy < 3000; ++copy) {
    const std::u16string key = uninstall + u"c" + std::u16string(1, char16_t(0x4E00 + copy));
    registry.SetTextAt(key, u"DisplayName", u"Copy");
    registry.SetTextAt(key, u"ProductID", u"{00000000-0000-0000-0000-00000000000C}");
    if (copy % 2 == 0) registry.SetDwordAt(key, u"SystemComponent", 1);
  }
  session.Discover();
  TLines titles = session.ProgramTitles();
  ASSERT_EQ(titles.size(), 6U);
  EXPECT_EQ(titles[0].size(), longName.size());
  titles.erase(titles.begin());
  EXPECT_EQ(titles, (TLines{"Megabyte", "Lone \xEF\xBF\xBD and \x07", "Icon", "Command",
                            "Copy {00000000-0000-0000-0000-00000000000C}"}));
}

}  // namespace
}  // namespace varcolin::testing
