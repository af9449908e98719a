// ITopWindows over the real Windows calls.
#pragma once

#include "platform/TopWindows.h"

namespace varcolin {

/// The icons, which own the copies of windows' icons, outlive the object.
class TWindowsTopWindows final : public ITopWindows {
 public:
  explicit TWindowsTopWindows(IIcons& AIcons) noexcept : FIcons(AIcons) {}

  [[nodiscard]] TWinError EnumTopWindows(std::vector<TWindowHandle>& AWindows) override;
  [[nodiscard]] TWinError GetWindowFacts(TWindowHandle AWindow, TWindowFacts& AFacts) override;
  [[nodiscard]] std::u16string GetTitle(TWindowHandle AWindow) override;
  [[nodiscard]] TWinError CopySmallIcon(TWindowHandle AWindow, TIcon& AIcon) override;
  void RestoreWindow(TWindowHandle AWindow) override;
  void BringToTop(TWindowHandle AWindow) override;

 private:
  IIcons& FIcons;
};

}  // namespace varcolin
