#include "platform/simulated/SimulatedTopWindows.h"

#include <algorithm>
#include <utility>

#include "platform/simulated/SimulatedIcons.h"

namespace varcolin {

std::vector<TSimulatedTopWindows::TOpenWindow>::iterator TSimulatedTopWindows::Find(TWindowHandle AWindow) {
  return std::ranges::find(FWindows, AWindow, &TOpenWindow::Handle);
}

TWinError TSimulatedTopWindows::EnumTopWindows(std::vector<TWindowHandle>& AWindows) {
  const std::lock_guard lock(FMutex);
  std::vector<TWindowHandle> windows;
  for (const TOpenWindow& window : FWindows) windows.push_back(window.Handle);
  AWindows = std::move(windows);
  return WinError::Success;
}

TWinError TSimulatedTopWindows::GetWindowFacts(TWindowHandle AWindow, TWindowFacts& AFacts) {
  const std::lock_guard lock(FMutex);
  const auto found = Find(AWindow);
  if (found == FWindows.end()) return WinError::InvalidWindowHandle;
  const TSimulatedWindow& window = found->Window;
  AFacts = {window.Parent, window.Style, window.StyleEx, found->ProcessId, window.IsVisible, window.IsMinimised};
  return WinError::Success;
}

std::u16string TSimulatedTopWindows::GetTitle(TWindowHandle AWindow) {
  const std::lock_guard lock(FMutex);
  const auto found = Find(AWindow);
  return found == FWindows.end() ? std::u16string() : found->Window.Title;
}

TWinError TSimulatedTopWindows::CopySmallIcon(TWindowHandle AWindow, TIcon& AIcon) {
  {
    const std::lock_guard lock(FMutex);
    const auto found = Find(AWindow);
    if (found == FWindows.end()) return WinError::InvalidWindowHandle;
    if (!found->Window.HasIcon) return WinError::ResourceNameNotFound;
  }
  constexpr std::uint32_t smallIcon = 16;
  AIcon = FIcons.MakeIcon({smallIcon, smallIcon, std::make_shared<const std::vector<std::byte>>()});
  return WinError::Success;
}

void TSimulatedTopWindows::RestoreWindow(TWindowHandle AWindow) {
  const std::lock_guard lock(FMutex);
  const auto found = Find(AWindow);
  if (found == FWindows.end()) return;
  found->Window.IsMinimised = false;
  found->Window.IsVisible = true;
}

void TSimulatedTopWindows::BringToTop(TWindowHandle AWindow) {
  const std::lock_guard lock(FMutex);
  if (const auto found = Find(AWindow); found != FWindows.end()) std::rotate(FWindows.begin(), found, found + 1);
}

TWindowHandle TSimulatedTopWindows::OpenWindow(std::uint32_t AProcessId, TSimulatedWindow AWindow) {
  const std::lock_guard lock(FMutex);
  FLastHandle += 2;
  FWindows.insert(FWindows.begin(), {FLastHandle, AProcessId, std::move(AWindow)});
  return FLastHandle;
}

void TSimulatedTopWindows::CloseWindow(TWindowHandle AWindow) {
  const std::lock_guard lock(FMutex);
  std::erase_if(FWindows, [&](const TOpenWindow& AOpen) { return AOpen.Handle == AWindow; });
}

void TSimulatedTopWindows::CloseWindowsOf(std::uint32_t AProcessId) {
  const std::lock_guard lock(FMutex);
  std::erase_if(FWindows, [&](const TOpenWindow& AOpen) { return AOpen.ProcessId == AProcessId; });
}

}  // namespace varcolin
