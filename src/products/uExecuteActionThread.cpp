#include "products/uExecuteActionThread.h"

#include <algorithm>
#include <mutex>
#include <vector>

#include "platform/Com.h"
#include "platform/Processes.h"
#include "platform/Sync.h"
#include "products/uItemProduct.h"
#include "products/uThreadExceptionHandler.h"
#include "products/uWindowTop.h"
#include "services/uStatisticsLog.h"
#include "support/uExceptions.h"
#include "support/uWindowsExt.h"

namespace varcolin {

namespace {

/// Time between two looks, milliseconds.
constexpr std::uint32_t PollInterval = 100;
/// An uninstaller that runs longer than this has done its work itself and not left it to a copy, milliseconds.
constexpr std::uint32_t HandOverTime = 10'000;

using TProcessList = std::vector<TProcessEntry>;

/// The processes that run; none when they cannot be listed.
[[nodiscard]] TProcessList ListProcesses() {
  try {
    return WindowsExt::WTSEnumerateProcesses();
  } catch (const EOSError&) {
    return {};
  }
}

[[nodiscard]] bool Contains(const TProcessList& AList, std::uint32_t AId) {
  return std::ranges::find(AList, AId, &TProcessEntry::Id) != AList.end();
}

/// The first process that was not there before and has the name of an uninstaller's copy of itself: one letter and
/// "u_.exe", in just this case. 0 when there is none.
[[nodiscard]] std::uint32_t FindSelfCopy(const TProcessList& ABefore, const TProcessList& AAfter) {
  constexpr std::size_t length = 7;
  for (const TProcessEntry& process : AAfter) {
    if (process.Name.size() == length && process.Name.ends_with(u"u_.exe") && !Contains(ABefore, process.Id)) {
      return process.Id;
    }
  }
  return 0;
}

}  // namespace

std::u16string_view TextOf(TPossibleActions AAction) noexcept {
  constexpr std::u16string_view names[] = {u"paUninstall", u"paUninstallQuiet", u"paModify",
                                           u"paRepair",    u"paModifyRemove",   u"paRemoveFromRegistry"};
  const auto index = static_cast<std::size_t>(AAction);
  return index < std::size(names) ? names[index] : std::u16string_view();
}

void TExecuteActionThread::Load(ISync& ASync, IProcesses& AProcesses, ICom& ACom) noexcept {
  FFacilities = {&ASync, &AProcesses, &ACom};
}

void TExecuteActionThread::Unload() noexcept { FFacilities = {}; }

TExecuteActionThread::TExecuteActionThread(TItemProduct& AProduct, TPossibleActions AAction)
    : FProduct(AProduct), FAction(AAction), FThread([this](TThread&) { Execute(); }) {}

TNativeUInt TExecuteActionThread::GetWindowTop() const {
  const TWindowTopCollection windows(nullptr);
  const auto& items = windows.Items();
  const auto found = std::ranges::find(items, FProcessId.load(), &TWindowTopItem::FProcessID);
  return found == items.end() ? 0 : found->FWindowHandle;
}

void TExecuteActionThread::Execute() {
  {
    const TComScope com(*FFacilities.Com, ECom::Apartment);
    try {
      std::u16string command;
      std::u16string name;
      {
        const std::lock_guard lock(FProduct.ItemLock());
        command = FProduct.GetActionCommand(FAction);
        name = FProduct.FDisplayName;
      }
      StatisticsLog::Add(u"Run action \"%s\" for product \"%s\". Command: \"%s\".", {TextOf(FAction), name, command});
      if (!command.empty()) RunCommand(command);
    } catch (const std::exception&) {
      TThreadExceptionHandler::Show();
      StatisticsLog::AddErrorLn();
    }
  }
  FProduct.ActionEnded();
}

void TExecuteActionThread::RunCommand(std::u16string_view ACommand) {
  const TProcessList before = ListProcesses();
  const std::uint32_t start = FFacilities.Sync->TickCount();
  WaitForProcess(ACommand);
  if (WindowsExt::GetTickDelta(start) > HandOverTime) return;
  TProcessList after = ListProcesses();
  const std::uint32_t copy = FindSelfCopy(before, after);
  if (copy == 0) return;
  while (Contains(after, copy)) {
    FFacilities.Sync->SleepFor(PollInterval);
    if (FThread.Terminated()) return;
    after = ListProcesses();
  }
}

void TExecuteActionThread::WaitForProcess(std::u16string_view ACommand) {
  TProcessInfo process;
  WindowsExt::CreateProcessAsCurrentUser(ACommand, process);
  FProcessId = process.ProcessId;
  while (!FThread.Terminated() &&
         FFacilities.Processes->WaitForEnd(process.Process, PollInterval) == EWaitResult::TimedOut) {
  }
}

}  // namespace varcolin
