// The folder watches of a simulated machine.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "platform/Types.h"
#include "platform/simulated/SimulatedPaths.h"

namespace varcolin {

class TClockSignal;
class TSimulatedSync;

/// Watches by handle value, each on a path without links. No lock of its own.
class TFolderWatches {
 public:
  explicit TFolderWatches(TSimulatedSync& ASync) noexcept : FSync(ASync) {}

  /// The value of the new watch's handle, which ISync knows.
  [[nodiscard]] std::uintptr_t Add(TResolvedPath AFolder, bool ASubtree, std::uint32_t AFilter);
  /// The folder of a watch; null for a value that is none.
  [[nodiscard]] const TResolvedPath* FolderOf(std::uintptr_t AValue) const noexcept;
  /// Waits for the next change; one that came while the watch was signalled signals it again. AValue must be a watch's.
  void Rearm(std::uintptr_t AValue);
  void Remove(std::uintptr_t AValue) noexcept;
  /// Signals the watches that listen to a change (FileNotify bits) of what lies at APath.
  void Notify(const TResolvedPath& APath, std::uint32_t AChange);

  [[nodiscard]] std::size_t Count() const noexcept { return FWatches.size(); }

 private:
  struct TWatch {
    TResolvedPath Folder;
    bool Subtree;
    std::uint32_t Filter;
    std::shared_ptr<TClockSignal> Signal;
    bool IsSignaled = false;
    bool IsPending = false;  // another change came while it was signalled

    [[nodiscard]] bool Covers(const TResolvedPath& APath) const;
  };

  TSimulatedSync& FSync;
  std::unordered_map<std::uintptr_t, TWatch> FWatches;
};

}  // namespace varcolin
