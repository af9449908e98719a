// The top-level windows of all processes.
#pragma once

#include <string>
#include <vector>

#include "platform/Icons.h"
#include "platform/Types.h"

namespace varcolin {

/// A window handle (Windows: HWND). Windows belong to their processes: a value may name no window at any time, and a
/// method that is given such a value fails with 1400 (ERROR_INVALID_WINDOW_HANDLE) or answers as its comment says.
using TWindowHandle = std::uintptr_t;

/// Bits of a window's style.
namespace WindowStyle {
inline constexpr std::uint32_t SysMenu = 0x00080000;
}
/// Bits of a window's extended style.
namespace WindowStyleEx {
inline constexpr std::uint32_t ToolWindow = 0x80;
}

/// What a window is apart from its title and icon.
struct TWindowFacts {
  TWindowHandle Parent = 0;     ///< parent or, for a window without one, owner; 0 when it has neither
  std::uint32_t Style = 0;      ///< WindowStyle bits and others
  std::uint32_t StyleEx = 0;    ///< WindowStyleEx bits and others
  std::uint32_t ProcessId = 0;  ///< of the process that made it
  bool IsVisible = false;
  bool IsMinimised = false;
};

class ITopWindows {
 public:
  virtual ~ITopWindows() = default;

  /// The top-level windows of this session, from the front to the back. Windows: EnumWindows.
  [[nodiscard]] virtual TWinError EnumTopWindows(std::vector<TWindowHandle>& AWindows) = 0;
  /// Windows: GetParent and GetWindow (GW_OWNER), GetWindowLongW, GetWindowThreadProcessId, IsWindowVisible, IsIconic.
  [[nodiscard]] virtual TWinError GetWindowFacts(TWindowHandle AWindow, TWindowFacts& AFacts) = 0;
  /// Title; empty for a window without one, and for what is no window. Windows: GetWindowTextW.
  [[nodiscard]] virtual std::u16string GetTitle(TWindowHandle AWindow) = 0;
  /// A copy of the window's small icon: the window's own, else that of its class. ResourceNameNotFound when it has
  /// neither. A window that does not answer in time counts as one without an icon of its own.
  /// Windows: WM_GETICON with ICON_SMALL, GetClassLongW (GCL_HICONSM), CopyIcon.
  [[nodiscard]] virtual TWinError CopySmallIcon(TWindowHandle AWindow, TIcon& AIcon) = 0;
  /// Gives a minimised window its size back and shows it; what is no window is passed over. Windows: ShowWindow
  /// (SW_RESTORE).
  virtual void RestoreWindow(TWindowHandle AWindow) = 0;
  /// Brings a window to the front of the others; what is no window is passed over. Windows: BringWindowToTop.
  virtual void BringToTop(TWindowHandle AWindow) = 0;
};

}  // namespace varcolin
