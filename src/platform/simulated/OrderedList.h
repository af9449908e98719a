// A sorted list for many siblings: look-up by key and by position, insertion in any order, all without a cost that
// grows with the list beyond a small share.
#pragma once

#include <algorithm>
#include <cstddef>
#include <iterator>
#include <utility>
#include <vector>

namespace varcolin {

/// Sorted items in chunks of bounded size. TCompare()(item, key) is negative, zero or positive. Keys are unique.
template <class TItem, class TCompare>
class TOrderedList {
 public:
  [[nodiscard]] std::size_t Count() const noexcept {
    return FChunks.empty() ? 0 : FChunks.back().Start + FChunks.back().Items.size();
  }
  [[nodiscard]] bool Empty() const noexcept { return FChunks.empty(); }

  /// AIndex < Count().
  [[nodiscard]] const TItem& At(std::size_t AIndex) const { return const_cast<TOrderedList*>(this)->ItemAt(AIndex); }

  /// The item with this key; null when there is none.
  template <class TKey>
  [[nodiscard]] TItem* Find(const TKey& AKey) const {
    auto* const self = const_cast<TOrderedList*>(this);
    // whoever goes through a list asks for one item after the other
    if (TItem* const guessed = self->ItemAt(FGuess); guessed != nullptr && TCompare()(*guessed, AKey) == 0) {
      ++FGuess.Position;
      return guessed;
    }
    const auto [chunk, position] = self->LowerBound(AKey);
    if (chunk == nullptr || position == chunk->Items.size()) return nullptr;
    FGuess = {static_cast<std::size_t>(chunk - FChunks.data()), position + 1};
    TItem& item = chunk->Items[position];
    return TCompare()(item, AKey) == 0 ? &item : nullptr;
  }

  /// Adds an item under a key that the list does not have yet.
  template <class TKey>
  void Insert(const TKey& AKey, TItem AItem) {
    auto [chunk, position] = LowerBound(AKey);
    if (chunk == nullptr) {
      chunk = &FChunks.emplace_back();
    } else if (chunk->Items.size() == ChunkSize) {
      const std::size_t index = static_cast<std::size_t>(chunk - FChunks.data());
      // ascending input fills its chunks to the brim instead of leaving halves behind
      const std::size_t keep = position == ChunkSize ? ChunkSize : ChunkSize / 2;
      chunk = &*FChunks.emplace(FChunks.begin() + static_cast<std::ptrdiff_t>(index) + 1);
      TChunk& full = FChunks[index];
      chunk->Items.assign(std::make_move_iterator(full.Items.begin() + static_cast<std::ptrdiff_t>(keep)),
                          std::make_move_iterator(full.Items.end()));
      full.Items.resize(keep);
      chunk->Start = full.Start + keep;
      if (position < keep) {
        chunk = &full;
      } else {
        position -= keep;
      }
    }
    chunk->Items.insert(chunk->Items.begin() + static_cast<std::ptrdiff_t>(position), std::move(AItem));
    for (TChunk* later = chunk + 1; later != FChunks.data() + FChunks.size(); ++later) ++later->Start;
  }

  /// Removes the item with this key, which must be there, and hands it out.
  template <class TKey>
  TItem Take(const TKey& AKey) {
    const auto [chunk, position] = LowerBound(AKey);
    TItem item = std::move(chunk->Items[position]);
    chunk->Items.erase(chunk->Items.begin() + static_cast<std::ptrdiff_t>(position));
    for (TChunk* later = chunk + 1; later != FChunks.data() + FChunks.size(); ++later) --later->Start;
    if (chunk->Items.empty()) FChunks.erase(FChunks.begin() + (chunk - FChunks.data()));
    return item;
  }

  template <class TVisitor>
  void ForEach(TVisitor AVisitor) const {
    for (const TChunk& chunk : FChunks) {
      for (const TItem& item : chunk.Items) AVisitor(item);
    }
  }
  void Clear() noexcept { FChunks.clear(); }

 private:
  static constexpr std::size_t ChunkSize = 512;
  struct TChunk {
    std::vector<TItem> Items;  // never empty between calls
    std::size_t Start = 0;     // position of the first item in the whole list
  };

  struct TPlace {
    std::size_t Chunk = 0;
    std::size_t Position = 0;
  };

  // null when nothing is there; behind the end of a chunk is the begin of the next
  [[nodiscard]] TItem* ItemAt(TPlace& APlace) noexcept {
    if (APlace.Chunk < FChunks.size() && APlace.Position >= FChunks[APlace.Chunk].Items.size()) {
      APlace = {APlace.Chunk + 1, 0};
    }
    return APlace.Chunk < FChunks.size() ? &FChunks[APlace.Chunk].Items[APlace.Position] : nullptr;
  }

  [[nodiscard]] TItem& ItemAt(std::size_t AIndex) {
    const auto after = std::upper_bound(FChunks.begin(), FChunks.end(), AIndex,
                                        [](std::size_t AValue, const TChunk& AChunk) { return AValue < AChunk.Start; });
    TChunk& chunk = *std::prev(after);
    return chunk.Items[AIndex - chunk.Start];
  }

  // where AKey is or belongs; no chunk for an empty list
  template <class TKey>
  [[nodiscard]] std::pair<TChunk*, std::size_t> LowerBound(const TKey& AKey) {
    if (FChunks.empty()) return {nullptr, 0};
    const auto after = std::partition_point(FChunks.begin() + 1, FChunks.end(), [&](const TChunk& AChunk) {
      return TCompare()(AChunk.Items.front(), AKey) <= 0;
    });
    TChunk& chunk = *std::prev(after);
    const auto found = std::partition_point(chunk.Items.begin(), chunk.Items.end(),
                                            [&](const TItem& AItem) { return TCompare()(AItem, AKey) < 0; });
    return {&chunk, static_cast<std::size_t>(found - chunk.Items.begin())};
  }

  std::vector<TChunk> FChunks;
  mutable TPlace FGuess;  // behind the item that was found last
};

}  // namespace varcolin
