#include "registry/uKeySnapshot.h"

#include <algorithm>
#include <limits>

#include "registry/uRegistryEx.h"
#include "registry/uRegistryWalk.h"
#include "support/uText.h"

namespace varcolin {
namespace {

/// The most that is reserved on the word of a key's facts, which are only a hint.
constexpr std::uint32_t MaxReservedValues = 256;

}  // namespace

/// Gathers the values of one key until all are known.
class TKeySnapshot::TCollector {
 public:
  explicit TCollector(std::uint32_t AExpected) { FEntries.reserve(std::min(AExpected, MaxReservedValues)); }

  /// Passes over a value that would make the key larger than its offsets can tell.
  void Add(const TRegistryValue& AValue) {
    constexpr std::size_t Limit = std::numeric_limits<std::uint32_t>::max();
    if (AValue.Data.size() > Limit - FData.size() || AValue.Name.size() > Limit - FNames.size()) return;
    FEntries.push_back({static_cast<std::uint32_t>(FNames.size()), static_cast<std::uint32_t>(AValue.Name.size()),
                        static_cast<std::uint32_t>(FData.size()), static_cast<std::uint32_t>(AValue.Data.size()),
                        AValue.Type});
    FNames += AValue.Name;
    FData.insert(FData.end(), AValue.Data.begin(), AValue.Data.end());
  }
  void MoveTo(TKeySnapshot& ASnapshot) const {
    const auto entries = std::as_bytes(std::span(FEntries));
    const auto names = std::as_bytes(std::span(FNames));
    auto block = std::make_unique<std::byte[]>(entries.size() + names.size() + FData.size());
    std::ranges::copy(FData, std::ranges::copy(names, std::ranges::copy(entries, block.get()).out).out);
    ASnapshot.FBlock = std::move(block);
    ASnapshot.FEntryCount = static_cast<std::uint32_t>(FEntries.size());
    ASnapshot.FNameUnits = static_cast<std::uint32_t>(FNames.size());
  }

 private:
  std::vector<TEntry> FEntries;
  std::u16string FNames;
  std::vector<std::byte> FData;
};

std::shared_ptr<const TKeySnapshot> TKeySnapshot::Read(IRegistry& ARegistry, const TRegistryKey& AKey) {
  auto result = std::make_shared<TKeySnapshot>();
  TRegistryKeyInfo info;
  std::optional<std::uint32_t> count;
  if (ARegistry.QueryKeyInfo(AKey, info) == WinError::Success) {
    count = info.ValueCount;
    result->FSubKeyCount = info.SubKeyCount;
    result->FLastWriteTime = info.LastWriteTime;
  }
  TCollector collector(count.value_or(0));
  TRegistryValue value;
  WalkIndices(count, [&](std::uint32_t AIndex) {
    const TWinError error = ARegistry.EnumValue(AKey, AIndex, value);
    if (error == WinError::Success) collector.Add(value);
    return error;
  });
  collector.MoveTo(*result);
  result->FValueCount = std::max(count.value_or(0), result->FEntryCount);
  return result;
}

std::shared_ptr<const TKeySnapshot> TKeySnapshot::ReadAt(IRegistry& ARegistry, TRegistryBase ABase,
                                                         std::u16string_view APath, std::uint32_t AAccess) {
  TRegistryKey key;
  if (ARegistry.OpenKey(ABase, APath, AAccess, key) != WinError::Success) return nullptr;
  return Read(ARegistry, key);
}

std::span<const TKeySnapshot::TEntry> TKeySnapshot::Entries() const noexcept {
  return {reinterpret_cast<const TEntry*>(FBlock.get()), FEntryCount};
}

std::u16string_view TKeySnapshot::NameOf(const TEntry& AEntry) const noexcept {
  const std::byte* const names = FBlock.get() + Entries().size_bytes();
  return {reinterpret_cast<const char16_t*>(names) + AEntry.NameOffset, AEntry.NameLength};
}

std::span<const std::byte> TKeySnapshot::DataOf(const TEntry& AEntry) const noexcept {
  const std::byte* const data = FBlock.get() + Entries().size_bytes() + FNameUnits * sizeof(char16_t);
  return {data + AEntry.DataOffset, AEntry.DataSize};
}

const TKeySnapshot::TEntry* TKeySnapshot::Find(std::u16string_view AName) const noexcept {
  for (const TEntry& entry : Entries()) {
    if (SameText(NameOf(entry), AName)) return &entry;
  }
  return nullptr;
}

std::optional<std::u16string> TKeySnapshot::Text(std::u16string_view AName, EStrings AKinds) const {
  const TEntry* const entry = Find(AName);
  if (entry == nullptr) return std::nullopt;
  const bool accepted =
      entry->Type == RegType::String || (entry->Type == RegType::ExpandString && AKinds == EStrings::PlainOrExpandable);
  if (!accepted) return std::nullopt;
  return TextFromBytes(DataOf(*entry));
}

std::optional<std::uint32_t> TKeySnapshot::Number(std::u16string_view AName) const noexcept {
  const TEntry* const entry = Find(AName);
  if (entry == nullptr || entry->Type != RegType::Dword || entry->DataSize != sizeof(std::uint32_t)) {
    return std::nullopt;
  }
  std::uint32_t number = 0;
  for (std::uint32_t i = sizeof number; i-- != 0;) {
    number = number << 8 | std::to_integer<std::uint32_t>(DataOf(*entry)[i]);
  }
  return number;
}

std::optional<std::vector<std::u16string>> TKeySnapshot::Strings(std::u16string_view AName) const {
  const TEntry* const entry = Find(AName);
  if (entry == nullptr || entry->Type != RegType::MultiString) return std::nullopt;
  return MultiStringFromBytes(DataOf(*entry));
}

}  // namespace varcolin
