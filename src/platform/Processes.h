// The running process and its user, and what can be known of other processes.
#pragma once

#include <string>
#include <vector>

#include "platform/Types.h"

namespace varcolin {

struct TProcessTag {};
struct TProcessThreadTag {};
class IProcesses;

/// An open process. The process itself lives and dies without regard to it.
using TProcess = THandle<IProcesses, TProcessTag>;
/// The first thread of a process that was started.
using TProcessThread = THandle<IProcesses, TProcessThreadTag>;

/// One running process of a snapshot.
struct TProcessEntry {
  std::uint32_t Id = 0;
  std::u16string Name;  ///< file name of the executable, without a folder; empty for a process that has none
};

class IProcesses {
 public:
  virtual ~IProcesses() = default;

  /// Security identifier of the user that this process runs as, as text ("S-1-5-21-…").
  /// Windows: OpenProcess, OpenProcessToken, GetTokenInformation, ConvertSidToStringSidW.
  [[nodiscard]] virtual TWinError GetUserSid(std::u16string& ASid) = 0;
  /// Name of the user that this process runs as. Windows: GetUserNameW.
  [[nodiscard]] virtual TWinError GetNameOfUser(std::u16string& AName) = 0;
  /// Whether the process has administrator rights. Windows: CheckTokenMembership with the administrators group.
  [[nodiscard]] virtual TWinError QueryUserIsAdmin(bool& AAnswer) = 0;
  /// The arguments of the host process, without its own name. Windows: GetCommandLineW, CommandLineToArgvW.
  [[nodiscard]] virtual std::vector<std::u16string> HostArguments() = 0;
  /// Id of this process. Windows: GetCurrentProcessId.
  [[nodiscard]] virtual std::uint32_t CurrentProcessId() = 0;
  /// The processes that run at this moment, of all sessions, each once, in no particular order; the idle process (id
  /// 0) and this process are among them. AEntries is replaced on success. Ids are used again by the system once their
  /// process has ended. Windows: WTSEnumerateProcessesW, WTSFreeMemory.
  [[nodiscard]] virtual TWinError EnumProcesses(std::vector<TProcessEntry>& AEntries) = 0;
  /// Full path of a running process's executable, drive letter included, not shortened. InvalidParameter when there is
  /// no such process (id 0 included), AccessDenied for one that this process may not look into; others when the
  /// system cannot tell, as a 32-bit process asking about a 64-bit one on older systems.
  /// Windows: OpenProcess (PROCESS_QUERY_INFORMATION | PROCESS_VM_READ), GetModuleFileNameExW; where that fails,
  /// QueryFullProcessImageNameW (PROCESS_QUERY_LIMITED_INFORMATION) if the system has it.
  [[nodiscard]] virtual TWinError GetProcessPath(std::uint32_t AId, std::u16string& APath) = 0;

  /// Opens a process to read what it is: for queries and for reading its memory. InvalidParameter when there is no such
  /// process (id 0 included), AccessDenied for one that this process may not look into.
  /// Windows: OpenProcess (PROCESS_QUERY_INFORMATION | PROCESS_VM_READ, 0x0410).
  [[nodiscard]] virtual TWinError OpenToRead(std::uint32_t AId, TProcess& AProcess) = 0;
  /// Full path of an open process's executable, as its module list tells. A 32-bit process cannot read that of a
  /// 64-bit one. Windows: GetModuleFileNameExW.
  [[nodiscard]] virtual TWinError GetModulePath(const TProcess& AProcess, std::u16string& APath) = 0;
  /// Path of an open process's executable in device form ("\\Device\\HarddiskVolume1\\…").
  /// Windows: GetProcessImageFileNameW.
  [[nodiscard]] virtual TWinError GetImagePath(const TProcess& AProcess, std::u16string& APath) = 0;
  /// Waits until the process has ended, for at most ATimeout milliseconds (0: only looks). Windows:
  /// WaitForSingleObject.
  [[nodiscard]] virtual EWaitResult WaitForEnd(const TProcess& AProcess, std::uint32_t ATimeout) = 0;
  /// Exit code of an open process; 259 (STILL_ACTIVE) while it runs. Windows: GetExitCodeProcess.
  [[nodiscard]] virtual TWinError GetExitCode(const TProcess& AProcess, std::uint32_t& ACode) = 0;

  /// Give handles back; called by the handle classes. Windows: CloseHandle.
  virtual void CloseValue(TProcessTag, std::uintptr_t AProcess) noexcept = 0;
  virtual void CloseValue(TProcessThreadTag, std::uintptr_t AThread) noexcept = 0;

  /// Ends the process at once. It does not return on a real machine; the simulated one raises its own exception, which
  /// no code above the seam catches. Windows: ExitProcess.
  [[noreturn]] virtual void EndOwnProcess(std::uint32_t AExitCode) = 0;
};

}  // namespace varcolin
