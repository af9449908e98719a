#include "platform/simulated/FolderWatches.h"

#include <algorithm>
#include <utility>

#include "platform/simulated/SimulatedSync.h"
#include "support/uText.h"

namespace varcolin {

std::uintptr_t TFolderWatches::Add(TResolvedPath AFolder, bool ASubtree, std::uint32_t AFilter) {
  auto signal = std::make_shared<TClockSignal>();
  const std::uintptr_t value = FSync.AddWaitable(signal);
  FWatches.emplace(value, TWatch{std::move(AFolder), ASubtree, AFilter, std::move(signal)});
  return value;
}

const TResolvedPath* TFolderWatches::FolderOf(std::uintptr_t AValue) const noexcept {
  const auto found = FWatches.find(AValue);
  return found == FWatches.end() ? nullptr : &found->second.Folder;
}

void TFolderWatches::Rearm(std::uintptr_t AValue) {
  TWatch& watch = FWatches.at(AValue);
  watch.IsSignaled = std::exchange(watch.IsPending, false);
  if (!watch.IsSignaled) FSync.ResetShared(*watch.Signal);
}

void TFolderWatches::Remove(std::uintptr_t AValue) noexcept {
  FWatches.erase(AValue);
  FSync.RemoveWaitable(AValue);
}

bool TFolderWatches::TWatch::Covers(const TResolvedPath& APath) const {
  const auto& parts = Folder.Parts;
  return Folder.Drive == APath.Drive && parts.size() < APath.Parts.size() &&
         (Subtree || parts.size() + 1 == APath.Parts.size()) &&
         std::equal(parts.begin(), parts.end(), APath.Parts.begin(), TTextEqual());
}

void TFolderWatches::Notify(const TResolvedPath& APath, std::uint32_t AChange) {
  for (auto& [value, watch] : FWatches) {
    if ((watch.Filter & AChange) == 0 || !watch.Covers(APath)) continue;
    watch.IsPending = std::exchange(watch.IsSignaled, true);
    FSync.SignalShared(*watch.Signal);
  }
}

}  // namespace varcolin
