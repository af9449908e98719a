// Windows functions that not every Windows has, and small compositions of Windows functions.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace varcolin {

class IProcesses;
class ISystemFacts;
class ISync;

/// Class operations only. Failures raise EOSError unless a comment says otherwise. Any thread.
class WindowsExt {
 public:
  static void Load(IProcesses& AProcesses, ISystemFacts& ASystem, ISync& ASync);
  static void Unload() noexcept;

  /// Milliseconds since a TickCount value, modulo 2^32.
  [[nodiscard]] static std::uint32_t GetTickDelta(std::uint32_t AStart);
  /// Security identifier of the process's user as text.
  [[nodiscard]] static std::u16string GetUserSID();
  /// Locale information by locale name; empty when the locale is unknown or Windows has no such function.
  [[nodiscard]] static std::u16string GetLocaleInfoEx(std::u16string_view ALocale, std::uint32_t AType);
};

}  // namespace varcolin
