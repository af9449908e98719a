// Values by text, for many texts.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "support/uText.h"

namespace varcolin {

/// Values by text without regard to case. The texts lie one behind the other and the table holds nothing but numbers:
/// a map of everything on a machine stays close together in memory, where a look-up misses the caches once at most, and
/// it is given back as a few blocks. A pointer to a value holds until the map changes. At most 2^32 - 1 texts.
template <class T>
class TTextMap {
 public:
  [[nodiscard]] bool Empty() const noexcept { return FEntries.empty(); }
  /// The value of a text; null when it has none.
  [[nodiscard]] const T* Find(std::u16string_view AText) const noexcept {
    const std::uint32_t index = IndexOf(AText, Hash(AText));
    return index == None ? nullptr : &FEntries[index].Value;
  }
  [[nodiscard]] T* Find(std::u16string_view AText) noexcept { return const_cast<T*>(std::as_const(*this).Find(AText)); }
  /// Adds a value unless the text has one already. Gives the text's value and whether it was added.
  std::pair<T*, bool> Add(std::u16string_view AText, T AValue) {
    const std::uint32_t hash = Hash(AText);
    if (const std::uint32_t index = IndexOf(AText, hash); index != None) return {&FEntries[index].Value, false};
    if (FEntries.size() == Room(FSlots.size())) Rebuild(NextSize(FSlots.size()));
    MakeRoomForText(AText.size());
    const std::size_t start = FTexts.size();
    FTexts.insert(FTexts.end(), AText.begin(), AText.end());
    FEntries.push_back({start, static_cast<std::uint32_t>(AText.size()), hash, std::move(AValue)});
    FUsedUnits += AText.size();
    if (!FSlots.empty()) Occupy(hash, static_cast<std::uint32_t>(FEntries.size() - 1));
    return {&FEntries.back().Value, true};
  }
  /// Removes a text and its value; false when it has none.
  bool Remove(std::u16string_view AText) {
    const std::uint32_t index = IndexOf(AText, Hash(AText));
    if (index == None) return false;
    const auto last = static_cast<std::uint32_t>(FEntries.size() - 1);
    TEntry& entry = FEntries[index];
    FUsedUnits -= entry.Length;
    // what came last goes first, mostly: its text leaves no gap
    if (entry.Start + entry.Length == FTexts.size()) FTexts.resize(entry.Start);
    if (!FSlots.empty()) {
      Vacate(SlotOf(entry.Hash, index));
      if (index != last) FSlots[SlotOf(FEntries[last].Hash, last)].Entry = index;
    }
    if (index != last) entry = std::move(FEntries[last]);
    FEntries.pop_back();
    return true;
  }
  /// Makes room for so many texts in all.
  void Reserve(std::size_t ACount) {
    FEntries.reserve(ACount);
    std::size_t size = FSlots.size();
    while (Room(size) < ACount) size = NextSize(size);
    if (size != FSlots.size()) Rebuild(size);
  }
  /// Removes everything and gives the memory back.
  void Clear() noexcept { *this = TTextMap(); }

 private:
  static constexpr std::uint32_t None = 0xFFFFFFFF;
  static constexpr std::size_t FewEntries = 8;  ///< so many are compared one after another, without a table

  struct TEntry {
    std::size_t Start;  ///< of the text, in units
    std::uint32_t Length;
    std::uint32_t Hash;
    T Value;
  };
  struct TSlot {
    std::uint32_t Hash = 0;
    std::uint32_t Entry = None;
  };

  [[nodiscard]] static std::uint32_t Hash(std::u16string_view AText) noexcept {
    return static_cast<std::uint32_t>(HashText(AText));
  }
  /// How many texts a table of a size, which is a power of two or 0, takes.
  [[nodiscard]] static std::size_t Room(std::size_t ASlots) noexcept {
    return ASlots == 0 ? FewEntries : ASlots / 4 * 3;
  }
  [[nodiscard]] static std::size_t NextSize(std::size_t ASlots) noexcept {
    return ASlots == 0 ? 4 * FewEntries : 2 * ASlots;
  }
  [[nodiscard]] std::size_t Next(std::size_t ASlot) const noexcept { return (ASlot + 1) & (FSlots.size() - 1); }
  [[nodiscard]] std::size_t Home(std::uint32_t AHash) const noexcept { return AHash & (FSlots.size() - 1); }
  [[nodiscard]] bool Is(const TEntry& AEntry, std::u16string_view AText, std::uint32_t AHash) const noexcept {
    return AEntry.Hash == AHash && SameText({FTexts.data() + AEntry.Start, AEntry.Length}, AText);
  }

  [[nodiscard]] std::uint32_t IndexOf(std::u16string_view AText, std::uint32_t AHash) const noexcept {
    if (FSlots.empty()) {
      for (std::uint32_t index = 0; index < FEntries.size(); ++index) {
        if (Is(FEntries[index], AText, AHash)) return index;
      }
      return None;
    }
    for (std::size_t slot = Home(AHash);; slot = Next(slot)) {
      const auto [hash, index] = FSlots[slot];
      if (index == None || (hash == AHash && Is(FEntries[index], AText, AHash))) return index;
    }
  }
  /// The slot of an entry.
  [[nodiscard]] std::size_t SlotOf(std::uint32_t AHash, std::uint32_t AIndex) const noexcept {
    std::size_t slot = Home(AHash);
    while (FSlots[slot].Entry != AIndex) slot = Next(slot);
    return slot;
  }
  void Occupy(std::uint32_t AHash, std::uint32_t AIndex) noexcept {
    std::size_t slot = Home(AHash);
    while (FSlots[slot].Entry != None) slot = Next(slot);
    FSlots[slot] = {AHash, AIndex};
  }
  /// Empties a slot; those behind it that could not have their own place move up.
  void Vacate(std::size_t ASlot) noexcept {
    const std::size_t mask = FSlots.size() - 1;
    for (std::size_t slot = Next(ASlot); FSlots[slot].Entry != None; slot = Next(slot)) {
      if (((slot - Home(FSlots[slot].Hash)) & mask) < ((slot - ASlot) & mask)) continue;
      FSlots[ASlot] = FSlots[slot];
      ASlot = slot;
    }
    FSlots[ASlot] = {};
  }
  void Rebuild(std::size_t ASize) {
    FSlots = std::vector<TSlot>(ASize);
    for (std::uint32_t index = 0; index < FEntries.size(); ++index) Occupy(FEntries[index].Hash, index);
  }
  /// Makes room for a text of a length behind the others, without those whose entries are gone.
  void MakeRoomForText(std::size_t ALength) {
    if (FTexts.capacity() - FTexts.size() >= ALength) return;
    std::vector<char16_t> texts;
    texts.reserve(FUsedUnits + FUsedUnits / 2 + ALength);
    for (TEntry& entry : FEntries) {
      const auto text = FTexts.begin() + static_cast<std::ptrdiff_t>(entry.Start);
      entry.Start = texts.size();
      texts.insert(texts.end(), text, text + entry.Length);
    }
    FTexts = std::move(texts);
  }

  std::vector<char16_t> FTexts;
  std::size_t FUsedUnits = 0;  ///< those of the texts that are still there
  std::vector<TEntry> FEntries;
  std::vector<TSlot> FSlots;  ///< empty while there are few entries
};

}  // namespace varcolin
