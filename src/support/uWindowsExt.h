// Windows functions that not every Windows has, and small compositions of Windows functions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "platform/ProcessStart.h"
#include "platform/TopWindows.h"

namespace varcolin {

class ISystemFacts;
class ISync;

/// Class operations only. Failures raise EOSError unless a comment says otherwise. Any thread.
class WindowsExt {
 public:
  static void Load(IProcesses& AProcesses, IProcessStart& AStarts, ITopWindows& AWindows, ISystemFacts& ASystem,
                   ISync& ASync);
  static void Unload() noexcept;

  /// Starts a command line under a duplicate of the current user's token; where this process may not hand out tokens,
  /// under its own. The overload without AProcessInfo closes the new process's handles at once. Raises Exception with
  /// "Error execute command: ..." for a command that cannot be started.
  static void CreateProcessAsCurrentUser(std::u16string_view ACommand, TProcessInfo& AProcessInfo);
  static void CreateProcessAsCurrentUser(std::u16string_view ACommand);
  /// The processes that run, as the terminal services list them.
  [[nodiscard]] static std::vector<TProcessEntry> WTSEnumerateProcesses();
  /// Full path of a process's executable; empty when the system cannot tell. Raises nothing.
  [[nodiscard]] static std::u16string GetModuleFileNameEx(const TProcess& AProcess);
  /// Image name of a process in device form; empty when the system cannot tell. Raises nothing.
  [[nodiscard]] static std::u16string GetProcessImageFileName(const TProcess& AProcess);
  /// Title of a window; empty when it has none. Raises nothing.
  [[nodiscard]] static std::u16string GetWindowText(TWindowHandle AWnd);
  /// Milliseconds since a TickCount value, modulo 2^32.
  [[nodiscard]] static std::uint32_t GetTickDelta(std::uint32_t AStart);
  /// Security identifier of the process's user as text.
  [[nodiscard]] static std::u16string GetUserSID();
  /// Locale information by locale name; empty when the locale is unknown or Windows has no such function.
  [[nodiscard]] static std::u16string GetLocaleInfoEx(std::u16string_view ALocale, std::uint32_t AType);
};

}  // namespace varcolin
