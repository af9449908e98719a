// The version resource of an executable file (VS_VERSIONINFO), read from its bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace varcolin {

/// One language and code page that a version resource says it is written in.
struct TVersionTranslation {
  std::uint16_t Language = 0;
  std::uint16_t CodePage = 0;

  friend constexpr bool operator==(const TVersionTranslation&, const TVersionTranslation&) = default;
};

/// The texts and translations of one version resource. Whatever lies outside the lengths that enclose it is passed
/// over; bytes that are no version resource give an empty object.
class TVersionResource {
 public:
  explicit TVersionResource(std::span<const std::byte> AData);

  /// The text with this name (without regard to case): from the tables of the translations in their order, then from
  /// the tables 040904B0 and 040904E4, then from any other, the first that is not empty. Empty when there is none.
  [[nodiscard]] std::u16string Value(std::u16string_view AName) const;
  /// The translations, in their order.
  [[nodiscard]] const std::vector<TVersionTranslation>& Translations() const noexcept { return FTranslations; }
  /// Language of the first translation, else of the first table; nothing when there is neither.
  [[nodiscard]] std::optional<std::uint16_t> Language() const noexcept;

 private:
  struct TText {
    std::u16string Name;
    std::u16string Value;
  };
  struct TTable {
    std::optional<TVersionTranslation> Translation;
    std::vector<TText> Texts;
  };

  void ReadStringTables(std::span<const std::byte> AChildren);
  void ReadTranslations(std::span<const std::byte> AChildren);

  std::vector<TTable> FTables;
  std::vector<TVersionTranslation> FTranslations;
};

}  // namespace varcolin
