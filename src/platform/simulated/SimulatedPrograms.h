// What programs of a simulated machine do when they run.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/TopWindows.h"

namespace varcolin {

/// A top-level window.
struct TSimulatedWindow {
  std::u16string Title;
  TWindowHandle Parent = 0;
  std::uint32_t Style = WindowStyle::SysMenu;
  std::uint32_t StyleEx = 0;
  bool IsVisible = true;
  bool IsMinimised = false;
  bool HasIcon = false;
};

/// A window that a program shows while it runs.
struct TProgramWindow {
  TSimulatedWindow Window;
  std::uint32_t After = 0;              ///< milliseconds from the program's start
  std::optional<std::uint32_t> Closes;  ///< milliseconds from the start; none: with the program
};

/// A program that a program starts.
struct TProgramChild {
  std::u16string Command;
  std::uint32_t After = 0;  ///< milliseconds from the program's start
};

/// One program, or one way to call it. Paths are the drive's own, keys those of the native view with full root names.
struct TSimulatedProgram {
  std::u16string Path;
  std::u16string Arguments;                ///< text that the command line must hold; empty for every call
  std::optional<std::uint32_t> Runs = 0U;  ///< milliseconds; none: it never ends
  std::uint32_t ExitCode = 0;
  std::vector<TProgramWindow> Windows;
  std::vector<TProgramChild> Starts;
  std::vector<std::u16string> RemovesKeys;   ///< with everything below them
  std::vector<std::u16string> RemovesFiles;  ///< files, and folders with everything below them
  std::vector<std::u16string> CreatesKeys;
  std::vector<std::u16string> CreatesFiles;   ///< empty files
  std::optional<std::uint32_t> ChangesAfter;  ///< when it does that, milliseconds from the start; none: as it ends
};

}  // namespace varcolin
