#include "platform/windows/WindowsProcessStart.h"

#include <string>

#include "platform/windows/OwnedHandle.h"

namespace varcolin {

static_assert(TokenAccess::All == TOKEN_ALL_ACCESS);
static_assert(StartFlag::NewProcessGroup == CREATE_NEW_PROCESS_GROUP);
static_assert(StartFlag::BreakAwayFromJob == CREATE_BREAKAWAY_FROM_JOB);
static_assert(StartFlag::DefaultErrorMode == CREATE_DEFAULT_ERROR_MODE);
static_assert(ShowCommand::Show == SW_SHOW);

namespace {

/// Starts a command line with ACreate(command, attributes, start-up record, process information).
template <class TCreate>
[[nodiscard]] TWinError Start(IProcesses& AProcesses, std::u16string_view ACommand, TProcessInfo& AProcess,
                              TCreate ACreate) {
  if (ACommand.find(u'\0') != std::u16string_view::npos) return WinError::InvalidName;
  std::u16string command(ACommand);  // the call writes into it
  SECURITY_ATTRIBUTES attributes = {sizeof attributes, nullptr, TRUE};
  STARTUPINFOW startup = {};
  startup.cb = sizeof startup;
  PROCESS_INFORMATION started = {};
  if (!ACreate(AsWide(command.data()), &attributes, &startup, &started)) return LastFailure();
  TProcessInfo info;
  info.Process = TProcess(AProcesses, ToValue(started.hProcess));
  info.Thread = TProcessThread(AProcesses, ToValue(started.hThread));
  info.ProcessId = started.dwProcessId;
  info.ThreadId = started.dwThreadId;
  AProcess = std::move(info);
  return WinError::Success;
}

}  // namespace

TWinError TWindowsProcessStart::OpenOwnToken(std::uint32_t AAccess, TToken& AToken) {
  HANDLE token = nullptr;
  if (!OpenProcessToken(GetCurrentProcess(), AAccess, &token)) return LastFailure();
  AToken = TToken(*this, ToValue(token));
  return WinError::Success;
}

TWinError TWindowsProcessStart::DuplicateAsPrimary(const TToken& AToken, TToken& ADuplicate) {
  constexpr DWORD sameAccess = 0;
  HANDLE duplicate = nullptr;
  if (!DuplicateTokenEx(ToHandle(AToken.Value()), sameAccess, nullptr, SecurityImpersonation, TokenPrimary,
                        &duplicate)) {
    return LastFailure();
  }
  ADuplicate = TToken(*this, ToValue(duplicate));
  return WinError::Success;
}

TWinError TWindowsProcessStart::StartAsUser(const TToken& AToken, std::u16string_view ACommand, std::uint32_t AFlags,
                                            TProcessInfo& AProcess) {
  return Start(
      FProcesses, ACommand, AProcess,
      [&](wchar_t* ALine, SECURITY_ATTRIBUTES* AAttributes, STARTUPINFOW* AStartup, PROCESS_INFORMATION* AStarted) {
        return CreateProcessAsUserW(ToHandle(AToken.Value()), nullptr, ALine, AAttributes, AAttributes, TRUE, AFlags,
                                    nullptr, nullptr, AStartup, AStarted);
      });
}

TWinError TWindowsProcessStart::StartAsSelf(std::u16string_view ACommand, std::uint32_t AFlags,
                                            TProcessInfo& AProcess) {
  return Start(
      FProcesses, ACommand, AProcess,
      [&](wchar_t* ALine, SECURITY_ATTRIBUTES* AAttributes, STARTUPINFOW* AStartup, PROCESS_INFORMATION* AStarted) {
        return CreateProcessW(nullptr, ALine, AAttributes, AAttributes, TRUE, AFlags, nullptr, nullptr, AStartup,
                              AStarted);
      });
}

TWinError TWindowsProcessStart::OpenByShell(std::u16string_view AProgram, std::u16string_view AParameters,
                                            std::int32_t AShow) {
  const TApiText program(AProgram);
  const TApiText parameters(AParameters);
  if (!program.IsWhole() || !parameters.IsWhole()) return WinError::InvalidName;
  SHELLEXECUTEINFOW info = {};
  info.cbSize = sizeof info;
  info.lpVerb = L"open";
  info.lpFile = program.Get();
  info.lpParameters = parameters.Get();
  info.nShow = AShow;
  return ShellExecuteExW(&info) ? WinError::Success : LastFailure();
}

void TWindowsProcessStart::CloseValue(TTokenTag, std::uintptr_t AToken) noexcept { CloseHandle(ToHandle(AToken)); }

}  // namespace varcolin
