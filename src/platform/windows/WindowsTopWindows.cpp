#include "platform/windows/WindowsTopWindows.h"

#include <utility>

#include "platform/windows/WindowsApi.h"

namespace varcolin {

static_assert(sizeof(TWindowHandle) == sizeof(HWND));
static_assert(WindowStyle::SysMenu == WS_SYSMENU);
static_assert(WindowStyleEx::ToolWindow == WS_EX_TOOLWINDOW);

namespace {

[[nodiscard]] HWND ToWindow(TWindowHandle AWindow) noexcept { return reinterpret_cast<HWND>(AWindow); }

struct TWalk {
  std::vector<TWindowHandle> Windows;
  bool Failed = false;
};

BOOL CALLBACK TakeWindow(HWND AWindow, LPARAM AWalk) noexcept {
  auto& walk = *reinterpret_cast<TWalk*>(AWalk);
  try {
    walk.Windows.push_back(reinterpret_cast<TWindowHandle>(AWindow));
  } catch (const std::exception&) {
    walk.Failed = true;  // no exception may pass the system's frames
  }
  return walk.Failed ? FALSE : TRUE;
}

/// The window's own small icon, else its class's; it stays the window's. Null when it has none.
[[nodiscard]] HICON SmallIconOf(HWND AWindow) noexcept {
  constexpr UINT patience = 200;  // milliseconds; a window of a process that hangs must not hang this one
  DWORD_PTR answer = 0;
  if (SendMessageTimeoutW(AWindow, WM_GETICON, ICON_SMALL, 0, SMTO_ABORTIFHUNG | SMTO_BLOCK, patience, &answer) != 0 &&
      answer != 0) {
    return reinterpret_cast<HICON>(answer);
  }
  return reinterpret_cast<HICON>(GetClassLongPtrW(AWindow, GCLP_HICONSM));
}

}  // namespace

TWinError TWindowsTopWindows::EnumTopWindows(std::vector<TWindowHandle>& AWindows) {
  TWalk walk;
  SetLastError(ERROR_SUCCESS);
  const BOOL done = EnumWindows(TakeWindow, reinterpret_cast<LPARAM>(&walk));
  if (walk.Failed) return WinError::NotEnoughMemory;
  if (!done) return LastFailure();
  AWindows = std::move(walk.Windows);
  return WinError::Success;
}

TWinError TWindowsTopWindows::GetWindowFacts(TWindowHandle AWindow, TWindowFacts& AFacts) {
  const HWND window = ToWindow(AWindow);
  TWindowFacts facts;
  DWORD processId = 0;
  SetLastError(ERROR_SUCCESS);
  if (GetWindowThreadProcessId(window, &processId) == 0) return LastFailure(WinError::InvalidWindowHandle);
  facts.ProcessId = processId;
  HWND parent = GetParent(window);
  if (parent == nullptr) parent = GetWindow(window, GW_OWNER);
  facts.Parent = reinterpret_cast<TWindowHandle>(parent);
  facts.Style = static_cast<std::uint32_t>(GetWindowLongW(window, GWL_STYLE));
  facts.StyleEx = static_cast<std::uint32_t>(GetWindowLongW(window, GWL_EXSTYLE));
  facts.IsVisible = IsWindowVisible(window) != FALSE;
  facts.IsMinimised = IsIconic(window) != FALSE;
  AFacts = facts;
  return WinError::Success;
}

std::u16string TWindowsTopWindows::GetTitle(TWindowHandle AWindow) {
  std::u16string title;
  const HWND window = ToWindow(AWindow);
  const int length = GetWindowTextLengthW(window);
  if (length <= 0) return title;
  title.resize(static_cast<std::size_t>(length) + 1);
  const int copied = GetWindowTextW(window, AsWide(title.data()), static_cast<int>(title.size()));
  title.resize(static_cast<std::size_t>(copied > 0 ? copied : 0));
  return title;
}

TWinError TWindowsTopWindows::CopySmallIcon(TWindowHandle AWindow, TIcon& AIcon) {
  const HWND window = ToWindow(AWindow);
  if (!IsWindow(window)) return WinError::InvalidWindowHandle;
  const HICON icon = SmallIconOf(window);
  if (icon == nullptr) return WinError::ResourceNameNotFound;
  const HICON copy = CopyIcon(icon);
  if (copy == nullptr) return LastFailure();
  AIcon = TIcon(FIcons, reinterpret_cast<std::uintptr_t>(copy));
  return WinError::Success;
}

void TWindowsTopWindows::RestoreWindow(TWindowHandle AWindow) { ShowWindow(ToWindow(AWindow), SW_RESTORE); }

void TWindowsTopWindows::BringToTop(TWindowHandle AWindow) { BringWindowToTop(ToWindow(AWindow)); }

}  // namespace varcolin
