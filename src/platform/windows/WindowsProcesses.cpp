#include "platform/windows/WindowsProcesses.h"

#include <span>

#include "platform/windows/OwnedHandle.h"

namespace varcolin {

/// WTS_PROCESS_INFOW.
struct TWtsProcessInfo {
  DWORD SessionId;
  DWORD ProcessId;
  wchar_t* Name;
  PSID UserSid;
};

namespace {

constexpr DWORD LongestPath = 32768;

/// Replaces the forms in which the system names some executables: "\??\C:\…", "\SystemRoot\…" and short names.
[[nodiscard]] std::u16string UsualForm(std::u16string APath) {
  constexpr std::u16string_view systemRoot = u"\\SystemRoot\\";
  if (APath.starts_with(u"\\??\\") || APath.starts_with(u"\\\\?\\")) APath.erase(0, 4);
  if (APath.starts_with(systemRoot)) {
    std::u16string folder;
    if (ReadText(GetSystemWindowsDirectoryW, folder) == WinError::Success) {
      APath.replace(0, systemRoot.size() - 1, folder);
    }
  }
  if (APath.find(u'~') != std::u16string::npos) {
    std::u16string longPath;
    const auto fill = [&](wchar_t* ABuffer, DWORD ASize) {
      return GetLongPathNameW(AsWide(APath.c_str()), ABuffer, ASize);
    };
    if (ReadText(fill, longPath) == WinError::Success && !longPath.empty()) return longPath;
  }
  return APath;
}

/// Reads a path with a call that fills a buffer of LongestPath units and returns the length, 0 on failure.
template <class TFill>
[[nodiscard]] TWinError ReadPath(TFill AFill, std::u16string& APath) {
  std::u16string path(LongestPath, u'\0');
  SetLastError(ERROR_SUCCESS);
  const DWORD length = AFill(AsWide(path.data()));
  if (length == 0) return LastFailure();
  path.resize(length);
  APath = std::move(path);
  return WinError::Success;
}

}  // namespace

TWinError TWindowsProcesses::GetUserSid(std::u16string& ASid) {
  const TOwnedHandle process(OpenProcess(PROCESS_QUERY_INFORMATION | READ_CONTROL, FALSE, GetCurrentProcessId()));
  if (process == nullptr) return LastFailure();
  HANDLE opened = nullptr;
  if (!OpenProcessToken(process.get(), TOKEN_QUERY, &opened)) return LastFailure();
  const TOwnedHandle token(opened);

  // The structure is followed by the identifier that it points to.
  union {
    TOKEN_USER User;
    BYTE Room[sizeof(TOKEN_USER) + SECURITY_MAX_SID_SIZE];
  } user;
  DWORD size = 0;
  if (!GetTokenInformation(token.get(), TokenUser, &user, sizeof(user), &size)) return LastFailure();
  wchar_t* text = nullptr;
  if (!ConvertSidToStringSidW(user.User.User.Sid, &text)) return LastFailure();
  const TLocalMemory<wchar_t> owner(text);
  ASid = FromWide(text);
  return WinError::Success;
}

TWinError TWindowsProcesses::GetNameOfUser(std::u16string& AName) {
  std::u16string name(257, u'\0');  // a user name has at most 256 units
  DWORD size = static_cast<DWORD>(name.size());
  if (!GetUserNameW(AsWide(name.data()), &size)) return LastFailure();
  AName = FromWide(AsWide(name.c_str()));
  return WinError::Success;
}

TWinError TWindowsProcesses::QueryUserIsAdmin(bool& AAnswer) {
  SID_IDENTIFIER_AUTHORITY authority = {SECURITY_NT_AUTHORITY};
  PSID group = nullptr;
  if (!AllocateAndInitializeSid(&authority, 2, SECURITY_BUILTIN_DOMAIN_RID, DOMAIN_ALIAS_RID_ADMINS, 0, 0, 0, 0, 0, 0,
                                &group)) {
    return LastFailure();
  }
  const std::unique_ptr<void, decltype([](void* ASid) { FreeSid(ASid); })> owner(group);
  BOOL answer = FALSE;
  if (!CheckTokenMembership(nullptr, group, &answer)) return LastFailure();
  AAnswer = answer != FALSE;
  return WinError::Success;
}

std::vector<std::u16string> TWindowsProcesses::HostArguments() {
  int count = 0;
  const TLocalMemory<wchar_t*> arguments(CommandLineToArgvW(GetCommandLineW(), &count));
  std::vector<std::u16string> result;
  for (int index = 1; arguments != nullptr && index < count; ++index) {
    result.emplace_back(FromWide(arguments.get()[index]));
  }
  return result;
}

std::uint32_t TWindowsProcesses::CurrentProcessId() { return GetCurrentProcessId(); }

TWinError TWindowsProcesses::EnumProcesses(std::vector<TProcessEntry>& AEntries) {
  auto* const enumerate = FEnumProcesses.Get();
  auto* const freeMemory = FFreeMemory.Get();
  if (enumerate == nullptr || freeMemory == nullptr) return WinError::ProcedureNotFound;
  TWtsProcessInfo* processes = nullptr;
  DWORD count = 0;
  if (!enumerate(nullptr, 0, 1, &processes, &count)) return LastFailure();
  const std::unique_ptr<TWtsProcessInfo, decltype(freeMemory)> owner(processes, freeMemory);

  std::vector<TProcessEntry> entries;
  entries.reserve(count);
  for (const TWtsProcessInfo& process : std::span(processes, count)) {
    entries.push_back(
        {process.ProcessId, process.Name != nullptr ? std::u16string(FromWide(process.Name)) : std::u16string()});
  }
  AEntries = std::move(entries);
  return WinError::Success;
}

TWinError TWindowsProcesses::OpenToRead(std::uint32_t AId, TProcess& AProcess) {
  const HANDLE process = OpenProcess(PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, FALSE, AId);
  if (process == nullptr) return LastFailure();
  AProcess = TProcess(*this, ToValue(process));
  return WinError::Success;
}

TWinError TWindowsProcesses::GetModulePath(const TProcess& AProcess, std::u16string& APath) {
  auto* const getModuleFileName = FGetModuleFileName.Get();
  if (getModuleFileName == nullptr) return WinError::ProcedureNotFound;
  return ReadPath(
      [&](wchar_t* ABuffer) { return getModuleFileName(ToHandle(AProcess.Value()), nullptr, ABuffer, LongestPath); },
      APath);
}

TWinError TWindowsProcesses::GetImagePath(const TProcess& AProcess, std::u16string& APath) {
  auto* const getImageFileName = FGetImageFileName.Get();
  if (getImageFileName == nullptr) return WinError::ProcedureNotFound;
  return ReadPath([&](wchar_t* ABuffer) { return getImageFileName(ToHandle(AProcess.Value()), ABuffer, LongestPath); },
                  APath);
}

EWaitResult TWindowsProcesses::WaitForEnd(const TProcess& AProcess, std::uint32_t ATimeout) {
  return WaitForHandle(ToHandle(AProcess.Value()), ATimeout);
}

TWinError TWindowsProcesses::GetExitCode(const TProcess& AProcess, std::uint32_t& ACode) {
  DWORD code = 0;
  if (!GetExitCodeProcess(ToHandle(AProcess.Value()), &code)) return LastFailure();
  ACode = code;
  return WinError::Success;
}

void TWindowsProcesses::CloseValue(TProcessTag, std::uintptr_t AProcess) noexcept { CloseHandle(ToHandle(AProcess)); }

void TWindowsProcesses::CloseValue(TProcessThreadTag, std::uintptr_t AThread) noexcept {
  CloseHandle(ToHandle(AThread));
}

TWinError TWindowsProcesses::GetProcessPath(std::uint32_t AId, std::u16string& APath) {
  std::u16string path;
  TProcess opened;
  TWinError error = OpenToRead(AId, opened);
  if (error == WinError::Success) error = GetModulePath(opened, path);
  if (error == WinError::Success) {
    APath = UsualForm(std::move(path));
    return WinError::Success;
  }
  auto* const queryImageName = FQueryImageName.Get();
  if (error == WinError::InvalidParameter || queryImageName == nullptr) return error;

  constexpr DWORD queryLimitedInformation = 0x1000;  // a right that came with the function
  const TOwnedHandle process(OpenProcess(queryLimitedInformation, FALSE, AId));
  if (process == nullptr) return error;
  path.assign(LongestPath, u'\0');
  DWORD length = LongestPath;
  if (!queryImageName(process.get(), 0, AsWide(path.data()), &length) || length == 0) return error;
  path.resize(length);
  APath = UsualForm(std::move(path));
  return WinError::Success;
}

void TWindowsProcesses::EndOwnProcess(std::uint32_t AExitCode) { ExitProcess(AExitCode); }

}  // namespace varcolin
