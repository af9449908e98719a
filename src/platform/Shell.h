// The Windows shell.
#pragma once

#include <cstddef>
#include <span>
#include <string>

#include "platform/Types.h"

namespace varcolin {

/// Numbers of special folders.
namespace SpecialFolder {
inline constexpr std::int32_t Programs = 2;
inline constexpr std::int32_t CommonPrograms = 23;
inline constexpr std::int32_t Desktop = 16;
inline constexpr std::int32_t AppData = 26;
inline constexpr std::int32_t LocalAppData = 28;
inline constexpr std::int32_t CommonAppData = 35;
inline constexpr std::int32_t Windows = 36;
inline constexpr std::int32_t System = 37;
inline constexpr std::int32_t ProgramFiles = 38;
inline constexpr std::int32_t Profile = 40;
inline constexpr std::int32_t ProgramFilesX86 = 42;
}  // namespace SpecialFolder

/// Forms of IShell::GetDisplayName.
namespace DisplayNameForm {
inline constexpr std::uint32_t InFolder = 0x1;       ///< SHGDN_INFOLDER: as a person sees the item in its folder
inline constexpr std::uint32_t ForParsing = 0x8000;  ///< SHGDN_FORPARSING: the path, for items of the file system
}  // namespace DisplayNameForm

struct TShellFolderTag {};
class IShell;

/// A folder of the shell namespace. It may be used from any thread, also by several at a time.
using TShellFolder = THandle<IShell, TShellFolderTag>;

class IShell {
 public:
  virtual ~IShell() = default;

  /// Path of a special folder of the current user or the machine, without a trailing backslash. The folder need not
  /// exist. FileNotFound when there is no such folder. Windows: SHGetFolderPathW.
  [[nodiscard]] virtual TWinError GetSpecialFolder(std::int32_t ACsidl, std::u16string& APath) = 0;
  /// Whether the system is of a kind (an OS_ number); ProcedureNotFound where shlwapi does not export it.
  /// Windows: shlwapi's ordinal 437 (IsOS).
  [[nodiscard]] virtual TWinError QueryIsOS(std::uint32_t AKind, bool& AAnswer) = 0;

  /// The desktop, root of the shell namespace. Windows: SHGetDesktopFolder.
  [[nodiscard]] virtual TWinError GetDesktopFolder(TShellFolder& AFolder) = 0;
  /// The name of what an item ID list leads to from AFolder, in one of DisplayNameForm's forms; the item itself need
  /// not exist. AIDList: the bytes of the list, which may come from anywhere: InvalidParameter when an item reaches
  /// past their end or is shorter than its own length field. The terminating empty item may be missing. A failed COM
  /// result comes as the Windows error inside it. Windows: IShellFolder::GetDisplayNameOf, its result converted to
  /// text.
  [[nodiscard]] virtual TWinError GetDisplayName(const TShellFolder& AFolder, std::span<const std::byte> AIDList,
                                                 std::uint32_t AForm, std::u16string& AName) = 0;

  /// Gives a folder back; called by TShellFolder. Windows: IUnknown::Release.
  virtual void CloseValue(TShellFolderTag, std::uintptr_t AFolder) noexcept = 0;
};

}  // namespace varcolin
