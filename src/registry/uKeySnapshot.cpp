#include "registry/uKeySnapshot.h"

#include <algorithm>
#include <limits>

#include "registry/uRegistryEx.h"
#include "registry/uRegistryWalk.h"
#include "support/uText.h"

namespace varcolin {
namespace {

/// The most that is reserved on the word of a key's facts, which are only a hint.
constexpr std::size_t MaxReservedValues = 256;

}  // namespace

std::shared_ptr<const TKeySnapshot> TKeySnapshot::Read(IRegistry& ARegistry, const TRegistryKey& AKey) {
  auto result = std::make_shared<TKeySnapshot>();
  TRegistryKeyInfo info;
  std::optional<std::uint32_t> count;
  if (ARegistry.QueryKeyInfo(AKey, info) == WinError::Success) {
    count = info.ValueCount;
    result->FMayHaveSubKeys = info.SubKeyCount != 0;
    result->FLastWriteTime = info.LastWriteTime;
    result->FEntries.reserve(std::min<std::size_t>(info.ValueCount, MaxReservedValues));
  }
  constexpr std::size_t limit = std::numeric_limits<std::uint32_t>::max();
  TRegistryValue value;
  WalkIndices(count, [&](std::uint32_t AIndex) {
    const TWinError error = ARegistry.EnumValue(AKey, AIndex, value);
    if (error != WinError::Success) return error;
    if (value.Data.size() > limit - result->FData.size() || value.Name.size() > limit - result->FNames.size()) {
      return error;
    }
    result->FEntries.push_back(
        {static_cast<std::uint32_t>(result->FNames.size()), static_cast<std::uint32_t>(value.Name.size()),
         static_cast<std::uint32_t>(result->FData.size()), static_cast<std::uint32_t>(value.Data.size()), value.Type});
    result->FNames += value.Name;
    result->FData.insert(result->FData.end(), value.Data.begin(), value.Data.end());
    return error;
  });
  // a snapshot is kept much longer than it takes to read
  result->FEntries.shrink_to_fit();
  result->FNames.shrink_to_fit();
  result->FData.shrink_to_fit();
  result->FValueCount = std::max(count.value_or(0), static_cast<std::uint32_t>(result->FEntries.size()));
  return result;
}

std::shared_ptr<const TKeySnapshot> TKeySnapshot::ReadAt(IRegistry& ARegistry, TRegistryBase ABase,
                                                         std::u16string_view APath, std::uint32_t AAccess) {
  TRegistryKey key;
  if (ARegistry.OpenKey(ABase, APath, AAccess, key) != WinError::Success) return nullptr;
  return Read(ARegistry, key);
}

const TKeySnapshot::TEntry* TKeySnapshot::Find(std::u16string_view AName) const noexcept {
  const std::u16string_view names = FNames;
  const auto found = std::ranges::find_if(FEntries, [&](const TEntry& AEntry) {
    return SameText(names.substr(AEntry.NameOffset, AEntry.NameLength), AName);
  });
  return found == FEntries.end() ? nullptr : &*found;
}

std::span<const std::byte> TKeySnapshot::DataOf(const TEntry& AEntry) const noexcept {
  return std::span(FData).subspan(AEntry.DataOffset, AEntry.DataSize);
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
    number = number << 8 | std::to_integer<std::uint32_t>(FData[entry->DataOffset + i]);
  }
  return number;
}

std::optional<std::vector<std::u16string>> TKeySnapshot::Strings(std::u16string_view AName) const {
  const TEntry* const entry = Find(AName);
  if (entry == nullptr || entry->Type != RegType::MultiString) return std::nullopt;
  return MultiStringFromBytes(DataOf(*entry));
}

}  // namespace varcolin
