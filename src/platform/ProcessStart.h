// Starting programs.
#pragma once

#include <string_view>

#include "platform/Processes.h"
#include "platform/Types.h"

namespace varcolin {

struct TTokenTag {};
class IProcessStart;

/// An access token.
using TToken = THandle<IProcessStart, TTokenTag>;

/// Rights of a token.
namespace TokenAccess {
inline constexpr std::uint32_t All = 0xF01FF;  ///< TOKEN_ALL_ACCESS
}

/// Creation flags of a process.
namespace StartFlag {
inline constexpr std::uint32_t NewProcessGroup = 0x00000200;
inline constexpr std::uint32_t BreakAwayFromJob = 0x01000000;
inline constexpr std::uint32_t DefaultErrorMode = 0x04000000;
}  // namespace StartFlag

/// How a started program's first window is shown.
namespace ShowCommand {
inline constexpr std::int32_t Show = 5;  ///< SW_SHOW
}

/// A process that was started (Windows: PROCESS_INFORMATION). Nothing waits for it when the handles go.
struct TProcessInfo {
  TProcess Process;
  TProcessThread Thread;
  std::uint32_t ProcessId = 0;
  std::uint32_t ThreadId = 0;
};

class IProcessStart {
 public:
  virtual ~IProcessStart() = default;

  /// Opens the token of this process with the rights AAccess. Windows: OpenProcessToken on the current process.
  [[nodiscard]] virtual TWinError OpenOwnToken(std::uint32_t AAccess, TToken& AToken) = 0;
  /// A primary token like AToken, with the same rights, at the impersonation level "impersonation".
  /// Windows: DuplicateTokenEx with SecurityImpersonation and TokenPrimary.
  [[nodiscard]] virtual TWinError DuplicateAsPrimary(const TToken& AToken, TToken& ADuplicate) = 0;
  /// Starts a command line as the user of a primary token: no application name, handles inherited, this process's
  /// environment and current folder. FileNotFound when there is no such program, BadExecutable for a file that is none,
  /// PrivilegeNotHeld when this process may not give another process a token. Windows: CreateProcessAsUserW.
  [[nodiscard]] virtual TWinError StartAsUser(const TToken& AToken, std::u16string_view ACommand, std::uint32_t AFlags,
                                              TProcessInfo& AProcess) = 0;
  /// The same as the user of this process. Windows: CreateProcessW.
  [[nodiscard]] virtual TWinError StartAsSelf(std::u16string_view ACommand, std::uint32_t AFlags,
                                              TProcessInfo& AProcess) = 0;
  /// Opens a program through the shell: verb "open", no working folder, no owner window. The shell may show messages of
  /// its own on failure. Windows: ShellExecuteExW.
  [[nodiscard]] virtual TWinError OpenByShell(std::u16string_view AProgram, std::u16string_view AParameters,
                                              std::int32_t AShow) = 0;

  /// Gives a handle back; called by the handle class. Windows: CloseHandle.
  virtual void CloseValue(TTokenTag, std::uintptr_t AToken) noexcept = 0;
};

}  // namespace varcolin
