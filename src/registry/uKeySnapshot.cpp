#include "registry/uKeySnapshot.h"

#include <algorithm>
#include <limits>

#include "registry/uRegistryEx.h"
#include "registry/uRegistryWalk.h"
#include "support/uText.h"

namespace varcolin {

void TKeySnapshot::TCollector::Start() noexcept {
  FEntries.clear();
  FNames.clear();
  FData.clear();
}

void TKeySnapshot::TCollector::Add() {
  constexpr std::size_t Limit = std::numeric_limits<std::uint32_t>::max();
  const auto& [name, type, data] = FValue;
  if (data.size() > Limit - FData.size() || name.size() > Limit - FNames.size()) return;
  FEntries.push_back({static_cast<std::uint32_t>(FNames.size()), static_cast<std::uint32_t>(name.size()),
                      static_cast<std::uint32_t>(FData.size()), static_cast<std::uint32_t>(data.size()), type});
  FNames += name;
  FData.insert(FData.end(), data.begin(), data.end());
}

std::shared_ptr<std::byte> TKeySnapshot::TCollector::Piece(std::size_t ASize) {
  constexpr std::size_t BlockSize = std::size_t{64} * 1024;
  const std::size_t size = (ASize + alignof(TEntry) - 1) / alignof(TEntry) * alignof(TEntry);
  if (size > BlockSize / 4) {
    const auto own = std::make_shared_for_overwrite<std::byte[]>(size);
    return {own, own.get()};
  }
  if (!FBlock || BlockSize - FBlockUsed < size) {
    FBlock = std::make_shared_for_overwrite<std::byte[]>(BlockSize);
    FBlockUsed = 0;
  }
  std::byte* const piece = FBlock.get() + FBlockUsed;
  FBlockUsed += size;
  return {FBlock, piece};
}

void TKeySnapshot::TCollector::CopyTo(TKeySnapshot& ASnapshot) {
  const auto entries = std::as_bytes(std::span(FEntries));
  const auto names = std::as_bytes(std::span(FNames));
  auto piece = Piece(entries.size() + names.size() + FData.size());
  std::ranges::copy(FData, std::ranges::copy(names, std::ranges::copy(entries, piece.get()).out).out);
  ASnapshot.FPiece = std::move(piece);
  ASnapshot.FEntryCount = static_cast<std::uint32_t>(FEntries.size());
  ASnapshot.FNameUnits = static_cast<std::uint32_t>(FNames.size());
}

std::shared_ptr<const TKeySnapshot> TKeySnapshot::Read(IRegistry& ARegistry, const TRegistryKey& AKey,
                                                       TCollector& ACollector) {
  auto result = std::make_shared<TKeySnapshot>();
  TRegistryKeyInfo info;
  std::optional<std::uint32_t> count;
  if (ARegistry.QueryKeyInfo(AKey, info) == WinError::Success) {
    count = info.ValueCount;
    result->FSubKeyCount = info.SubKeyCount;
    result->FLastWriteTime = info.LastWriteTime;
  }
  ACollector.Start();
  WalkIndices(count, [&](std::uint32_t AIndex) {
    const TWinError error = ARegistry.EnumValue(AKey, AIndex, ACollector.FValue);
    if (error == WinError::Success) ACollector.Add();
    return error;
  });
  ACollector.CopyTo(*result);
  result->FValueCount = std::max(count.value_or(0), result->FEntryCount);
  return result;
}

std::shared_ptr<const TKeySnapshot> TKeySnapshot::ReadAt(IRegistry& ARegistry, TRegistryBase ABase,
                                                         std::u16string_view APath, std::uint32_t AAccess) {
  TRegistryKey key;
  if (ARegistry.OpenKey(ABase, APath, AAccess, key) != WinError::Success) return nullptr;
  TCollector collector;
  return Read(ARegistry, key, collector);
}

std::span<const TKeySnapshot::TEntry> TKeySnapshot::Entries() const noexcept {
  return {reinterpret_cast<const TEntry*>(FPiece.get()), FEntryCount};
}

std::u16string_view TKeySnapshot::NameOf(const TEntry& AEntry) const noexcept {
  const std::byte* const names = FPiece.get() + Entries().size_bytes();
  return {reinterpret_cast<const char16_t*>(names) + AEntry.NameOffset, AEntry.NameLength};
}

std::span<const std::byte> TKeySnapshot::DataOf(const TEntry& AEntry) const noexcept {
  const std::byte* const data = FPiece.get() + Entries().size_bytes() + FNameUnits * sizeof(char16_t);
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
