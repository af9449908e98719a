// What every implementation of folder watches has to do.
#include <gtest/gtest.h>

#include "contract/TempFolder.h"
#include "platform/Sync.h"

namespace varcolin {
namespace {

/// How long a change may take to be told, in milliseconds.
constexpr std::uint32_t Soon = 5000;
constexpr std::uint32_t Everything =
    FileNotify::FileName | FileNotify::FolderName | FileNotify::Attributes | FileNotify::Size | FileNotify::LastWrite;
constexpr std::byte Content[] = {std::byte{'x'}};

class FolderWatchContract : public ::testing::Test {
 protected:
  ISync& Sync = testing::MachineUnderTest().Sync;
  IWritableFiles& Files = testing::MachineUnderTest().Files;
  testing::TTempFolder Temp;

  TFolderWatch Watch(std::u16string_view APath, std::uint32_t AFilter = Everything, bool ASubtree = true) {
    TFolderWatch watch;
    EXPECT_EQ(Files.WatchFolder(APath, ASubtree, AFilter, watch), WinError::Success);
    return watch;
  }
  EWaitResult Wait(const TFolderWatch& AWatch, std::uint32_t ATimeout) {
    const TWaitable handles[] = {AWatch};
    return Sync.WaitForAny(handles, ATimeout);
  }
  /// Waits for what a change has caused, all of it, and arms the watch again.
  void ExpectChange(const TFolderWatch& AWatch, const char* AWhat) {
    EXPECT_EQ(Wait(AWatch, Soon), EWaitResult::Signaled) << AWhat;
    constexpr int MostSignals = 10;  // one change may come as several
    constexpr std::uint32_t Pause = 50;
    int signals = 0;
    do {
      EXPECT_EQ(Files.RearmWatch(AWatch), WinError::Success);
    } while (++signals < MostSignals && Wait(AWatch, Pause) == EWaitResult::Signaled);
    EXPECT_LT(signals, MostSignals) << AWhat;
  }
};

TEST_F(FolderWatchContract, EveryKindOfChangeOfTheFolderIsTold) {
  const TFolderWatch watch = Watch(Temp.Path() + u"\\");
  EXPECT_EQ(Wait(watch, 0), EWaitResult::TimedOut);
  const std::u16string file = Temp.Write(u"a.mum", Content);
  EXPECT_EQ(Wait(watch, Soon), EWaitResult::Signaled);
  EXPECT_EQ(Wait(watch, 0), EWaitResult::Signaled) << "it stays signalled until it is armed";
  ExpectChange(watch, "a new file");
  ASSERT_EQ(Files.AppendBytes(file, Content), WinError::Success);
  ExpectChange(watch, "more content");
  ASSERT_EQ(Files.SetAttributes(file, FileAttribute::Hidden), WinError::Success);
  ExpectChange(watch, "an attribute");
  ASSERT_EQ(Files.RemoveFile(file), WinError::Success);
  ExpectChange(watch, "a removed file");
  ASSERT_EQ(Files.MakeFolder(Temp / u"below"), WinError::Success);
  ExpectChange(watch, "a folder");
  if (!testing::IsWine()) {  // does not tell of subfolders
    Temp.Write(u"below\\b.mum", Content);
    ExpectChange(watch, "a file in a folder below");
  }
}

TEST_F(FolderWatchContract, OnlyWhatWasAskedForIsTold) {
  ASSERT_EQ(Files.MakeFolder(Temp / u"below"), WinError::Success);
  const std::u16string file = Temp.Write(u"a.txt", Content);
  const TFolderWatch names = Watch(Temp.Path(), FileNotify::FolderName, false);
  const TFolderWatch below = Watch(Temp / u"below");
  ASSERT_EQ(Files.AppendBytes(file, Content), WinError::Success);
  ASSERT_EQ(Files.RemoveFile(file), WinError::Success);
  Temp.Write(u"below\\b.txt", Content);
  EXPECT_EQ(Wait(below, Soon), EWaitResult::Signaled);
  EXPECT_EQ(Wait(names, 0), EWaitResult::TimedOut);
}

TEST_F(FolderWatchContract, WhereThereIsNoFolderThereIsNoWatch) {
  TFolderWatch watch;
  EXPECT_NE(Files.WatchFolder(Temp / u"missing", true, Everything, watch), WinError::Success);
  EXPECT_NE(Files.WatchFolder(Temp.Write(u"file", Content), true, Everything, watch), WinError::Success);
  EXPECT_NE(Files.WatchFolder(u"", true, Everything, watch), WinError::Success);
  EXPECT_FALSE(watch);
  EXPECT_NE(Files.RearmWatch(watch), WinError::Success);
  EXPECT_EQ(Wait(watch, 0), EWaitResult::Failed);
}

}  // namespace
}  // namespace varcolin
