#include "siblings/VersionResource.h"

#include <algorithm>
#include <array>

#include "support/uText.h"

namespace varcolin {
namespace {

/// Every structure of the resource: three 16-bit words (length, length of the value, kind), the key as NUL-terminated
/// text, the value and the children, the last two aligned to four bytes.
constexpr std::size_t HeaderSize = 6;
constexpr std::uint16_t TextKind = 1;

/// More translations than any file has; the rest is passed over, so that a look-up stays linear in what was read.
constexpr std::size_t TranslationLimit = 64;

/// The tables that a reader looks into when the translations lead nowhere: American English in UTF-16 and in
/// code page 1252.
constexpr std::array<TVersionTranslation, 2> UsualTranslations{{{0x0409, 0x04B0}, {0x0409, 0x04E4}}};

std::uint16_t WordAt(std::span<const std::byte> AData, std::size_t AOffset) {
  return static_cast<std::uint16_t>(std::to_integer<unsigned>(AData[AOffset]) |
                                    std::to_integer<unsigned>(AData[AOffset + 1]) << 8);
}

std::size_t AlignedTo4(std::size_t AOffset) { return (AOffset + 3) & ~std::size_t{3}; }

struct TNode {
  std::u16string Key;
  std::span<const std::byte> Value;    ///< at its stated length
  std::span<const std::byte> Content;  ///< value and children: all that follows the key
  std::span<const std::byte> Children;
};

/// Takes structures off AData one after the other. Offsets are counted from AData's start, which every caller keeps
/// aligned to four bytes within the resource.
class TNodeReader {
 public:
  explicit TNodeReader(std::span<const std::byte> AData) : FData(AData) {}

  std::optional<TNode> Next() {
    FOffset = AlignedTo4(FOffset);
    if (FOffset > FData.size() || FData.size() - FOffset < HeaderSize) return std::nullopt;
    const std::size_t stated = WordAt(FData, FOffset);
    if (stated < HeaderSize) return std::nullopt;
    const std::span<const std::byte> bytes = FData.subspan(FOffset, std::min(stated, FData.size() - FOffset));
    FOffset += bytes.size();

    TNode node;
    node.Key = TextFromBytes(bytes.subspan(HeaderSize));
    const std::size_t valueOffset = std::min(AlignedTo4(HeaderSize + (node.Key.size() + 1) * 2), bytes.size());
    node.Content = bytes.subspan(valueOffset);
    const std::size_t unitSize = WordAt(bytes, 4) == TextKind ? 2 : 1;
    const std::size_t valueSize = std::min(WordAt(bytes, 2) * unitSize, node.Content.size());
    node.Value = node.Content.first(valueSize);
    node.Children = node.Content.subspan(std::min(AlignedTo4(valueSize), node.Content.size()));
    return node;
  }

 private:
  std::span<const std::byte> FData;
  std::size_t FOffset = 0;
};

/// The translation that a table's key stands for: eight hexadecimal digits, language before code page.
std::optional<TVersionTranslation> ParseTableKey(std::u16string_view AKey) {
  if (AKey.size() != 8) return std::nullopt;
  std::uint32_t number = 0;
  for (const char16_t unit : AKey) {
    const std::size_t digit = std::u16string_view(u"0123456789ABCDEF").find(UpperChar(unit));
    if (digit == std::u16string_view::npos) return std::nullopt;
    number = number << 4 | static_cast<std::uint32_t>(digit);
  }
  return TVersionTranslation{static_cast<std::uint16_t>(number >> 16), static_cast<std::uint16_t>(number & 0xFFFF)};
}

}  // namespace

TVersionResource::TVersionResource(std::span<const std::byte> AData) {
  const std::optional<TNode> root = TNodeReader(AData).Next();
  if (!root || !SameText(root->Key, u"VS_VERSION_INFO")) return;
  TNodeReader parts(root->Children);
  while (const std::optional<TNode> part = parts.Next()) {
    if (SameText(part->Key, u"StringFileInfo")) ReadStringTables(part->Children);
    if (SameText(part->Key, u"VarFileInfo")) ReadTranslations(part->Children);
  }
}

void TVersionResource::ReadStringTables(std::span<const std::byte> AChildren) {
  TNodeReader tables(AChildren);
  while (const std::optional<TNode> table = tables.Next()) {
    TTable& added = FTables.emplace_back();
    added.Translation = ParseTableKey(table->Key);
    TNodeReader texts(table->Children);
    while (std::optional<TNode> text = texts.Next()) {
      // resource compilers disagree whether a text's length counts bytes or units: its terminator decides
      if (!text->Value.empty()) added.Texts.push_back({std::move(text->Key), TextFromBytes(text->Content)});
    }
  }
}

void TVersionResource::ReadTranslations(std::span<const std::byte> AChildren) {
  TNodeReader variables(AChildren);
  while (const std::optional<TNode> variable = variables.Next()) {
    if (!SameText(variable->Key, u"Translation")) continue;
    for (std::size_t offset = 0; offset + 4 <= variable->Value.size(); offset += 4) {
      if (FTranslations.size() == TranslationLimit) return;
      FTranslations.push_back({WordAt(variable->Value, offset), WordAt(variable->Value, offset + 2)});
    }
  }
}

std::u16string TVersionResource::Value(std::u16string_view AName) const {
  const auto find = [&](auto&& AMatches) -> std::u16string_view {
    for (const TTable& table : FTables) {
      if (!AMatches(table)) continue;
      for (const TText& text : table.Texts) {
        if (!text.Value.empty() && SameText(text.Name, AName)) return text.Value;
      }
    }
    return {};
  };
  const auto findIn = [&](const auto& ATranslations) -> std::u16string_view {
    for (const TVersionTranslation& translation : ATranslations) {
      const std::u16string_view found = find([&](const TTable& ATable) { return ATable.Translation == translation; });
      if (!found.empty()) return found;
    }
    return {};
  };
  std::u16string_view result = findIn(FTranslations);
  if (result.empty()) result = findIn(UsualTranslations);
  if (result.empty()) result = find([](const TTable&) { return true; });
  return std::u16string(result);
}

std::optional<std::uint16_t> TVersionResource::Language() const noexcept {
  if (!FTranslations.empty()) return FTranslations.front().Language;
  for (const TTable& table : FTables) {
    if (table.Translation) return table.Translation->Language;
  }
  return std::nullopt;
}

}  // namespace varcolin
