// Actions of products: started, watched to their end, stopped, and what the log says of them.
#include <gtest/gtest.h>
#include <pthread.h>

#include <algorithm>
#include <atomic>
#include <thread>

#include "common/Session.h"
#include "platform/decorators/FaultInjection.h"

namespace varcolin::testing {
namespace {

using enum TPossibleActions;

constexpr const char16_t* ToolKey =
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\Tool";

/// "Tool" on a machine on which its uninstaller does what AProgram says.
class TToolSession : public TSession {
 public:
  explicit TToolSession(TSimulatedProgram AProgram = {}) {
    Describe(u"C:\\T\\u.exe", std::move(AProgram));
    AddProgram("Tool",
               "\"UninstallString\"=\"\\\"C:\\\\T\\\\u.exe\\\" /x\"\n\"ModifyPath\"=\"C:\\\\T\\\\u.exe /modify\"\n");
  }
  void Describe(std::u16string_view APath, TSimulatedProgram AProgram = {}) {
    AProgram.Path = APath;
    Machine().Starts().Describe(std::move(AProgram));
  }
  /// More programs, which have the uninstaller of "Tool".
  void AddMore(int ACount) {
    for (int number = 0; number < ACount; ++number) {
      AddProgram("Tool " + std::to_string(number), "\"UninstallString\"=\"C:\\\\T\\\\u.exe\"\n");
    }
  }
  [[nodiscard]] std::vector<std::string> Commands() {
    std::vector<std::string> commands;
    for (const TSimulatedStart& start : Machine().Starts().Starts()) {
      commands.push_back((start.ByShell ? "shell " : "") + ToUtf8(start.Command) + " " + std::to_string(start.Result));
    }
    return commands;
  }
  [[nodiscard]] bool Logged(std::string_view AText) {
    Stop();  // writes the log
    const auto lines = LogLines();
    return std::ranges::any_of(lines, [&](const std::string& ALine) { return ALine.find(AText) != std::string::npos; });
  }
};

TSimulatedProgram RunsFor(std::optional<std::uint32_t> ATime, std::vector<TProgramChild> AStarts = {}) {
  TSimulatedProgram program;
  program.Runs = ATime;
  program.Starts = std::move(AStarts);
  return program;
}

TEST(ActionRunTest, UninstallRunsToTheEndAndTheEntryVanishes) {
  TSimulatedProgram program = RunsFor(1500);
  program.RemovesKeys = {ToolKey};
  program.RemovesFiles = {u"C:\\T"};
  TToolSession session(program);
  session.Discover();
  const auto tool = session.Program("Tool");
  EXPECT_EQ(session.RunToItsEnd(*tool, paUninstall), 1500U);
  EXPECT_EQ(session.Commands(), std::vector<std::string>{"\"C:\\T\\u.exe\" /x 0"});
  EXPECT_FALSE(session.Machine().Files().Contains(u"C:\\T"));
  session.LetChangesBeSeen();
  EXPECT_TRUE(session.Programs().empty()) << "no refresh is needed";
  EXPECT_TRUE(session.Logged(R"(Run action "paUninstall" for product "Tool". Command: ""C:\T\u.exe" /x".)"));
  session.Unload();
  EXPECT_EQ(session.Machine().OpenHandleCount(), 0U);
}

TEST(ActionRunTest, SecondRequestTellsWhatRunsAndItsWindow) {
  TSimulatedProgram program = RunsFor(std::nullopt);
  TSimulatedWindow window{u"Tool setup"};
  TSimulatedWindow owned = window;
  owned.Parent = 1;
  TSimulatedWindow bare = window;
  bare.Style = 0;
  TSimulatedWindow untitled = window;
  untitled.Title.clear();
  TSimulatedWindow tool = window;
  tool.StyleEx = WindowStyleEx::ToolWindow;
  tool.HasIcon = true;
  TSimulatedWindow hidden = window;
  hidden.IsVisible = false;
  // what opens later lies in front: the one that is fit to show is behind those that are not
  program.Windows.push_back({window, 100, {}});
  for (const TSimulatedWindow& unfit : {owned, bare, untitled, tool, hidden}) {
    program.Windows.push_back({unfit, 200, {}});
  }
  TToolSession session(program);
  session.Discover();
  const auto product = session.Program("Tool");
  TPossibleActions action = paModify;
  TNativeUInt handle = 1;
  ASSERT_TRUE(product->RunAction(&action, &handle));
  EXPECT_EQ(handle, 0U);
  session.Machine().Clock().WaitUntilBlocked(2);

  action = paUninstall;
  EXPECT_FALSE(product->RunAction(&action, &handle));
  EXPECT_EQ(action, paModify);
  EXPECT_EQ(handle, 0U) << "it shows no window yet";
  session.Machine().Windows().OpenWindow(4, window);  // of a process that may not be looked into
  session.Machine().Clock().Advance(200);
  action = paRemoveFromRegistry;
  EXPECT_FALSE(product->RunAction(&action, &handle));
  EXPECT_EQ(action, paModify);
  EXPECT_EQ(ToUtf8(session.Machine().Windows().GetTitle(handle)), "Tool setup");
  TWindowFacts facts;
  ASSERT_EQ(session.Machine().Windows().GetWindowFacts(handle, facts), WinError::Success);
  EXPECT_EQ(facts.Parent, 0U);
  EXPECT_EQ(facts.StyleEx, 0U);
  EXPECT_TRUE(facts.IsVisible);
  EXPECT_EQ(session.Programs().size(), 1U) << "it cannot be taken off the list while it is busy";
  EXPECT_EQ(session.Commands().size(), 1U);
}

struct TCopyCase {
  const char* Name;
  const char16_t* File;
  std::uint32_t UninstallerRuns;
  bool IsWaitedFor;
};

TEST(ActionRunTest, CopyOfTheUninstallerKeepsTheProductBusy) {
  for (const TCopyCase& row :
       {TCopyCase{"a copy", u"Au_.exe", 500, true}, TCopyCase{"any first letter", u"Zu_.exe", 500, true},
        TCopyCase{"at the end of the time", u"Au_.exe", 10'000, true}, TCopyCase{"too late", u"Au_.exe", 10'100, false},
        TCopyCase{"case matters", u"AU_.EXE", 500, false}, TCopyCase{"too long a name", u"Aau_.exe", 500, false},
        TCopyCase{"too short a name", u"u_.exe", 500, false}}) {
    SCOPED_TRACE(row.Name);
    const std::u16string path = std::u16string(u"C:\\Temp\\") + row.File;
    TToolSession session(RunsFor(row.UninstallerRuns, {{path, row.UninstallerRuns - 100}}));
    session.Describe(path, RunsFor(20'000));
    session.Discover();
    const std::uint32_t end = row.UninstallerRuns + (row.IsWaitedFor ? 19'900 : 0);
    const std::uint32_t took = session.RunToItsEnd(*session.Program("Tool"), paUninstall);
    EXPECT_GE(took, end);
    EXPECT_LE(took, end + 200);
  }
}

TEST(ActionRunTest, ProcessThatWasThereBeforeIsNoCopy) {
  TToolSession session(RunsFor(500));
  session.Machine().Processes().AddProcess(77, u"C:\\Temp\\Au_.exe");
  session.Discover();
  EXPECT_EQ(session.RunToItsEnd(*session.Program("Tool"), paUninstall), 500U);
}

TEST(ActionRunTest, TickCountMayWrapAround) {
  TToolSession session(RunsFor(500, {{u"C:\\Temp\\Au_.exe", 400}}));
  session.Describe(u"C:\\Temp\\Au_.exe", RunsFor(3000));
  session.Discover();
  session.Machine().Clock().SetTickCount(0xFFFFFF00);
  EXPECT_GE(session.RunToItsEnd(*session.Program("Tool"), paUninstall), 3400U) << "the copy came in time";
}

TEST(ActionRunTest, CommandsThatCannotBeStartedAreShownAndLogged) {
  struct TRow {
    const char* Name;
    const char* Command;
    TWinError UserStarts;
    const char* Message;
  };
  for (const TRow& row :
       {TRow{"no such program", "C:\\\\Missing\\\\m.exe /x", WinError::Success,
             "Error execute command: \"C:\\Missing\\m.exe /x\". Message: The system cannot find the file specified.."},
        TRow{"no program", "C:\\\\T\\\\readme.txt", WinError::Success, "Error execute command: \"C:\\T\\readme.txt\""},
        TRow{"refused", "C:\\\\T\\\\u.exe", WinError::AccessDenied, "Message: Access is denied.."},
        TRow{"refused with the privilege missing as well", "C:\\\\Missing\\\\m.exe", WinError::PrivilegeNotHeld,
             "System Error.  Code: 2."},
        TRow{"allowed without the privilege", "C:\\\\T\\\\u.exe", WinError::PrivilegeNotHeld, nullptr}}) {
    SCOPED_TRACE(row.Name);
    TToolSession session;
    session.Machine().Files().AddFile(u"C:\\T\\readme.txt", "text");
    session.Machine().Starts().RefuseUserStarts(row.UserStarts);
    session.AddProgram("Tool", "\"RepairPath\"=\"" + std::string(row.Command) + "\"\n");
    session.Discover();
    session.RunToItsEnd(*session.Program("Tool"), paRepair);
    const auto boxes = session.Machine().Messages().Shown();
    ASSERT_EQ(boxes.size(), row.Message != nullptr ? 1U : 0U) << "shown once";
    if (row.Message == nullptr) continue;
    EXPECT_NE(ToUtf8(boxes[0].Text).find(row.Message), std::string::npos) << ToUtf8(boxes[0].Text);
    session.Stop();
    EXPECT_EQ(session.Machine().Messages().Shown().size(), 1U);
  }
}

TEST(ActionRunTest, ActionWithoutACommandStartsNothing) {
  TToolSession session;
  session.Discover();
  session.RunToItsEnd(*session.Program("Tool"), paUninstallQuiet);
  session.RunToItsEnd(*session.Program("Tool"), NoAction);
  EXPECT_TRUE(session.Commands().empty());
  EXPECT_TRUE(session.Logged(R"(Run action "paUninstallQuiet" for product "Tool". Command: "".)"));
}

TEST(ActionRunTest, StopLeavesEndlessUninstallersAloneAndWaitsForNone) {
  TToolSession session(RunsFor(std::nullopt));
  session.AddMore(8);
  session.Discover();
  for (const auto& product : session.Programs()) EXPECT_TRUE(TSession::Start(*product, paModifyRemove));
  session.Machine().Clock().WaitUntilBlocked(1 + session.Programs().size());
  session.Stop();
  for (const auto& product : session.Programs()) EXPECT_FALSE(TSession::IsBusy(*product));
  std::vector<TProcessEntry> processes;
  ASSERT_EQ(session.Machine().Processes().EnumProcesses(processes), WinError::Success);
  EXPECT_EQ(std::ranges::count(processes, u"u.exe", &TProcessEntry::Name), 9);
  session.Unload();
  EXPECT_EQ(session.Machine().OpenHandleCount(), 0U);
}

TEST(ActionRunTest, RecordThatIsTakenOffTheListEndsItsAction) {
  TToolSession session(RunsFor(std::nullopt));
  session.Discover();
  const auto tool = session.Program("Tool");
  ASSERT_TRUE(TSession::Start(*tool, paUninstall));
  session.Machine().Clock().WaitUntilBlocked(2);
  session.Machine().Registry().RemoveTree(ToolKey);
  session.Machine().Clock().AdvanceUntil([&] { return session.Programs().empty(); }, 100);
  EXPECT_FALSE(TSession::IsBusy(*tool)) << "the wrapper outlives its record";
}

/// Makes every new thread ask for a stack that no machine has.
class TNoMoreThreads {
 public:
  TNoMoreThreads() {
    pthread_getattr_default_np(&FBefore);
    pthread_attr_t huge;
    pthread_attr_init(&huge);
    pthread_attr_setstacksize(&huge, std::size_t{1} << 46);
    pthread_setattr_default_np(&huge);
    pthread_attr_destroy(&huge);
  }
  TNoMoreThreads(const TNoMoreThreads&) = delete;
  TNoMoreThreads& operator=(const TNoMoreThreads&) = delete;
  ~TNoMoreThreads() {
    pthread_setattr_default_np(&FBefore);
    pthread_attr_destroy(&FBefore);
  }

 private:
  pthread_attr_t FBefore;
};

TEST(ActionRunTest, ThreadThatCannotBeMadeLeavesTheProductIdle) {
  TToolSession session;
  session.Discover();
  const auto tool = session.Program("Tool");
  TPossibleActions action = paUninstall;
  TNativeUInt window = 1;
  {
    const TNoMoreThreads none;
    EXPECT_TRUE(tool->RunAction(&action, &window));
  }
  EXPECT_EQ(window, 0U);
  EXPECT_FALSE(TSession::IsBusy(*tool));
  EXPECT_TRUE(session.Commands().empty());
  session.RunToItsEnd(*tool, paUninstall);
  EXPECT_EQ(session.Commands().size(), 1U) << "the next request is served";
  EXPECT_TRUE(session.Logged("Error class"));
}

TEST(ActionRunTest, NoFailedCallLeavesAProductBusyOrAHandleOpen) {
  std::uint64_t number = 1;
  for (bool injected = true; injected; ++number) {
    TToolSession session(RunsFor(300, {{u"C:\\Temp\\Au_.exe", 200}}));
    session.Describe(u"C:\\Temp\\Au_.exe", RunsFor(500));
    std::atomic<bool> isArmed{false};
    TFaultPlan plan(EFault::Transient, number, TFaultPlan::UnexpectedError, [&](const TCall& ACall) {
      return isArmed && (ACall.Facility == "Processes" || ACall.Facility == "Starts" || ACall.Facility == "Windows" ||
                         ACall.Facility == "Icons");
    });
    TFaultyMachine faulty(session.Machine().Facilities(), plan);
    session.Load(faulty.Facilities());
    session.Discover();
    const auto tool = session.Program("Tool");
    isArmed = true;
    ASSERT_TRUE(TSession::Start(*tool, paUninstall));
    TPossibleActions action = paModify;
    TNativeUInt window = 0;
    if (!tool->RunAction(&action, &window)) {
      EXPECT_EQ(action, paUninstall) << "call " << number;
    }
    session.Machine().Clock().AdvanceUntil([&] { return !TSession::IsBusy(*tool); }, 50, 2);
    isArmed = false;
    injected = plan.InjectionCount() > 0;
    session.Unload();
    EXPECT_EQ(session.Machine().OpenHandleCount(), 0U) << "call " << number;
  }
  EXPECT_GT(number, 8U) << "the sweep has reached nothing";
}

TEST(ActionRunTest, ManyHostThreadsAgreeWhileDiscoveryRuns) {
  TToolSession session(RunsFor(5));
  session.AddMore(20);
  session.Machine().Clock().SetMode(EClockMode::Running);
  IVarcolin& manager = session.Load();
  manager.Refresh();
  std::atomic<int> started{0};
  const auto work = [&](unsigned AThread) {
    while (session.Programs().empty()) std::this_thread::yield();
    for (unsigned round = 0; round < 40; ++round) {
      const auto products = session.Programs();
      if (products.empty()) continue;
      IProduct& product = *products[(AThread * 7 + round) % products.size()];
      static_cast<void>(PropertyOf(product, TPropertyID::DisplayName));
      static_cast<void>(product.GetPossibleActions());
      const TPossibleActions action = (round + AThread) % 9 == 0 ? paRemoveFromRegistry : paModifyRemove;
      if (TSession::Start(product, action) && action == paModifyRemove) ++started;
      if (AThread == 0 && round % 10 == 9) manager.Refresh();
    }
  };
  std::vector<std::thread> hosts;
  for (unsigned thread = 0; thread < 4; ++thread) hosts.emplace_back(work, thread);
  for (std::thread& host : hosts) host.join();
  manager.Stop();
  EXPECT_GT(started, 0);
  for (const auto& product : session.Programs()) EXPECT_FALSE(TSession::IsBusy(*product));
}

struct TFeaturesCase {
  const char* Name;
  std::vector<const char16_t*> Programs;
  bool WizardRuns;
  std::vector<std::string> Expected;
};

TEST(WindowsFeaturesTest, OpensWhatTheWindowsHas) {
  constexpr const char16_t* Features = u"C:\\Windows\\System32\\OptionalFeatures.exe";
  constexpr const char16_t* Wizard = u"C:\\Windows\\System32\\Sysocmgr.exe";
  constexpr const char16_t* Console = u"C:\\Windows\\System32\\CompMgmtLauncher.exe";
  for (const TFeaturesCase& row :
       {TFeaturesCase{
            "the dialog first", {Features, Wizard}, false, {"shell C:\\Windows\\system32\\OptionalFeatures.exe 0"}},
        TFeaturesCase{"the wizard of older systems",
                      {Wizard, Console},
                      false,
                      {"shell C:\\Windows\\system32\\Sysocmgr.exe /i:%windir%\\inf\\sysoc.inf 0"}},
        TFeaturesCase{"the console last", {Console}, false, {"shell C:\\Windows\\system32\\CompMgmtLauncher.exe 0"}},
        TFeaturesCase{"nothing at all", {}, false, {"shell C:\\Windows\\system32\\CompMgmtLauncher.exe 2"}},
        TFeaturesCase{"a wizard that runs", {Features}, true, {}}}) {
    SCOPED_TRACE(row.Name);
    TToolSession session;
    for (const char16_t* const path : row.Programs) session.Describe(path);
    if (row.WizardRuns) session.Machine().Sync().HoldMutex(u"sysoc");
    session.Load().ShowWindowsFeatures();
    auto commands = session.Commands();
    for (std::string& command : commands) {
      const auto folder = command.find("\\System32\\");
      if (folder != std::string::npos) command.replace(folder, 10, "\\system32\\");
    }
    EXPECT_EQ(commands, row.Expected);
    session.Unload();
    EXPECT_EQ(session.Machine().OpenHandleCount(), 0U);
  }
}

TEST(WindowsFeaturesTest, BringsARunningWizardToTheFront) {
  TToolSession session;
  auto& machine = session.Machine();
  machine.Sync().HoldMutex(u"sysoc");
  machine.Processes().AddProcess(50, u"C:\\Windows\\System32\\SysOcMgr.exe");
  TSimulatedWindow wizard{u"Windows Components Wizard"};
  wizard.IsMinimised = true;
  const TWindowHandle window = machine.Windows().OpenWindow(50, wizard);
  machine.Processes().AddProcess(51, u"C:\\T\\other.exe");
  machine.Windows().OpenWindow(51, {u"Other"});
  session.Load().ShowWindowsFeatures();
  std::vector<TWindowHandle> windows;
  ASSERT_EQ(machine.Windows().EnumTopWindows(windows), WinError::Success);
  EXPECT_EQ(windows.front(), window);
  TWindowFacts facts;
  ASSERT_EQ(machine.Windows().GetWindowFacts(window, facts), WinError::Success);
  EXPECT_FALSE(facts.IsMinimised);

  machine.Windows().CloseWindow(window);
  session.Manager().ShowWindowsFeatures();
  EXPECT_TRUE(session.Commands().empty()) << "a wizard without a window ends silently";
}

}  // namespace
}  // namespace varcolin::testing
