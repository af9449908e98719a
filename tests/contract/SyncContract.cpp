// What every implementation of events and named mutexes has to do.
#include <gtest/gtest.h>

#include <thread>
#include <vector>

#include "contract/MachineUnderTest.h"
#include "platform/Sync.h"

namespace varcolin {
namespace {

constexpr std::u16string_view MutexName = u"VarcolinContractMutex";

class SyncContract : public ::testing::Test {
 protected:
  ISync& Sync = testing::MachineUnderTest().Sync;
};

TEST_F(SyncContract, EventStaysSignalledUntilReset) {
  TEvent event;
  ASSERT_EQ(Sync.MakeEvent(false, event), WinError::Success);
  ASSERT_TRUE(event);
  EXPECT_EQ(Sync.WaitForEvent(event, 0), EWaitResult::TimedOut);
  EXPECT_EQ(Sync.WaitForEvent(event, 1), EWaitResult::TimedOut);
  Sync.SignalEvent(event);
  EXPECT_EQ(Sync.WaitForEvent(event, 0), EWaitResult::Signaled);
  EXPECT_EQ(Sync.WaitForEvent(event, WaitForever), EWaitResult::Signaled);
  Sync.ResetSignal(event);
  EXPECT_EQ(Sync.WaitForEvent(event, 0), EWaitResult::TimedOut);

  ASSERT_EQ(Sync.MakeEvent(true, event), WinError::Success);
  EXPECT_EQ(Sync.WaitForEvent(event, 0), EWaitResult::Signaled);
  EXPECT_EQ(Sync.WaitForEvent(TEvent(), 0), EWaitResult::Failed);
}

TEST_F(SyncContract, WaitsForAnyOfSeveral) {
  TEvent events[2];
  for (TEvent& event : events) ASSERT_EQ(Sync.MakeEvent(false, event), WinError::Success);
  const TWaitable both[] = {events[0], events[1]};
  EXPECT_EQ(Sync.WaitForAny(both, 0), EWaitResult::TimedOut);
  EXPECT_EQ(Sync.WaitForAny(both, 1), EWaitResult::TimedOut);
  std::thread signaller([&] { Sync.SignalEvent(events[1]); });
  EXPECT_EQ(Sync.WaitForAny(both, WaitForever), EWaitResult::Signaled);
  signaller.join();
  EXPECT_EQ(Sync.WaitForAny(both, 0), EWaitResult::Signaled) << "an event stays signalled";
  EXPECT_EQ(Sync.WaitForAny({both, 1}, 0), EWaitResult::TimedOut) << "the other one was not asked for";

  EXPECT_EQ(Sync.WaitForAny({}, 0), EWaitResult::Failed);
  EXPECT_EQ(Sync.WaitForAny(std::vector<TWaitable>(65, both[0]), 0), EWaitResult::Failed);
  const TWaitable withNone[] = {events[0], TEvent()};
  EXPECT_EQ(Sync.WaitForAny(withNone, 0), EWaitResult::Failed);
}

TEST_F(SyncContract, SignalReachesEveryWaitingThread) {
  TEvent event;
  ASSERT_EQ(Sync.MakeEvent(false, event), WinError::Success);
  EWaitResult results[2] = {EWaitResult::Failed, EWaitResult::Failed};
  std::thread first([&] { results[0] = Sync.WaitForEvent(event, WaitForever); });
  std::thread second([&] { results[1] = Sync.WaitForEvent(event, WaitForever); });
  Sync.SignalEvent(event);
  first.join();
  second.join();
  EXPECT_EQ(results[0], EWaitResult::Signaled);
  EXPECT_EQ(results[1], EWaitResult::Signaled);
}

TEST_F(SyncContract, AThreadMayLowerItsPriority) {
  std::thread([this] {
    EXPECT_EQ(Sync.SetOwnPriority(ThreadPriority::Lowest), WinError::Success);
    EXPECT_EQ(Sync.SetOwnPriority(99), WinError::InvalidParameter);
  }).join();
}

TEST_F(SyncContract, MutexExistsAsLongAsAHandleIsOpen) {
  TNamedMutex missing;
  EXPECT_EQ(Sync.OpenNamedMutex(MutexName, missing), WinError::FileNotFound);
  EXPECT_FALSE(missing);

  TNamedMutex first, second, third;
  bool existed = true;
  ASSERT_EQ(Sync.MakeNamedMutex(MutexName, first, existed), WinError::Success);
  EXPECT_FALSE(existed);
  ASSERT_EQ(Sync.MakeNamedMutex(std::u16string(u"Local\\").append(MutexName), second, existed), WinError::Success);
  EXPECT_TRUE(existed);
  EXPECT_EQ(Sync.OpenNamedMutex(u"varcolincontractmutex", third), WinError::FileNotFound) << "case matters";
  EXPECT_EQ(Sync.OpenNamedMutex(MutexName, third), WinError::Success);

  first.Close();
  second.Close();
  EXPECT_EQ(Sync.OpenNamedMutex(MutexName, first), WinError::Success) << "the third handle keeps it";
  first.Close();
  third.Close();
  EXPECT_EQ(Sync.OpenNamedMutex(MutexName, first), WinError::FileNotFound);
}

TEST_F(SyncContract, MutexNamesHaveNoFurtherBackslash) {
  TNamedMutex mutex;
  bool existed = true;
  EXPECT_EQ(Sync.MakeNamedMutex(u"Varcolin\\Contract", mutex, existed), WinError::PathNotFound);
  EXPECT_FALSE(mutex);
  EXPECT_TRUE(existed) << "outputs stay on failure";
}

}  // namespace
}  // namespace varcolin
