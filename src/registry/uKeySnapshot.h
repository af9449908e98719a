// All values of one registry key, read once.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"

namespace varcolin {

/// What one key holds of its own at the time of reading. On real machines the registry call is the cost, so a key is
/// read by one enumeration and every question about it is answered from memory. Immutable, any thread.
class TKeySnapshot {
 public:
  /// Kinds of string that a reader accepts.
  enum class EStrings { Plain, PlainOrExpandable };

  /// What gathers the values of one key until all are known. Whoever reads many keys keeps it from one to the next,
  /// with its memory.
  class TCollector;

  /// Reads AKey. A value that cannot be read is left out; it does not hide the others.
  [[nodiscard]] static std::shared_ptr<const TKeySnapshot> Read(IRegistry& ARegistry, const TRegistryKey& AKey,
                                                                TCollector& ACollector);
  /// Opens ABase\APath, reads it and closes it; null when it does not open.
  [[nodiscard]] static std::shared_ptr<const TKeySnapshot> ReadAt(IRegistry& ARegistry, TRegistryBase ABase,
                                                                  std::u16string_view APath, std::uint32_t AAccess);

  [[nodiscard]] bool HasValues() const noexcept { return FValueCount != 0; }
  /// False only when the key is known to have no subkeys.
  [[nodiscard]] bool MayHaveSubKeys() const noexcept { return FSubKeyCount != 0U; }
  /// Number of subkeys, none when the key's facts could not be read.
  [[nodiscard]] std::optional<std::uint32_t> SubKeyCount() const noexcept { return FSubKeyCount; }
  /// Last write time, none when the key's facts could not be read.
  [[nodiscard]] std::optional<TFileTime> LastWriteTime() const noexcept { return FLastWriteTime; }

  /// The text of a string value; none when it is absent or of another type. Expandable text is not expanded.
  [[nodiscard]] std::optional<std::u16string> Text(std::u16string_view AName, EStrings AKinds) const;
  /// The number of a DWORD value; none when it is absent, of another type or not four bytes long.
  [[nodiscard]] std::optional<std::uint32_t> Number(std::u16string_view AName) const noexcept;
  /// Whether a number exists and is not 0.
  [[nodiscard]] bool Flag(std::u16string_view AName) const noexcept { return Number(AName).value_or(0) != 0; }
  /// The strings of a multi-string value; none when it is absent or of another type.
  [[nodiscard]] std::optional<std::vector<std::u16string>> Strings(std::u16string_view AName) const;

  /// Calls AVisit(name, type, data) for every value, in stored order.
  template <class TVisit>
  void ForEachValue(TVisit AVisit) const {
    for (const TEntry& entry : Entries()) AVisit(NameOf(entry), entry.Type, DataOf(entry));
  }

 private:
  struct TEntry {
    std::uint32_t NameOffset;  ///< into the names, in units
    std::uint32_t NameLength;
    std::uint32_t DataOffset;  ///< into the data, in bytes
    std::uint32_t DataSize;
    std::uint32_t Type;
  };

  [[nodiscard]] std::span<const TEntry> Entries() const noexcept;
  [[nodiscard]] std::u16string_view NameOf(const TEntry& AEntry) const noexcept;
  [[nodiscard]] std::span<const std::byte> DataOf(const TEntry& AEntry) const noexcept;
  [[nodiscard]] const TEntry* Find(std::u16string_view AName) const noexcept;

  /// The entries, then the names, then the data: one piece of memory a key, since many keys are held at a time.
  std::shared_ptr<const std::byte> FPiece;
  std::uint32_t FEntryCount = 0;
  std::uint32_t FNameUnits = 0;
  std::uint32_t FValueCount = 0;
  std::optional<std::uint32_t> FSubKeyCount;
  std::optional<TFileTime> FLastWriteTime;
};

class TKeySnapshot::TCollector {
  friend class TKeySnapshot;

  void Start() noexcept;
  /// Passes over a value that would make the key larger than its offsets can tell.
  void Add();
  void CopyTo(TKeySnapshot& ASnapshot);
  /// A piece of memory for ASize bytes of entries and what belongs to them.
  [[nodiscard]] std::shared_ptr<std::byte> Piece(std::size_t ASize);

  TRegistryValue FValue;  ///< the one that was read last
  std::vector<TEntry> FEntries;
  std::u16string FNames;
  std::vector<std::byte> FData;
  /// Keys that are read together are given back together, mostly: their pieces lie in one block, which lives as long as
  /// any of them. Small blocks between everything else that a scan keeps would be gaps later.
  std::shared_ptr<std::byte[]> FBlock;
  std::size_t FBlockUsed = 0;
};

}  // namespace varcolin
