// What only the simulated clock, synchronisation and registry have.
#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "platform/simulated/SimulatedRegistry.h"

namespace varcolin {
namespace {

constexpr TFileTime Start{129'000'000'000'000'000};
constexpr std::uint64_t TicksPerMillisecond = 10'000;

TEST(SimulatedClockTest, TimePassesOnlyWhenAdvanced) {
  TSimulatedClock clock(Start);
  TSimulatedSync sync(clock);
  TEvent event;
  ASSERT_EQ(sync.MakeEvent(false, event), WinError::Success);
  std::atomic<int> done = 0;
  EWaitResult result = EWaitResult::Failed;
  std::thread sleeper([&] { sync.SleepFor(500), ++done; });
  std::thread waiter([&] { result = sync.WaitForEvent(event, 1000), ++done; });
  clock.WaitUntilBlocked(2);
  clock.Advance(499);
  EXPECT_EQ(clock.BlockedCount(), 2u);
  clock.Advance(1);
  EXPECT_EQ(clock.BlockedCount(), 1u) << "the sleeper no longer counts, whether its thread has run yet or not";
  sleeper.join();
  EXPECT_EQ(done, 1);
  clock.AdvanceUntil([&] { return done == 2; }, 100);
  waiter.join();
  EXPECT_EQ(result, EWaitResult::TimedOut);
  EXPECT_EQ(clock.Now().Ticks, Start.Ticks + 1000 * TicksPerMillisecond);

  // a signal that is taken back at once still ends the wait for it
  std::thread again([&] { result = sync.WaitForEvent(event, WaitForever); });
  clock.WaitUntilBlocked(1);
  sync.SignalEvent(event);
  sync.ResetSignal(event);
  again.join();
  EXPECT_EQ(result, EWaitResult::Signaled);
}

TEST(SimulatedClockTest, TicksOverflowAndTimeCanBeSet) {
  TSimulatedClock clock(Start);
  clock.SetTickCount(0xFFFFFFF0);
  clock.Advance(0x20);
  EXPECT_EQ(clock.TickCount(), 0x10u);
  clock.SetTime({5});
  EXPECT_EQ(clock.Now().Ticks, 5u);
  EXPECT_EQ(clock.TickCount(), 0x10u);
  // a sleeper goes on when the clock begins to run
  std::thread sleeper([&] { static_cast<void>(clock.Wait(nullptr, 1)); });
  clock.WaitUntilBlocked(1);
  clock.SetMode(EClockMode::Running);
  sleeper.join();
  EXPECT_GE(clock.Now().Ticks, 5 + TicksPerMillisecond);
}

class SimulatedRegistryTest : public ::testing::Test {
 protected:
  TRegistryKey Open(ERegistryRoot ARoot, std::u16string_view APath, std::uint32_t AAccess = KeyAccess::Read) {
    TRegistryKey key;
    EXPECT_EQ(Registry.OpenKey(ARoot, APath, AAccess, key), WinError::Success);
    return key;
  }
  std::uint32_t SubKeyCount(const TRegistryKey& AKey) {
    TRegistryKeyInfo info;
    EXPECT_EQ(Registry.QueryKeyInfo(AKey, info), WinError::Success);
    return info.SubKeyCount;
  }
  TFileTime TimeOf(std::u16string_view APath) {
    TRegistryKeyInfo info;
    EXPECT_EQ(Registry.QueryKeyInfo(Open(ERegistryRoot::CurrentUser, APath), info), WinError::Success);
    return info.LastWriteTime;
  }

  TSimulatedClock Clock{Start};
  TSimulatedSync Sync{Clock};
  TSimulatedRegistry Registry{Clock, Sync, {true, true, u"S-1-5-21-1"}};
};

TEST_F(SimulatedRegistryTest, ManySiblingsInAnyOrderStaySorted) {
  constexpr std::uint32_t Count = 5000;
  const auto name = [](std::uint32_t AIndex) {
    std::u16string text = u"00000";
    for (std::size_t i = text.size(); i-- > 0; AIndex /= 10) text[i] = static_cast<char16_t>(u'0' + AIndex % 10);
    return text;
  };
  for (std::uint32_t i = 0; i < Count; ++i) {
    const std::uint32_t scattered = i * 7919 % Count;
    Registry.AddKey(u"HKCU\\Many\\" + name(scattered));
    Registry.SetDwordAt(u"HKCU\\Many", name(scattered), scattered);
  }
  const TRegistryKey key = Open(ERegistryRoot::CurrentUser, u"Many");
  std::u16string found;
  TRegistryValue value;
  for (std::uint32_t i = 0; i < Count; ++i) {
    ASSERT_EQ(Registry.EnumKey(key, i, found), WinError::Success);
    ASSERT_EQ(found, name(i));
    ASSERT_EQ(Registry.EnumValue(key, i, value), WinError::Success);
    ASSERT_EQ(value.Name, name(i * 7919 % Count)) << "values keep their order";
  }
  for (std::uint32_t i = 1; i < Count; i += 2) {
    ASSERT_TRUE(Registry.RemoveTree(u"HKCU\\Many\\" + name(i)));
    ASSERT_TRUE(Registry.RemoveValueAt(u"HKCU\\Many", name(i)));
  }
  EXPECT_EQ(SubKeyCount(key), Count / 2);
  for (std::uint32_t i = 0; i < Count / 2; ++i) {
    ASSERT_EQ(Registry.EnumKey(key, i, found), WinError::Success);
    ASSERT_EQ(found, name(i * 2));
    ASSERT_EQ(Registry.QueryValue(key, found, value), WinError::Success);
  }
}

TEST_F(SimulatedRegistryTest, LastWriteTimesFollowTheClock) {
  const std::u16string_view parent = u"P", child = u"P\\C";
  Registry.AddKey(u"HKCU\\P\\C");
  Registry.SetLastWriteTime(u"HKCU\\P", {1});
  Clock.Advance(10);
  const TFileTime later = Clock.Now();
  Registry.SetDwordAt(u"HKCU\\P\\C", u"v", 1);
  EXPECT_EQ(TimeOf(child), later);
  EXPECT_EQ(TimeOf(parent).Ticks, 1u) << "a value concerns its own key alone";
  bool created = false;
  TRegistryKey key;
  ASSERT_EQ(Registry.CreateKeyPath(ERegistryRoot::CurrentUser, u"P\\D", KeyAccess::Read, key, created),
            WinError::Success);
  EXPECT_EQ(TimeOf(parent), later);
  Clock.Advance(10);
  ASSERT_EQ(Registry.RemoveKey(ERegistryRoot::CurrentUser, u"P\\D", 0), WinError::Success);
  EXPECT_EQ(TimeOf(parent), Clock.Now());
}

TEST_F(SimulatedRegistryTest, DeniedRights) {
  Registry.DenyAccess(u"HKCU\\Closed");
  Registry.DenyAccess(u"HKCU\\ReadOnly", KeyAccess::Write | 0x10000);
  Registry.AddKey(u"HKCU\\Closed\\Sub");
  TRegistryKey key;
  bool created = false;
  const auto open = [&](std::u16string_view APath, std::uint32_t AAccess) {
    return Registry.OpenKey(ERegistryRoot::CurrentUser, APath, AAccess, key);
  };
  EXPECT_EQ(open(u"Closed", KeyAccess::QueryValue), WinError::AccessDenied);
  EXPECT_EQ(open(u"Closed\\Sub", KeyAccess::AllAccess), WinError::Success) << "only the key itself is closed";
  EXPECT_EQ(open(u"ReadOnly", KeyAccess::AllAccess), WinError::AccessDenied);
  EXPECT_EQ(open(u"ReadOnly", KeyAccess::Read), WinError::Success);
  EXPECT_EQ(Registry.CreateKeyPath(ERegistryRoot::CurrentUser, u"ReadOnly\\New", KeyAccess::Read, key, created),
            WinError::AccessDenied);
  EXPECT_EQ(Registry.RemoveKey(ERegistryRoot::CurrentUser, u"ReadOnly", 0), WinError::AccessDenied);
  Registry.DenyAccess(u"HKCU\\ReadOnly", 0);
  EXPECT_EQ(open(u"ReadOnly", KeyAccess::AllAccess), WinError::Success);
}

TEST_F(SimulatedRegistryTest, ChangesThroughTheInterfaceAreLogged) {
  Registry.SetTextAt(u"HKLM\\Software\\Wow6432Node\\A", u"old", u"text");
  TRegistryKey key;
  bool created = false;
  ASSERT_EQ(Registry.CreateKeyPath(ERegistryRoot::LocalMachine, u"Software\\A\\B", KeyAccess::AllAccess, key, created),
            WinError::Success);
  ASSERT_EQ(Registry.SetValue(key, u"v", RegType::Binary, nullptr, 0), WinError::Success);
  ASSERT_EQ(Registry.RemoveValue(key, u"v"), WinError::Success);
  ASSERT_EQ(Registry.RemoveKey(key, u"", 0), WinError::Success);
  const std::u16string name = u"HKEY_LOCAL_MACHINE\\Software\\Wow6432Node\\A\\B";
  const auto changes = Registry.Changes();
  ASSERT_EQ(changes.size(), 4u);
  const ERegistryChange kinds[] = {ERegistryChange::KeyCreated, ERegistryChange::ValueSet,
                                   ERegistryChange::ValueRemoved, ERegistryChange::KeyRemoved};
  for (std::size_t i = 0; i < changes.size(); ++i) {
    EXPECT_EQ(changes[i].Kind, kinds[i]);
    EXPECT_EQ(changes[i].Key, name);
  }
  EXPECT_EQ(Registry.OpenHandleCount(), 1u);
  key.Close();
  EXPECT_EQ(Registry.OpenHandleCount(), 0u);
}

TEST_F(SimulatedRegistryTest, RemovedTreesLeaveOpenKeysAndSharedKeysInOrder) {
  Registry.SetTextAt(u"HKCR\\Merged", u"v", u"machine");
  Registry.AddKey(u"HKCU\\Software\\Classes\\Merged\\Sub");
  const TRegistryKey merged = Open(ERegistryRoot::ClassesRoot, u"Merged");
  const TRegistryKey deep = Open(ERegistryRoot::LocalMachine, u"Software\\Policies");
  EXPECT_EQ(SubKeyCount(merged), 1u);
  ASSERT_TRUE(Registry.RemoveTree(u"HKLM\\Software"));
  TRegistryValue value;
  EXPECT_EQ(Registry.QueryValue(merged, u"v", value), WinError::FileNotFound) << "the user's part is left";
  EXPECT_EQ(SubKeyCount(merged), 1u);
  std::u16string name;
  EXPECT_EQ(Registry.EnumKey(deep, 0, name), WinError::KeyDeleted);
  Registry.AddKey(u"HKLM\\Software\\Policies\\New");
  EXPECT_EQ(SubKeyCount(Open(ERegistryRoot::LocalMachine, u"Software\\Policies")), 1u) << "still shared";
}

TEST_F(SimulatedRegistryTest, ThirtyTwoBitWindowsHasOneView) {
  TSimulatedRegistry registry(Clock, Sync, {false, false, u"S-1-5-21-1"});
  registry.AddKey(u"HKLM\\Software\\A");
  TRegistryKey key;
  for (const std::uint32_t view : {0u, KeyAccess::Wow64_32Key, KeyAccess::Wow64_64Key}) {
    EXPECT_EQ(registry.OpenKey(ERegistryRoot::LocalMachine, u"Software\\A", KeyAccess::Read | view, key),
              WinError::Success);
  }
  EXPECT_FALSE(registry.HasKey(u"HKLM\\Software\\Wow6432Node"));
}

// Readers, writers and watchers at the same time; the thread sanitizer looks on.
TEST_F(SimulatedRegistryTest, ThreadsShareTheRegistry) {
  std::atomic<bool> stop = false;
  TEvent event;
  ASSERT_EQ(Sync.MakeEvent(false, event), WinError::Success);
  std::thread reader([&] {
    std::u16string name;
    TRegistryValue value;
    while (!stop) {
      const TRegistryKey key = Open(ERegistryRoot::CurrentUser, u"");
      for (std::uint32_t i = 0; Registry.EnumKey(key, i, name) == WinError::Success; ++i) {
      }
      static_cast<void>(Registry.EnumValue(key, 0, value));
    }
  });
  const TRegistryKey watched = Open(ERegistryRoot::CurrentUser, u"");
  for (int i = 0; i < 200; ++i) {
    Sync.ResetSignal(event);
    ASSERT_EQ(Registry.NotifyChange(watched, true, RegNotify::ChangeName, event), WinError::Success);
    std::thread writer([&] { Registry.AddKey(u"HKCU\\T\\U"); });
    EXPECT_EQ(Sync.WaitForEvent(event, WaitForever), EWaitResult::Signaled);
    writer.join();
    Registry.RemoveTree(u"HKCU\\T");
  }
  stop = true;
  reader.join();
}

}  // namespace
}  // namespace varcolin
