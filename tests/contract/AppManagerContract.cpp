// What every implementation of the shell's application manager has to do.
#include <gtest/gtest.h>

#include <thread>

#include "contract/MachineUnderTest.h"
#include "platform/AppManager.h"
#include "platform/Com.h"

namespace varcolin {
namespace {

constexpr TWinError ClassNotRegistered = 0x80040154;

/// A thread of its own: the test program's may have joined COM in any way, or not.
template <class TBody>
void RunJoined(TBody ABody) {
  std::thread([&] {
    const TComScope com(testing::MachineUnderTest().Com, ECom::Apartment);
    ABody(testing::MachineUnderTest().Apps);
  }).join();
}

TEST(AppManagerContract, WalksToTheEndAndStaysThere) {
  RunJoined([](IAppManager& AApps) {
    TInstalledApps apps;
    const TWinError code = AApps.EnumInstalledApps(apps);
    if (testing::IsWine()) {  // its shell has no application manager
      EXPECT_EQ(code, ClassNotRegistered);
      EXPECT_FALSE(apps);
      return;
    }
    ASSERT_EQ(code, WinError::Success);
    TInstalledApp app;
    while (AApps.NextApp(apps, app) == WinError::Success) {
      ASSERT_TRUE(app);
      TSlowAppInfo info;
      if (AApps.GetSlowAppInfo(app, info) != WinError::Success) {
        EXPECT_EQ(info, TSlowAppInfo());
      }
    }
    app.Close();
    EXPECT_EQ(AApps.NextApp(apps, app), WinError::NoMoreItems);
    EXPECT_FALSE(app);
  });
}

TEST(AppManagerContract, AHandleThatIsNoneFails) {
  RunJoined([](IAppManager& AApps) {
    TInstalledApp app;
    EXPECT_EQ(AApps.NextApp(TInstalledApps(), app), WinError::InvalidHandle);
    TSlowAppInfo info{7, {}, 7, u"kept"};
    EXPECT_EQ(AApps.GetSlowAppInfo(app, info), WinError::InvalidHandle);
    EXPECT_EQ(info, (TSlowAppInfo{7, {}, 7, u"kept"}));
  });
}

}  // namespace
}  // namespace varcolin
