#include "platform/simulated/SimulatedProcesses.h"

#include <utility>

#include "support/uPaths.h"

namespace varcolin {
namespace {

constexpr std::uint32_t IdleProcess = 0;
constexpr std::uint32_t SystemProcess = 4;
constexpr std::uint32_t OwnProcess = 1204;

}  // namespace

TSimulatedProcesses::TSimulatedProcesses(const TSimulatedFacts& AFacts)
    : FUserSid(AFacts.UserSid), FUserName(AFacts.UserName), FIsAdmin(AFacts.UserIsAdmin) {
  const std::u16string programs(VariableOf(EnvironmentOf(AFacts), u"ProgramFiles"));
  FProcesses = {{IdleProcess, u""}, {SystemProcess, u"System"}, {OwnProcess, programs + u"\\Velmoran\\varcolin.exe"}};
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
  for (const auto& [id, path] : FProcesses) entries.push_back({id, std::u16string(ExtractFileName(path))});
  AEntries = std::move(entries);
  return WinError::Success;
}

TWinError TSimulatedProcesses::GetProcessPath(std::uint32_t AId, std::u16string& APath) {
  const std::lock_guard lock(FMutex);
  const auto found = FProcesses.find(AId);
  if (AId == IdleProcess || found == FProcesses.end()) return WinError::InvalidParameter;
  if (ExtractFilePath(found->second).empty()) return WinError::AccessDenied;
  APath = found->second;
  return WinError::Success;
}

void TSimulatedProcesses::EndOwnProcess(std::uint32_t AExitCode) { throw TSimulatedProcessEnd{AExitCode}; }

void TSimulatedProcesses::SetHostArguments(std::vector<std::u16string> AArguments) {
  const std::lock_guard lock(FMutex);
  FArguments = std::move(AArguments);
}

void TSimulatedProcesses::SetOwnPath(std::u16string_view APath) { AddProcess(OwnProcess, APath); }

void TSimulatedProcesses::AddProcess(std::uint32_t AId, std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  FProcesses.insert_or_assign(AId, std::u16string(APath));
}

void TSimulatedProcesses::RemoveProcess(std::uint32_t AId) {
  const std::lock_guard lock(FMutex);
  FProcesses.erase(AId);
}

}  // namespace varcolin
