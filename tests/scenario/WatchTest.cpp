// Discovery as it goes on: changes, restarts, cancelling, and hosts that call meanwhile.
#include <gtest/gtest.h>

#include <atomic>
#include <thread>

#include "common/Session.h"
#include "platform/MessageBoxes.h"

namespace varcolin::testing {
namespace {

using TLines = std::vector<std::string>;

constexpr std::u16string_view Uninstall =
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";

std::u16string Key(std::u16string_view AName) { return std::u16string(Uninstall).append(AName); }

void AddTool(TSession& ASession, std::u16string_view AName) {
  ASession.Machine().Registry().SetTextAt(Key(AName), u"DisplayName", AName);
}

TEST(WatchTest, EntriesAppearAndVanishWithoutARefresh) {
  TSession session;
  AddTool(session, u"Old");
  session.Discover();
  AddTool(session, u"New");
  session.LetChangesBeSeen();
  EXPECT_EQ(session.ProgramTitles(), (TLines{"Old", "New"}));
  session.Machine().Registry().RemoveTree(Key(u"Old"));
  session.LetChangesBeSeen();
  EXPECT_EQ(session.ProgramTitles(), TLines{"New"});
  EXPECT_EQ(session.Manager().GetState(), TVRCState::vrcsLoaded);
  const TLines log = session.LogLines();
  EXPECT_EQ(std::count(log.begin(), log.end(), "Detect changes in location \"ulRegistryUninstall\"."), 2);
  EXPECT_EQ(std::count(log.begin(), log.end(), "Delete Program: Old ()"), 1);
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
    const TLines log = session.LogLines();
    EXPECT_EQ(std::count(log.begin(), log.end(), "Detect changes in location \"ulRegistryUninstall\"."), ++seen);
  }
}

TEST(WatchTest, RefreshStartsAgainAndStopEndsEverything) {
  TSession session;
  AddTool(session, u"Tool");
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
  for (int index = 0; index < 200; ++index)
    AddTool(session,
            u"Tool" + std::u16string(1, char16_t(u'A' + index % 26)) + std::u16string(1, char16_t(u'0' + index / 26)));
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
          if (host == 2) {
            TPossibleActions action = TPossibleActions::paRemoveFromRegistry;
            TNativeUInt window = 0;
            static_cast<void>(item->RunAction(&action, &window));
          }
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

TEST(SuiteTest, AMissingSiblingEndsTheProcessWithItsName) {
  struct TRow {
    std::u16string_view Library;
    std::u16string_view Label;
  };
  for (const TRow& row :
       {TRow{u"helper.dll", u"helper.dll::Globals"}, TRow{u"Localizer.dll", u"Localizer.dll::Localizer"}}) {
    TSession session;
    session.Machine().Modules().RegisterModule(row.Library,
                                               [](const char16_t*, std::uint32_t) -> void* { return nullptr; });
    EXPECT_THROW(session.Load(), TSimulatedProcessEnd) << ToUtf8(row.Library);
    const auto boxes = session.Machine().Messages().Shown();
    ASSERT_EQ(boxes.size(), 1U);
    EXPECT_EQ(boxes[0].Caption, u"Error");
    EXPECT_EQ(boxes[0].Text,
              u"An error occurred while loading library " + std::u16string(row.Label) +
                  u". \r\n\r\nIt may have been removed. Please reinstall the application. If the problem persists, "
                  u"contact technical support.");
    EXPECT_EQ(boxes[0].Style, MessageStyle::IconError);
  }
}

}  // namespace
}  // namespace varcolin::testing
