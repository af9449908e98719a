// The real calls on a shell that has an application manager: one that the test registers, since Wine has none.
#include <gtest/gtest.h>

#include <algorithm>
#include <bit>
#include <thread>

#include "contract/MachineUnderTest.h"
#include "platform/AppManager.h"
#include "platform/Com.h"
#include "platform/Sync.h"
#include "platform/windows/ShellApps.h"
#include "platform/windows/WindowsApi.h"
#include "support/uInterfacedObject.h"

namespace varcolin {
namespace {

int Alive = 0;  ///< objects that the fake shell has given out

struct TCounted {
  TCounted() { ++Alive; }
  ~TCounted() { --Alive; }
};

class TFakeApp final : public TInterfacedObject<IShellInstalledApp> {
 public:
  explicit TFakeApp(int ANumber) : FNumber(ANumber) {}
  TResultCode VARCOLIN_CALL GetAppInfo(void*) override { return ResultNotImplemented; }
  TResultCode VARCOLIN_CALL GetPossibleActions(std::uint32_t*) override { return ResultNotImplemented; }
  TResultCode VARCOLIN_CALL GetSlowAppInfo(TShellSlowAppInfo* AInfo) override {
    EXPECT_TRUE(AInfo->Size == 0 && AInfo->TimesUsed == 0 && AInfo->Image == nullptr) << "not cleared";
    if (FNumber == 1) return ResultNotImplemented;
    constexpr std::u16string_view path = u"C:\\x.exe";
    AInfo->Size = 1ULL << 33;
    AInfo->LastUsedHigh = 2;
    AInfo->LastUsedLow = 3;
    AInfo->TimesUsed = -1;
    if (FNumber == 0) {
      AInfo->Image = static_cast<wchar_t*>(CoTaskMemAlloc((path.size() + 1) * sizeof(wchar_t)));
      std::copy_n(AsWide(path.data()), path.size() + 1, AInfo->Image);
    }
    return ResultOk;
  }

 private:
  int FNumber;
  TCounted FCounted;
};

class TFakeApps final : public TInterfacedObject<IShellEnumInstalledApps> {
 public:
  TResultCode VARCOLIN_CALL Next(IShellInstalledApp** AApp) override {
    if (FNext == 3) return S_FALSE;
    *AApp = MakeObject<TFakeApp, IShellInstalledApp>(FNext++).Detach();
    return ResultOk;
  }
  TResultCode VARCOLIN_CALL Reset() override { return ResultNotImplemented; }

 private:
  int FNext = 0;
  TCounted FCounted;
};

/// Windows: IClassFactory.
struct IFactory : IInterface {
  static constexpr TGUID IID{0x00000001, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
  virtual TResultCode VARCOLIN_CALL CreateInstance(IInterface* AOuter, const TGUID& AIID, void** AObject) = 0;
  virtual TResultCode VARCOLIN_CALL LockServer(std::int32_t ALock) = 0;

 protected:
  ~IFactory() = default;
};

class TFakeFactory final : public TInterfacedObject<IFactory> {
 public:
  TResultCode VARCOLIN_CALL CreateInstance(IInterface*, const TGUID& AIID, void** AObject) override {
    return MakeObject<TFakeApps, IShellEnumInstalledApps>()->QueryInterface(AIID, AObject);
  }
  TResultCode VARCOLIN_CALL LockServer(std::int32_t) override { return ResultOk; }
};

TEST(WindowsAppManager, WalksApplicationsAndGivesEverythingBack) {
  std::thread([] {
    const TMachine& machine = testing::MachineUnderTest();
    const TComScope com(machine.Com, ECom::Apartment);
    const auto factory = MakeObject<TFakeFactory, IFactory>();
    DWORD cookie = 0;
    ASSERT_EQ(
        CoRegisterClassObject(std::bit_cast<CLSID>(EnumInstalledAppsClass), reinterpret_cast<IUnknown*>(factory.Get()),
                              CLSCTX_INPROC_SERVER, REGCLS_MULTIPLEUSE, &cookie),
        S_OK);
    {
      TInstalledApps apps;
      TInstalledApp app;
      ASSERT_EQ(machine.Apps.EnumInstalledApps(apps), WinError::Success);
      TSlowAppInfo info;
      ASSERT_EQ(machine.Apps.NextApp(apps, app), WinError::Success);
      ASSERT_EQ(machine.Apps.GetSlowAppInfo(app, info), WinError::Success);
      const TSlowAppInfo expected{1ULL << 33, {0x2'0000'0003}, -1, u"C:\\x.exe"};
      EXPECT_EQ(info, expected);
      ASSERT_EQ(machine.Apps.NextApp(apps, app), WinError::Success);
      EXPECT_EQ(machine.Apps.GetSlowAppInfo(app, info), static_cast<TWinError>(ResultNotImplemented));
      EXPECT_EQ(info, expected) << "untouched";
      ASSERT_EQ(machine.Apps.NextApp(apps, app), WinError::Success);
      ASSERT_EQ(machine.Apps.GetSlowAppInfo(app, info), WinError::Success);
      EXPECT_EQ(info.Image, u"");
      EXPECT_EQ(machine.Apps.NextApp(apps, app), WinError::NoMoreItems);
    }
    EXPECT_EQ(Alive, 0);
    EXPECT_EQ(CoRevokeClassObject(cookie), S_OK);
  }).join();
}

TEST(WindowsSync, ALowerPriorityIsTheCallingThreads) {
  std::thread([] {
    ASSERT_EQ(testing::MachineUnderTest().Sync.SetOwnPriority(ThreadPriority::Lowest), WinError::Success);
    EXPECT_EQ(GetThreadPriority(GetCurrentThread()), THREAD_PRIORITY_LOWEST);
  }).join();
  EXPECT_EQ(GetThreadPriority(GetCurrentThread()), THREAD_PRIORITY_NORMAL);
}

}  // namespace
}  // namespace varcolin
