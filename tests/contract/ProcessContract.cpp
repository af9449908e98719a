// What every implementation of starting and watching processes has to do.
#include <gtest/gtest.h>

#include <algorithm>

#include "contract/MachineUnderTest.h"
#include "platform/ProcessStart.h"

namespace varcolin {
namespace {

class ProcessContract : public ::testing::Test {
 protected:
  [[nodiscard]] static std::u16string Call(std::u16string_view AArguments) {
    return u"\"" + testing::TestProgram() + u"\" " + std::u16string(AArguments);
  }
  [[nodiscard]] bool IsListed(std::uint32_t AId) {
    std::vector<TProcessEntry> entries;
    EXPECT_EQ(Processes.EnumProcesses(entries), WinError::Success);
    const auto found = std::ranges::find(entries, AId, &TProcessEntry::Id);
    // a process has no name in its first moments
    return found != entries.end() && (found->Name == u"test_program.exe" || found->Name.empty());
  }

  IProcesses& Processes = testing::MachineUnderTest().Processes;
  IProcessStart& Starts = testing::MachineUnderTest().Starts;
};

TEST_F(ProcessContract, StartsWaitsAndTellsTheExitCode) {
  TProcessInfo info;
  ASSERT_EQ(Starts.StartAsSelf(Call(u"run 0 7"), 0, info), WinError::Success);
  EXPECT_TRUE(info.Process);
  EXPECT_TRUE(info.Thread);
  EXPECT_NE(info.ProcessId, 0U);
  ASSERT_EQ(Processes.WaitForEnd(info.Process, 20000), EWaitResult::Signaled);
  std::uint32_t code = 0;
  EXPECT_EQ(Processes.GetExitCode(info.Process, code), WinError::Success);
  EXPECT_EQ(code, 7U);
  EXPECT_FALSE(IsListed(info.ProcessId));
}

TEST_F(ProcessContract, StartsWithADuplicateOfItsOwnToken) {
  TToken own;
  TToken primary;
  ASSERT_EQ(Starts.OpenOwnToken(TokenAccess::All, own), WinError::Success);
  ASSERT_EQ(Starts.DuplicateAsPrimary(own, primary), WinError::Success);
  TProcessInfo info;
  constexpr std::uint32_t flags =
      StartFlag::DefaultErrorMode | StartFlag::BreakAwayFromJob | StartFlag::NewProcessGroup;
  ASSERT_EQ(Starts.StartAsUser(primary, Call(u"run 400"), flags, info), WinError::Success);
  EXPECT_EQ(Processes.WaitForEnd(info.Process, 0), EWaitResult::TimedOut);
  std::uint32_t code = 0;
  EXPECT_EQ(Processes.GetExitCode(info.Process, code), WinError::Success);
  EXPECT_EQ(code, 259U);
  EXPECT_TRUE(IsListed(info.ProcessId));

  TProcess opened;
  ASSERT_EQ(Processes.OpenToRead(info.ProcessId, opened), WinError::Success);
  std::u16string path;
  if (Processes.GetModulePath(opened, path) == WinError::Success) {
    EXPECT_TRUE(path.ends_with(u"test_program.exe"));
  }
  ASSERT_EQ(Processes.GetImagePath(opened, path), WinError::Success);
  EXPECT_TRUE(path.ends_with(u"test_program.exe"));
  EXPECT_EQ(path.find(u':'), std::u16string::npos) << "the device form has no drive letter";
  EXPECT_EQ(Processes.WaitForEnd(info.Process, 20000), EWaitResult::Signaled);
}

TEST_F(ProcessContract, RefusesWhatIsNoProgram) {
  TProcessInfo info;
  info.ProcessId = 1;
  EXPECT_EQ(Starts.StartAsSelf(u"C:\\no such folder\\missing.exe /x", 0, info), WinError::FileNotFound);
  EXPECT_NE(Starts.StartAsSelf(u"", 0, info), WinError::Success);
  EXPECT_EQ(info.ProcessId, 1U) << "outputs stay on failure";
  EXPECT_FALSE(info.Process);
  TToken token;
  EXPECT_EQ(Starts.DuplicateAsPrimary(TToken(), token), WinError::InvalidHandle);
  EXPECT_FALSE(token);
  TProcess process;
  EXPECT_EQ(Processes.OpenToRead(0, process), WinError::InvalidParameter);
  EXPECT_EQ(Processes.OpenToRead(0x7FFFFFF0, process), WinError::InvalidParameter);
  EXPECT_FALSE(process);
}

TEST_F(ProcessContract, FindsUnquotedProgramsWithBlanksInTheirPaths) {
  const std::u16string program = testing::TestProgram();
  if (testing::IsRealMachine()) return;  // where the tests lie decides about blanks there
  TProcessInfo info;
  ASSERT_EQ(Starts.StartAsSelf(program + u" run 0 7", 0, info), WinError::Success);
  EXPECT_EQ(Processes.WaitForEnd(info.Process, 20000), EWaitResult::Signaled);
}

TEST_F(ProcessContract, ShellOpensPrograms) {
  EXPECT_EQ(Starts.OpenByShell(testing::TestProgram(), u"run 0 7", ShowCommand::Show), WinError::Success);
  // the real shell shows a message about a missing program and waits for somebody to read it
  if (!testing::IsRealMachine()) {
    EXPECT_EQ(Starts.OpenByShell(u"C:\\missing.exe", u"", ShowCommand::Show), WinError::FileNotFound);
  }
}

}  // namespace
}  // namespace varcolin
