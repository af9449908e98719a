// The commands that let a product's own program run: uninstall, modify, repair.
#include <algorithm>
#include <chrono>
#include <set>
#include <sstream>

#include "host/Cells.h"
#include "host/Commands.h"
#include "host/Discovery.h"
#include "host/HostError.h"
#include "host/Library.h"
#include "host/Progress.h"
#include "host/Terminal.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

using TClock = std::chrono::steady_clock;
using std::chrono::milliseconds;
using std::chrono::seconds;

constexpr milliseconds LookPeriod(100);
/// How long an entry may take to vanish when nothing of its uninstaller runs any more: the library looks for changes
/// once a second and lets them settle.
constexpr seconds EntryGrace(6);
/// How long a copy of an uninstaller is waited for that the library does not know as one.
constexpr seconds LongestCopy(120);

std::string Named(const TProductRecord& AProgram) { return '"' + Printable(AProgram.DisplayName) + '"'; }

/// The first of the actions that the program offers.
TPossibleActions ChooseAction(const TProductRecord& AProgram, const TActOptions& AOptions) {
  using enum TPossibleActions;
  if (AOptions.Quiet && AOptions.Kind != EAct::Uninstall) throw EHostError("only uninstall can be quiet", ExitUsage);
  std::vector<TPossibleActions> wanted;
  switch (AOptions.Kind) {
    case EAct::Uninstall:
      wanted = AOptions.Quiet ? std::vector{paUninstallQuiet} : std::vector{paUninstall, paModifyRemove};
      break;
    case EAct::Modify:
      wanted = {paModify, paModifyRemove};
      break;
    case EAct::Repair:
      wanted = {paRepair};
      break;
  }
  for (const TPossibleActions action : wanted) {
    if ((AProgram.Actions & ActionBit(action)) != 0) return action;
  }
  std::string offered;
  for (const std::string_view name : ActionNames(AProgram.Actions)) {
    offered += offered.empty() ? "" : ", ";
    offered += name;
  }
  throw EHostError(Named(AProgram) + " does not offer this; it offers " + (offered.empty() ? "nothing" : offered));
}

/// The product's interface for its commands.
TInterfaceRef<IProductCommands> CommandsOf(IProduct& AProduct) {
  TInterfaceRef<IProductCommands> commands;
  if (AProduct.QueryInterface(IProductCommands::IID, reinterpret_cast<void**>(commands.Receive())) != ResultOk) {
    throw EHostError("the library does not tell the commands of its products");
  }
  return commands;
}

bool IsBusy(IProduct& AProduct, TNativeUInt& AWindow) {
  TPossibleActions none = NoAction;
  return !AProduct.RunAction(&none, &AWindow);
}

bool IsGone(IProduct& AProduct) {
  TVariantValue name;
  AProduct.GetProperty(static_cast<std::int32_t>(TPropertyID::DisplayName), name.Receive());
  return name.Value().Type == EVariantType::Null;
}

/// Watches one run of a product's program.
class TRun {
 public:
  TRun(const TLibrary& ALibrary, IProduct& AProduct) : FLibrary(ALibrary), FProduct(AProduct) {
    for (const TRunningProcess& process : FLibrary.Processes()) FBefore.insert(process.Id);
  }

  /// Waits until the product is idle, or the user interrupts.
  void WaitUntilIdle() {
    TNativeUInt window = 0;
    while (IsBusy(FProduct, window) && !IsInterrupted()) {
      Show(window == 0 ? std::string() : ToUtf8(FLibrary.WindowTitle(window)));
      Pause(LookPeriod);
    }
  }

  /// Waits until the entry has gone, for as long as a copy of the uninstaller runs and for a moment more.
  void WaitUntilGone() {
    const TClock::time_point begin = TClock::now();
    TClock::time_point quiet = begin;
    while (!IsGone(FProduct) && !IsInterrupted()) {
      const TClock::time_point now = TClock::now();
      const std::u16string copy = now - begin < LongestCopy ? RunningCopy() : std::u16string();
      if (!copy.empty()) {
        quiet = now;
      } else if (now - quiet > EntryGrace) {
        return;
      }
      Show(copy.empty() ? "waiting for the entry to vanish" : ToUtf8(copy) + " goes on");
      Pause(LookPeriod);
    }
  }

 private:
  void Show(const std::string& AWhat) {
    if (!FProgress.IsWatched()) return;
    const auto elapsed = std::chrono::duration_cast<seconds>(TClock::now() - FStart).count();
    constexpr std::size_t longest = 60;
    FProgress.Show("Running for " + std::to_string(elapsed) + " s" +
                   (AWhat.empty() ? "" : ": " + FitToCells(AWhat, longest)));
  }

