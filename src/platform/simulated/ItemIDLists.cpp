#include "platform/simulated/ItemIDLists.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <utility>

#include "platform/simulated/AnsiText.h"
#include "support/uBytes.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using TBytes = std::span<const std::byte>;

/// The long name of a file item's extension block; empty when there is none.
TItemName LongName(TBytes AItem) noexcept {
  constexpr std::uint32_t Signature = 0xBEEF0004;
  // the last word of the item tells where its first extension block begins
  const std::size_t at = NumberAt<std::uint16_t>(AItem, AItem.size() - sizeof(std::uint16_t));
  const TBytes block = BytesFrom(AItem, at);
  if (NumberAt<std::uint32_t>(block, 4) != Signature) return {};
  const auto version = NumberAt<std::uint16_t>(block, 2);
  if (version < 3) return {};
  const std::size_t name = version >= 9 ? 46 : version >= 8 ? 42 : version >= 7 ? 38 : 20;
  return TItemName::Unicode(BytesFrom(block, name));
}

/// Fills in a new AResult.
void Decode(TBytes AItem, TShellItem& AResult) noexcept {
  constexpr std::uint8_t UnicodeName = 0x04;
  const auto type = NumberAt<std::uint8_t>(AItem, 2);
  switch (type & 0x70) {
    case 0x10:
    case 0x70:
      if (type != 0x1F && type != 0x71) break;
      AResult.Kind = EShellItem::Guid;
      AResult.Guid = NumberAt<TGUID>(AItem, type == 0x1F ? 4 : 14);
      break;
    case 0x20:
      if (type == 0x2E) {
        AResult.Kind = EShellItem::Guid;
        AResult.Guid = NumberAt<TGUID>(AItem, 4);
      } else {
        AResult.Kind = EShellItem::Drive;
        AResult.Name = TItemName::Ansi(BytesFrom(AItem, 3));
      }
      break;
    case 0x30: {
      const TBytes name = BytesFrom(AItem, 14);
      AResult.Kind = EShellItem::File;
      AResult.Name = LongName(AItem);
      if (AResult.Name.IsEmpty()) {
        AResult.Name = (type & UnicodeName) != 0 ? TItemName::Unicode(name) : TItemName::Ansi(name);
      }
      break;
    }
    case 0x40:
      AResult.Kind = EShellItem::Network;
      AResult.Name = TItemName::Ansi(BytesFrom(AItem, 5));
      break;
    default:
      break;
  }
  // a nameless item leads nowhere
  if (AResult.Kind != EShellItem::Guid && AResult.Name.IsEmpty()) AResult.Kind = EShellItem::Unknown;
}

}  // namespace

TItemName TItemName::Ansi(TBytes AText) noexcept { return {BytesToNul(AText), false}; }

TItemName TItemName::Unicode(TBytes AText) noexcept {
  return {AText.first(UnitsToNul(AText) * sizeof(char16_t)), true};
}

void TItemName::AppendTo(std::u16string& AResult) const {
  const std::size_t from = AResult.size();
  AResult.resize(from + Length());
  if (IsEmpty()) return;
  if (FIsUnicode) {
    std::memcpy(AResult.data() + from, FText.data(), FText.size());
  } else {
    std::ranges::transform(FText, AResult.data() + from, FromAnsi);
  }
}

std::u16string TItemName::Text() const {
  std::u16string result;
  AppendTo(result);
  return result;
}

bool DecodeIDList(TBytes AIDList, std::vector<TShellItem>& AItems) {
  constexpr std::size_t UsualDepth = 8;
  std::vector<TShellItem> items;
  items.reserve(UsualDepth);
  while (AIDList.size() >= sizeof(std::uint16_t)) {
    const std::size_t size = NumberAt<std::uint16_t>(AIDList, 0);
    if (size == 0) break;
    if (size <= sizeof(std::uint16_t) || size > AIDList.size()) return false;
    Decode(AIDList.first(size), items.emplace_back());
    AIDList = AIDList.subspan(size);
  }
  AItems = std::move(items);
  return true;
}

}  // namespace varcolin
