#include "platform/simulated/SimulatedProcesses.h"

#include <utility>

#include "platform/ProcessStart.h"
#include "support/uPaths.h"

namespace varcolin {
namespace {

constexpr std::uint32_t IdleProcess = 0;
constexpr std::uint32_t SystemProcess = 4;
constexpr std::uint32_t OwnProcess = 1204;

}  // namespace

TSimulatedProcesses::TSimulatedProcesses(TSimulatedClock& AClock, const TSimulatedFacts& AFacts)
    : FClock(AClock),
      FUserSid(AFacts.UserSid),
      FUserName(AFacts.UserName),
      FIsAdmin(AFacts.UserIsAdmin),
      FLastId(OwnProcess),
      FOpen(0x60000),
      FThreads(0x70000) {
  AddProcess(IdleProcess, {});
  AddProcess(SystemProcess, u"System");
  AddProcess(OwnProcess,
             std::u16string(VariableOf(EnvironmentOf(AFacts), u"ProgramFiles")).append(u"\\Velmoran\\varcolin.exe"));
}

TWinError TSimulatedProcesses::GetUserSid(std::u16string& ASid) {
  ASid = FUserSid;
  return WinError::Success;
}

TWinError TSimulatedProcesses::GetNameOfUser(std::u16string& AName) {
  AName = FUserName;
  return WinError::Success;
}

TWinError TSimulatedProcesses::QueryUserIsAdmin(bool& AAnswer) {
  AAnswer = FIsAdmin;
  return WinError::Success;
}

std::vector<std::u16string> TSimulatedProcesses::HostArguments() {
  const std::lock_guard lock(FMutex);
  return FArguments;
}

std::uint32_t TSimulatedProcesses::CurrentProcessId() { return OwnProcess; }

TWinError TSimulatedProcesses::EnumProcesses(std::vector<TProcessEntry>& AEntries) {
  const std::lock_guard lock(FMutex);
  std::vector<TProcessEntry> entries;
  for (const auto& [id, run] : FProcesses) entries.push_back({id, std::u16string(ExtractFileName(run->Path))});
  AEntries = std::move(entries);
  return WinError::Success;
}

TWinError TSimulatedProcesses::GetProcessPath(std::uint32_t AId, std::u16string& APath) {
  TProcess process;
  const TWinError error = OpenToRead(AId, process);
  return error == WinError::Success ? GetModulePath(process, APath) : error;
}

TWinError TSimulatedProcesses::OpenToRead(std::uint32_t AId, TProcess& AProcess) {
  TProcess opened;
  {
    const std::lock_guard lock(FMutex);
    const auto found = FProcesses.find(AId);
    if (AId == IdleProcess || found == FProcesses.end()) return WinError::InvalidParameter;
    if (ExtractFilePath(found->second->Path).empty()) return WinError::AccessDenied;
    opened = OpenRun(found->second);
  }
  AProcess = std::move(opened);
  return WinError::Success;
}

TProcess TSimulatedProcesses::OpenRun(std::shared_ptr<TRun> ARun) {
  return TProcess(*this, FOpen.Add(std::move(ARun)));
}

std::shared_ptr<TSimulatedProcesses::TRun> TSimulatedProcesses::RunOf(const TProcess& AProcess) {
  const auto* const run = FOpen.Find(AProcess.Value());
  return run == nullptr ? nullptr : *run;
}

TWinError TSimulatedProcesses::GetModulePath(const TProcess& AProcess, std::u16string& APath) {
  const std::lock_guard lock(FMutex);
  const auto run = RunOf(AProcess);
  if (!run) return WinError::InvalidHandle;
  APath = run->Path;
  return WinError::Success;
}

TWinError TSimulatedProcesses::GetImagePath(const TProcess& AProcess, std::u16string& APath) {
  std::u16string path;
  const TWinError error = GetModulePath(AProcess, path);
  if (error != WinError::Success) return error;
  constexpr std::size_t driveLength = 2;
  APath = u"\\Device\\HarddiskVolume1" + path.substr(driveLength);
  return WinError::Success;
}

EWaitResult TSimulatedProcesses::WaitForEnd(const TProcess& AProcess, std::uint32_t ATimeout) {
  std::shared_ptr<TRun> run;
  {
    const std::lock_guard lock(FMutex);
    run = RunOf(AProcess);
  }
  if (!run) return EWaitResult::Failed;
  return FClock.Wait(&run->Ended, ATimeout) ? EWaitResult::Signaled : EWaitResult::TimedOut;
}

TWinError TSimulatedProcesses::GetExitCode(const TProcess& AProcess, std::uint32_t& ACode) {
  const std::lock_guard lock(FMutex);
  const auto run = RunOf(AProcess);
  if (!run) return WinError::InvalidHandle;
  ACode = run->ExitCode;
  return WinError::Success;
}

void TSimulatedProcesses::CloseValue(TProcessTag, std::uintptr_t AProcess) noexcept {
  const std::lock_guard lock(FMutex);
  FOpen.Remove(AProcess);
}

void TSimulatedProcesses::CloseValue(TProcessThreadTag, std::uintptr_t AThread) noexcept {
  const std::lock_guard lock(FMutex);
  FThreads.Remove(AThread);
}

void TSimulatedProcesses::EndOwnProcess(std::uint32_t AExitCode) { throw TSimulatedProcessEnd{AExitCode}; }

void TSimulatedProcesses::SetHostArguments(std::vector<std::u16string> AArguments) {
  const std::lock_guard lock(FMutex);
  FArguments = std::move(AArguments);
}

void TSimulatedProcesses::SetOwnPath(std::u16string_view APath) { AddProcess(OwnProcess, APath); }

void TSimulatedProcesses::AddProcess(std::uint32_t AId, std::u16string_view APath) {
  const auto run = std::make_shared<TRun>();
  run->Path = APath;
  const std::lock_guard lock(FMutex);
  FProcesses.insert_or_assign(AId, run);
}

void TSimulatedProcesses::EndProcess(std::uint32_t AId, std::uint32_t AExitCode) {
  const std::lock_guard lock(FMutex);
  const auto found = FProcesses.find(AId);
  if (found == FProcesses.end()) return;
  found->second->ExitCode = AExitCode;
  FClock.Change(found->second->Ended, true);
  FProcesses.erase(found);
}

TProcessInfo TSimulatedProcesses::StartProcess(std::u16string_view APath) {
  const auto run = std::make_shared<TRun>();
  run->Path = APath;
  const std::lock_guard lock(FMutex);
  do FLastId += 4;
  while (FProcesses.contains(FLastId));
  FProcesses.emplace(FLastId, run);
  TProcessInfo info;
  info.Process = OpenRun(run);
  info.ProcessId = FLastId;
  info.ThreadId = FLastId + 1;
  info.Thread = TProcessThread(*this, FThreads.Add(info.ThreadId));
  return info;
}

bool TSimulatedProcesses::IsRunning(std::uint32_t AId) {
  const std::lock_guard lock(FMutex);
  return FProcesses.contains(AId);
}

std::size_t TSimulatedProcesses::OpenHandleCount() {
  const std::lock_guard lock(FMutex);
  return FOpen.Count() + FThreads.Count();
}

}  // namespace varcolin