  /// Path of a program that has started since from a folder for temporary files, as copies of uninstallers do; empty
  /// when none runs.
  [[nodiscard]] std::u16string RunningCopy() const {
    for (const TRunningProcess& process : FLibrary.Processes()) {
      if (FBefore.contains(process.Id)) continue;
      const std::u32string path = FoldCase(ToUtf8(process.Path));
      if (path.find(U"\\temp\\") != path.npos || path.find(U"\\tmp\\") != path.npos) return process.Path;
    }
    return {};
  }

  const TLibrary& FLibrary;
  IProduct& FProduct;
  std::set<std::uint32_t> FBefore;
  TClock::time_point FStart = TClock::now();
  TProgress FProgress;
};

/// Asks before the command runs; throws when it must not run.
void Permit(const TActOptions& AOptions, const TLibrary& ALibrary, IProduct& AProduct, bool AIsUserCommand) {
  if (!AProduct.IsNotHost()) throw EHostError("this very program runs from its folder; nothing was run");
  if (AIsUserCommand && !AOptions.AllowUserCommand && ALibrary.IsElevated()) {
    throw EHostError(
        "the command comes from the user's part of the registry, which every program of the user can write, and would "
        "run with administrator rights; --allow-user-command runs it all the same");
  }
  if (AOptions.Yes) return;
  switch (AskYesNo("Run it? [y/N] ")) {
    case EAnswer::Yes:
      return;
    case EAnswer::No:
      throw EHostError("nothing was run");
    case EAnswer::None:
      throw EHostError("nobody answers, so nothing was run; --yes runs it without a question");
  }
}

}  // namespace

int RunAct(const TActOptions& AOptions) {
  const TLibrary library(AOptions.Machine);
  TDiscovery discovery(library.Manager());
  discovery.WaitUntilLoaded();
  const TProductRecord program = ChooseProduct(discovery.Read(), AOptions.NameOrGuid);
  TPossibleActions action = ChooseAction(program, AOptions);
  const TInterfaceRef<IProduct> product = discovery.ProductOf(program);
  if (!product) throw EHostError(Named(program) + " has changed meanwhile; nothing was run");
  const auto commands = CommandsOf(*product);
  TOleText command;
  commands->GetActionCommand(action, command.Receive());
  if (command.View().empty()) throw EHostError(Named(program) + " has no command for this");
  WriteOutput(Printable(program.DisplayName) + ": " + Printable(ToUtf8(command.View())) + '\n');
  Permit(AOptions, library, *product, commands->IsUserCommand());

  CatchInterrupt();
  std::vector<std::string> messages;
  {
    TRun run(library, *product);
    TNativeUInt window = 0;
    if (!product->RunAction(&action, &window)) throw EHostError(Named(program) + " is busy already");
    run.WaitUntilIdle();
    messages = library.TakeMessages();
    if (AOptions.Kind == EAct::Uninstall && messages.empty()) run.WaitUntilGone();
  }
  for (const std::string& message : messages) {
    std::istringstream lines(message);
    for (std::string line; std::getline(lines, line, '\n');) {
      if (line.ends_with('\r')) line.pop_back();
      WriteError("varcolin: " + Printable(line) + '\n');
    }
  }
  if (IsInterrupted()) throw EHostError("not waited for any longer; what was started goes on");
  const bool isGone = IsGone(*product);
  WriteOutput(Printable(program.DisplayName) + (isGone ? " is no longer listed.\n" : " is still listed.\n"));
  return isGone || AOptions.Kind != EAct::Uninstall ? ExitOk : ExitFailure;
}

int RunForget(const TForgetOptions& AOptions) {
  const TLibrary library(AOptions.Machine);
  TDiscovery discovery(library.Manager());
  discovery.WaitUntilLoaded();
  const TProductRecord program = ChooseProduct(discovery.Read(), AOptions.NameOrGuid);
  const TInterfaceRef<IProduct> product = discovery.ProductOf(program);
  TPossibleActions action = TPossibleActions::paRemoveFromRegistry;
  TNativeUInt window = 0;
  if (!product || (program.Actions & ActionBit(action)) == 0 || !product->RunAction(&action, &window)) {
    throw EHostError(Named(program) + " cannot be taken off the list now");
  }
  WriteOutput(Printable(program.DisplayName) + " was taken off the library's list; its registry entry stays.\n");
  return ExitOk;
}

int RunFeatures(const TMachineImage& AMachine) {
  const TLibrary library(AMachine);
  library.Manager().ShowWindowsFeatures();
  WriteOutput("Windows was asked to show its optional features.\n");
  return ExitOk;
}

}  // namespace varcolin::host
