// The Windows shell.
#pragma once

#include <string>

#include "platform/Types.h"

namespace varcolin {

/// Numbers of special folders.
namespace SpecialFolder {
inline constexpr std::int32_t Programs = 2;
inline constexpr std::int32_t CommonPrograms = 23;
inline constexpr std::int32_t AppData = 26;
inline constexpr std::int32_t LocalAppData = 28;
inline constexpr std::int32_t CommonAppData = 35;
inline constexpr std::int32_t Windows = 36;
inline constexpr std::int32_t System = 37;
inline constexpr std::int32_t ProgramFiles = 38;
inline constexpr std::int32_t Profile = 40;
inline constexpr std::int32_t ProgramFilesX86 = 42;
}  // namespace SpecialFolder

class IShell {
 public:
  virtual ~IShell() = default;

  /// Path of a special folder of the current user or the machine, without a trailing backslash. The folder need not
  /// exist. FileNotFound when there is no such folder. Windows: SHGetFolderPathW.
  [[nodiscard]] virtual TWinError GetSpecialFolder(std::int32_t ACsidl, std::u16string& APath) = 0;
  /// Whether the system is of a kind (an OS_ number); ProcedureNotFound where shlwapi does not export it.
  /// Windows: shlwapi's ordinal 437 (IsOS).
  [[nodiscard]] virtual TWinError QueryIsOS(std::uint32_t AKind, bool& AAnswer) = 0;
};

}  // namespace varcolin
