#include "platform/simulated/ItemIDLists.h"

#include <algorithm>
#include <cstdint>
#include <utility>

#include "platform/simulated/AnsiText.h"
#include "support/uBytes.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using TBytes = std::span<const std::byte>;

/// The ANSI text at the beginning of AData, up to its NUL.
std::u16string AnsiText(TBytes AData) {
  const TBytes text = AData.first(static_cast<std::size_t>(std::ranges::find(AData, std::byte{0}) - AData.begin()));
  std::u16string result(text.size(), u'\0');
  std::ranges::transform(text, result.begin(), FromAnsi);
  return result;
}

/// The long name of a file item's extension block; empty when there is none.
std::u16string LongName(TBytes AItem) {
  constexpr std::uint32_t Signature = 0xBEEF0004;
  // the last word of the item tells where its first extension block begins
  const std::size_t at = NumberAt<std::uint16_t>(AItem, AItem.size() - sizeof(std::uint16_t));
  const TBytes block = BytesFrom(AItem, at);
  if (NumberAt<std::uint32_t>(block, 4) != Signature) return {};
  const auto version = NumberAt<std::uint16_t>(block, 2);
  if (version < 3) return {};
  const std::size_t name = version >= 9 ? 46 : version >= 8 ? 42 : version >= 7 ? 38 : 20;
  return TextFromBytes(BytesFrom(block, name));
}

TShellItem DecodeItem(TBytes AItem) {
  constexpr std::uint8_t UnicodeName = 0x04;
  const auto type = NumberAt<std::uint8_t>(AItem, 2);
  TShellItem item;
  switch (type & 0x70) {
    case 0x10:
    case 0x70:
      if (type != 0x1F && type != 0x71) break;
      item.Kind = EShellItem::Guid;
      item.Guid = NumberAt<TGUID>(AItem, type == 0x1F ? 4 : 14);
      break;
    case 0x20:
      if (type == 0x2E) {
        item.Kind = EShellItem::Guid;
        item.Guid = NumberAt<TGUID>(AItem, 4);
      } else {
        item.Kind = EShellItem::Drive;
        item.Name = AnsiText(BytesFrom(AItem, 3));
      }
      break;
    case 0x30: {
      const TBytes name = BytesFrom(AItem, 14);
      item.Kind = EShellItem::File;
      item.Name = LongName(AItem);
      if (item.Name.empty()) item.Name = (type & UnicodeName) != 0 ? TextFromBytes(name) : AnsiText(name);
      break;
    }
    case 0x40:
      item.Kind = EShellItem::Network;
      item.Name = AnsiText(BytesFrom(AItem, 5));
      break;
    default:
      break;
  }
  // a nameless item leads nowhere
  if (item.Kind != EShellItem::Guid && item.Name.empty()) item.Kind = EShellItem::Unknown;
  return item;
}

}  // namespace

bool DecodeIDList(TBytes AIDList, std::vector<TShellItem>& AItems) {
  constexpr std::size_t UsualDepth = 8;
  std::vector<TShellItem> items;
  items.reserve(UsualDepth);
  while (AIDList.size() >= sizeof(std::uint16_t)) {
    const std::size_t size = NumberAt<std::uint16_t>(AIDList, 0);
    if (size == 0) break;
    if (size <= sizeof(std::uint16_t) || size > AIDList.size()) return false;
    items.push_back(DecodeItem(AIDList.first(size)));
    AIDList = AIDList.subspan(size);
  }
  AItems = std::move(items);
  return true;
}

}  // namespace varcolin
