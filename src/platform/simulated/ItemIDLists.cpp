#include "platform/simulated/ItemIDLists.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>

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

/// Takes the next item, with its length, off a list; nothing at its end and at an item that is not sound.
std::optional<TBytes> TakeItem(TBytes& AList) noexcept {
  const std::size_t size = NumberAt<std::uint16_t>(AList, 0);
  if (size <= sizeof(std::uint16_t) || size > AList.size()) return std::nullopt;
  const TBytes item = AList.first(size);
  AList = AList.subspan(size);
  return item;
}

TShellItem Decode(TBytes AItem) noexcept {
  constexpr std::uint8_t UnicodeName = 0x04;
  TShellItem result;
  const auto type = NumberAt<std::uint8_t>(AItem, 2);
  switch (type & 0x70) {
    case 0x10:
    case 0x70:
      if (type != 0x1F && type != 0x71) break;
      result.Kind = EShellItem::Guid;
      result.Guid = NumberAt<TGUID>(AItem, type == 0x1F ? 4 : 14);
      break;
    case 0x20:
      if (type == 0x2E) {
        result.Kind = EShellItem::Guid;
        result.Guid = NumberAt<TGUID>(AItem, 4);
      } else {
        result.Kind = EShellItem::Drive;
        result.Name = TItemName::Ansi(BytesFrom(AItem, 3));
      }
      break;
    case 0x30: {
      const TBytes name = BytesFrom(AItem, 14);
      result.Kind = EShellItem::File;
      result.Name = LongName(AItem);
      if (result.Name.IsEmpty()) {
        result.Name = (type & UnicodeName) != 0 ? TItemName::Unicode(name) : TItemName::Ansi(name);
      }
      break;
    }
    case 0x40:
      result.Kind = EShellItem::Network;
      result.Name = TItemName::Ansi(BytesFrom(AItem, 5));
      break;
    default:
      break;
  }
  // a nameless item leads nowhere
  if (result.Kind != EShellItem::Guid && result.Name.IsEmpty()) result.Kind = EShellItem::Unknown;
  return result;
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

bool TItemIDList::IsSound() const noexcept {
  TBytes rest = FRest;
  while (TakeItem(rest)) {
  }
  return NumberAt<std::uint16_t>(rest, 0) == 0;
}

bool TItemIDList::Next(TShellItem& AItem) noexcept {
  const std::optional<TBytes> item = TakeItem(FRest);
  if (item) AItem = Decode(*item);
  return item.has_value();
}

}  // namespace varcolin
