// The refresh of what the shell keeps about the installed programs.
#include <gtest/gtest.h>

#include "common/Session.h"
#include "locations/uRefreshARPCache.h"
#include "platform/decorators/FaultInjection.h"

namespace varcolin::testing {
namespace {

using TLines = std::vector<std::string>;
using TNames = std::vector<std::u16string>;

constexpr TWinError ClassNotRegistered = 0x80040154;

/// Two applications, and between them one that the shell can tell nothing about and one that takes it a second.
std::vector<TSimulatedApp> Apps() {
  return {{u"Dunlin", {1 << 20, {}, 3, u"C:\\Dunlin\\d.exe"}, WinError::Success, 0},
          {u"Broken", {}, WinError::FileNotFound, 0},
          {u"Slow", {}, WinError::Success, 1000},
          {u"Pinfold", {}, WinError::Success, 0}};
}

TInterfaceRef<IBackgroundWork> StateOf(IVarcolin& AManager) {
  TInterfaceRef<IBackgroundWork> state;
  EXPECT_EQ(AManager.QueryInterface(IBackgroundWork::IID, reinterpret_cast<void**>(state.Receive())), ResultOk);
  return state;
}

/// Lets time pass until the refresh has ended by itself.
void RunToItsEnd(TSession& ASession) {
  const auto state = StateOf(ASession.Manager());
  ASession.Machine().Clock().AdvanceUntil([&] { return !state->IsRefreshingARPCache(); }, 500);
}

TEST(ArpCacheTest, AsksForEveryApplicationAtTheLowestPriorityAndLogsIt) {
  TSession session;
  /// Notes the priorities that the facility is called at.
  class TPriorities final : public ICallGate {
   public:
    TWinError Admit(const TCall& ACall) override {
      if (ACall.Facility == "Apps") Seen.push_back(TSimulatedSync::OwnPriority());
      return WinError::Success;
    }
    std::vector<std::int32_t> Seen;
  } gate;
  TForwardingMachine watched(session.Machine().Facilities(), gate);
  session.Machine().Apps().Install(Apps());
  IVarcolin& manager = session.Load(watched.Facilities());
  EXPECT_FALSE(StateOf(manager)->IsRefreshingARPCache());
  manager.RefreshARPCache();
  session.Machine().Clock().WaitUntilBlocked(1);
  EXPECT_TRUE(StateOf(manager)->IsRefreshingARPCache());
  RunToItsEnd(session);
  EXPECT_EQ(session.LogLines(), (TLines{"", "Begin update system ARP Cache.", "", "End update system ARP Cache."}));
  EXPECT_EQ(session.Machine().Apps().Asked(), (TNames{u"Dunlin", u"Broken", u"Slow", u"Pinfold"}));
  EXPECT_EQ(session.Machine().Apps().OpenHandleCount() + session.Machine().Com().OpenHandleCount(), 0U);
  session.Unload();  // the watched facilities go before the session does
  EXPECT_EQ(gate.Seen, std::vector<std::int32_t>(10, -2)) << "of the walk, five times Next, four questions";
}

TEST(ArpCacheTest, StartsOneThreadUntilStop) {
  TSession session;
  auto& apps = session.Machine().Apps();
  apps.Install(Apps());
  IVarcolin& manager = session.Load();
  manager.RefreshARPCache();
  manager.RefreshARPCache();
  RunToItsEnd(session);
  manager.RefreshARPCache();  // also when it has long ended
  EXPECT_FALSE(StateOf(manager)->IsRefreshingARPCache());
  session.Stop();
  EXPECT_EQ(apps.WalkCount(), 1U);
  EXPECT_EQ(session.LogLines().size(), 4U);
  manager.RefreshARPCache();
  RunToItsEnd(session);
  EXPECT_EQ(apps.WalkCount(), 2U);
  EXPECT_EQ(session.LogLines().size(), 8U);
}

TEST(ArpCacheTest, EndsAfterTheApplicationThatTheShellIsBusyWith) {
  TSession session;
  session.Machine().Apps().Install(Apps());
  session.Load();
  TRefreshARPCache refresh;
  refresh.Start();
  session.Machine().Clock().WaitUntilBlocked(1);
  refresh.Terminate();
  session.Machine().Clock().Advance(1000);
  refresh.WaitFor();
  EXPECT_EQ(session.Machine().Apps().Asked(), (TNames{u"Dunlin", u"Broken", u"Slow"}));
  EXPECT_EQ(session.LogLines(), (TLines{"", "Begin update system ARP Cache.", "", "End update system ARP Cache."}));
}

TEST(ArpCacheTest, StopEndsAWalkWithoutAnEndBesideDiscovery) {
  TSession session;
  session.Machine().Apps().Install(Apps(), true);
  session.Load().RefreshARPCache();
  session.Discover();
  session.Machine().Clock().WaitUntilBlocked(2);  // the reader, and the walk at the slow application
  session.Stop();
  EXPECT_GE(session.Machine().Apps().Asked().size(), 3U);
  EXPECT_EQ(session.LogLines().back(), "End update system ARP Cache.");
  EXPECT_FALSE(StateOf(session.Manager())->IsRefreshingARPCache());
  EXPECT_EQ(session.Machine().Apps().OpenHandleCount() + session.Machine().Com().OpenHandleCount(), 0U);
}

TEST(ArpCacheTest, WhereTheShellHasNoManagerTheLogSaysSo) {
  TSession session;
  session.Machine().Apps().Refuse(ClassNotRegistered);
  session.Load().RefreshARPCache();
  RunToItsEnd(session);
  const TLines log = session.LogLines();
  ASSERT_GE(log.size(), 9U);
  EXPECT_EQ(log[1], "Begin update system ARP Cache.");
  EXPECT_EQ(log[2], "");
  EXPECT_EQ(log[4], "Error class   : EOSError");
  EXPECT_EQ(log[5].find("Error message : System Error.  Code: -2147221164."), 0U) << log[5];
  EXPECT_EQ(log[log.size() - 2], "");
  EXPECT_EQ(log.back(), "End update system ARP Cache.");
}

TEST(ArpCacheTest, NoFailedCallKeepsTheEndFromTheLog) {
  for (std::uint64_t number = 1; number <= 9; ++number) {
    TSession session;
    auto apps = Apps();
    for (TSimulatedApp& app : apps) app.Takes = 0;
    session.Machine().Apps().Install(apps);
    TFaultPlan plan(EFault::Transient, number, TFaultPlan::UnexpectedError,
                    [](const TCall& ACall) { return ACall.Facility == "Apps"; });
    TFaultyMachine faulty(session.Machine().Facilities(), plan);
    session.Load(faulty.Facilities()).RefreshARPCache();
    RunToItsEnd(session);
    EXPECT_EQ(session.LogLines().back(), "End update system ARP Cache.") << "call " << number;
    // the first call begins the walk; an even one asks for the next application, an odd one for its information
    const std::size_t asked = number == 1 ? 0 : number % 2 == 0 ? number / 2 - 1 : 3;
    EXPECT_EQ(session.Machine().Apps().Asked().size(), asked) << "call " << number;
    EXPECT_EQ(plan.InjectionCount(), 1U) << "call " << number;
    session.Unload();
    EXPECT_EQ(session.Machine().OpenHandleCount(), 0U) << "call " << number;
  }
}

}  // namespace
}  // namespace varcolin::testing
