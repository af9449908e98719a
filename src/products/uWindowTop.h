// The top windows of running programs, as a user could close or look at them.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "intf/intf_Base.h"
#include "platform/Icons.h"
#include "platform/TopWindows.h"

namespace varcolin {

class IProcesses;

/// One window, or a running process without one that is fit to show.
class TWindowTopItem {
 public:
  std::uint32_t FProcessID = 0;     ///< 0 for an item without a window
  std::u16string FFileName;         ///< file name of the process's executable, without a folder
  std::u16string FWindowCaption;    ///< title; the file name for an item without a window
  std::int32_t FIconIndex = -1;     ///< in the collection's image list; -1 for none
  TWindowHandle FWindowHandle = 0;  ///< 0 for an item without a window

  /// Brings the window to the front, restored first when it is minimised. Nothing without a window.
  void ShowWindow() const;
};

/// The top windows at the moment of its creation, from the front to the back.
class TWindowTopCollection {
 public:
  static void Load(ITopWindows& AWindows, IProcesses& AProcesses, IIcons& AIcons) noexcept;
  static void Unload() noexcept;

  /// With a list of executables' file names, in lower case, only the windows of these processes are kept, and a process
  /// of the list that runs without such a window gets an item of its own. Null: the windows of all processes.
  /// Raises EOSError when the windows cannot be listed. Any thread.
  explicit TWindowTopCollection(const std::vector<std::u16string>* AProcList);

  [[nodiscard]] const std::vector<TWindowTopItem>& Items() const noexcept { return FItems; }
  /// The 16x16 image list of the icons; it goes with the collection.
  [[nodiscard]] std::uintptr_t IconList() const noexcept { return FIconList.Value(); }

 private:
  friend class TWindowTopItem;
  struct TFacilities {
    ITopWindows* Windows;
    IProcesses* Processes;
    IIcons* Icons;
  };

  [[nodiscard]] bool IsNeeded(std::u16string_view AFileName) const;
  void AddWindow(TWindowHandle AWindow);
  void AddWindowless();

  static inline TFacilities FFacilities{};
  TImageList FIconList;
  const std::vector<std::u16string>* FNeedCloseProcess = nullptr;  // only while the collection is built
  std::vector<TWindowTopItem> FItems;
};

}  // namespace varcolin
