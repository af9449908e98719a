// Discovery as it goes on: changes, restarts, cancelling, and hosts that call meanwhile.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "common/Session.h"

namespace varcolin::testing {
namespace {

using TLines = std::vector<std::string>;

constexpr std::string_view Detected = "Detect changes in location \"ulRegistryUninstall\".";

std::u16string Key(std::u16string_view AName) {
  return std::u16string(u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\").append(AName);
}

TEST(WatchTest, EntriesAppearAndVanishWithoutARefresh) {
  TSession session;
  session.AddProgram("Old");
  session.Discover();
  session.Machine().Registry().SetTextAt(Key(u"New"), u"DisplayName", u"New");
  session.LetChangesBeSeen();
  EXPECT_EQ(session.ProgramTitles(), (TLines{"Old", "New"}));
  session.Machine().Registry().RemoveTree(Key(u"Old"));
  session.LetChangesBeSeen();
  EXPECT_EQ(session.ProgramTitles(), TLines{"New"});
  EXPECT_EQ(session.Manager().GetState(), TVRCState::vrcsLoaded);
  EXPECT_EQ(session.LogCount(Detected), 2);
  EXPECT_EQ(session.LogCount("Delete Program: Old ()"), 1);
}

TEST(WatchTest, EveryWatchedPlaceIsSeenInBothViews) {
  TSession session;
  const std::u16string_view places[] = {
      u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall",
      u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall",
      u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData",
      u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Classes\\Installer\\Products",
      u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\HotFix",
      u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Microsoft\\Updates",
  };
  for (const std::u16string_view place : places) session.Machine().Registry().AddKey(place);
  session.Discover();
  std::ptrdiff_t seen = 0;
  for (const std::u16string_view place : places) {
    session.Machine().Registry().SetTextAt(std::u16string(place) + u"\\Deep\\Deeper", u"Value", u"x");
    session.LetChangesBeSeen();
    EXPECT_EQ(session.LogCount(Detected), ++seen);
  }
}

TEST(WatchTest, RefreshStartsAgainAndStopEndsEverything) {
  TSession session;
  session.AddProgram("Tool");
  session.Discover();
  session.Discover();
  EXPECT_EQ(session.ProgramTitles(), TLines{"Tool"});
  session.Manager().Stop();
  session.Manager().Stop();
  EXPECT_EQ(session.Machine().Clock().BlockedCount(), 0U);
  EXPECT_EQ(session.ProgramTitles(), TLines{"Tool"}) << "the list stays after the end";
  session.Discover();
  EXPECT_EQ(session.ProgramTitles(), TLines{"Tool"});
}

TEST(WatchTest, HostsReadWhileDiscoveryWorks) {
  TSession session;
  for (int index = 0; index < 200; ++index) session.AddProgram("Tool " + std::to_string(index));
  IVarcolin& manager = session.Load();
  std::atomic<bool> done{false};
  std::vector<std::thread> hosts;
  for (int host = 0; host < 3; ++host) {
    hosts.emplace_back([&session, &manager, &done, host] {
      while (!done) {
        for (const auto& item : host == 0 ? session.Updates() : session.Programs()) {
          for (std::int32_t number = 0; number <= 24; ++number) {
            TVariantValue value;
            item->GetProperty(number, value.Receive());
          }
          static_cast<void>(item->GetIconIndex() + item->GetPossibleActions() + (item->IsChanged() ? 1 : 0));
          if (host == 2) TSession::Start(*item, TPossibleActions::paRemoveFromRegistry);
        }
        static_cast<void>(manager.GetState());
      }
    });
  }
  for (int round = 0; round < 5; ++round) {
    manager.Refresh();
    if (round % 2 == 0) {
      while (manager.GetState() != TVRCState::vrcsLoaded) std::this_thread::yield();
    }
  }
  manager.Stop();
  done = true;
  for (std::thread& host : hosts) host.join();
  session.Discover();
  EXPECT_EQ(session.Programs().size(), 200U);
}

}  // namespace
}  // namespace varcolin::testing
