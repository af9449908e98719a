// The Windows dialog for optional features.
#pragma once

namespace varcolin {

class IProcessStart;
class ISync;

/// Class operations only.
class WindowsFeatures {
 public:
  static void Load(ISync& ASync, IProcessStart& AStarts) noexcept;
  static void Unload() noexcept;

  /// Opens the dialog of this Windows, or brings the components wizard of older systems to the front when it runs.
  /// Reports nothing. Any thread.
  static void Show();

 private:
  static inline ISync* FSync = nullptr;
  static inline IProcessStart* FStarts = nullptr;
};

}  // namespace varcolin
