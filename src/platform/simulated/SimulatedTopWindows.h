// The windows of a simulated machine.
#pragma once

#include <cstdint>
#include <mutex>
#include <vector>

#include "platform/TopWindows.h"
#include "platform/simulated/SimulatedPrograms.h"

namespace varcolin {

class TSimulatedIcons;

/// Any thread. The icons outlive the object.
class TSimulatedTopWindows final : public ITopWindows {
 public:
  explicit TSimulatedTopWindows(TSimulatedIcons& AIcons) noexcept : FIcons(AIcons) {}

  [[nodiscard]] TWinError EnumTopWindows(std::vector<TWindowHandle>& AWindows) override;
  [[nodiscard]] TWinError GetWindowFacts(TWindowHandle AWindow, TWindowFacts& AFacts) override;
  [[nodiscard]] std::u16string GetTitle(TWindowHandle AWindow) override;
  [[nodiscard]] TWinError CopySmallIcon(TWindowHandle AWindow, TIcon& AIcon) override;
  void RestoreWindow(TWindowHandle AWindow) override;
  void BringToTop(TWindowHandle AWindow) override;

  /// Opens a window in front of the others.
  TWindowHandle OpenWindow(std::uint32_t AProcessId, TSimulatedWindow AWindow);
  void CloseWindow(TWindowHandle AWindow);
  /// Closes every window of a process.
  void CloseWindowsOf(std::uint32_t AProcessId);

 private:
  struct TOpenWindow {
    TWindowHandle Handle;
    std::uint32_t ProcessId;
    TSimulatedWindow Window;
  };

  [[nodiscard]] std::vector<TOpenWindow>::iterator Find(TWindowHandle AWindow);  // needs the lock

  TSimulatedIcons& FIcons;
  std::mutex FMutex;
  TWindowHandle FLastHandle = 0x10000;
  std::vector<TOpenWindow> FWindows;  // from the front to the back
};

}  // namespace varcolin
