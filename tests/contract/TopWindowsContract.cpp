// What every implementation of top-level windows has to do. Needs a display.
#include <gtest/gtest.h>

#include <algorithm>

#include "contract/MachineUnderTest.h"
#include "platform/ProcessStart.h"
#include "platform/Sync.h"
#include "platform/TopWindows.h"

namespace varcolin {
namespace {

TEST(TopWindowsContract, KnowsTheWindowsOfOtherProcesses) {
  TMachine& machine = testing::MachineUnderTest();
  ITopWindows& windows = machine.Windows;
  TProcessInfo info;
  const std::u16string command = u"\"" + testing::TestProgram() + u"\" window Contract 20000";
  ASSERT_EQ(machine.Starts.StartAsSelf(command, 0, info), WinError::Success);
  TWindowHandle window = 0;
  TWindowFacts facts;
  for (int tries = 0; tries < 200 && window == 0; ++tries) {
    std::vector<TWindowHandle> all;
    ASSERT_EQ(windows.EnumTopWindows(all), WinError::Success);
    const auto found = std::ranges::find_if(all, [&](TWindowHandle AWindow) {
      return windows.GetWindowFacts(AWindow, facts) == WinError::Success && facts.ProcessId == info.ProcessId &&
             windows.GetTitle(AWindow) == u"Contract";
    });
    if (found != all.end()) {
      window = *found;
    } else {
      machine.Sync.SleepFor(50);
    }
  }
  ASSERT_NE(window, 0U) << "no window; is there a display?";
  EXPECT_EQ(facts.Parent, 0U);
  EXPECT_NE(facts.Style & WindowStyle::SysMenu, 0U);
  EXPECT_EQ(facts.StyleEx & WindowStyleEx::ToolWindow, 0U);
  EXPECT_FALSE(facts.IsMinimised);
  TIcon icon;
  EXPECT_EQ(windows.CopySmallIcon(window, icon), WinError::ResourceNameNotFound);
  EXPECT_FALSE(icon);
  windows.RestoreWindow(window);
  windows.BringToTop(window);
  EXPECT_EQ(windows.GetWindowFacts(window, facts), WinError::Success);
  EXPECT_TRUE(facts.IsVisible);
}

TEST(TopWindowsContract, PassesOverWhatIsNoWindow) {
  ITopWindows& windows = testing::MachineUnderTest().Windows;
  constexpr TWindowHandle noWindow = 0x7FFFFFF0;
  TWindowFacts facts;
  facts.ProcessId = 1;
  EXPECT_EQ(windows.GetWindowFacts(noWindow, facts), WinError::InvalidWindowHandle);
  EXPECT_EQ(facts.ProcessId, 1U);
  EXPECT_EQ(windows.GetTitle(noWindow), u"");
  TIcon icon;
  EXPECT_EQ(windows.CopySmallIcon(noWindow, icon), WinError::InvalidWindowHandle);
  windows.RestoreWindow(noWindow);
  windows.BringToTop(noWindow);
}

}  // namespace
}  // namespace varcolin
