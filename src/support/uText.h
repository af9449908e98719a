// UTF-16 text without a locale: comparison without regard to case, searching, trimming, splitting, conversion.
//
// Case is folded unit by unit with Unicode's simple upper-case mapping of the basic plane, as the registry and the
// file system do; text outside it compares unit by unit. No ASCII unit is the same as one outside ASCII (dotless i,
// long s, the Kelvin sign): names that differ in such a letter are different names. Nothing here raises but for memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace varcolin {

[[nodiscard]] char16_t UpperChar(char16_t AUnit) noexcept;
[[nodiscard]] char16_t LowerChar(char16_t AUnit) noexcept;
[[nodiscard]] std::u16string UpperCase(std::u16string_view AText);
[[nodiscard]] std::u16string LowerCase(std::u16string_view AText);

/// Negative, zero or positive: the order of the upper-cased texts, unit by unit.
[[nodiscard]] int CompareText(std::u16string_view AFirst, std::u16string_view ASecond) noexcept;
[[nodiscard]] bool SameText(std::u16string_view AFirst, std::u16string_view ASecond) noexcept;
/// Whether AText begins (ends) with APart, without regard to case.
[[nodiscard]] bool StartsText(std::u16string_view APart, std::u16string_view AText) noexcept;
[[nodiscard]] bool EndsText(std::u16string_view APart, std::u16string_view AText) noexcept;
/// Position of the first APart in AText from AFrom on, without regard to case; npos when there is none. An empty part
/// is found nowhere.
[[nodiscard]] std::size_t FindText(std::u16string_view APart, std::u16string_view AText,
                                   std::size_t AFrom = 0) noexcept;
/// AText with every AOld, found without regard to case, replaced by ANew.
[[nodiscard]] std::u16string ReplaceAllText(std::u16string_view AText, std::u16string_view AOld,
                                            std::u16string_view ANew);
/// Hash that is equal for texts that SameText calls the same.
[[nodiscard]] std::size_t HashText(std::u16string_view AText) noexcept;

/// Function objects for containers keyed by text without regard to case; they take string views without a copy.
struct TTextLess {
  using is_transparent = void;
  bool operator()(std::u16string_view AFirst, std::u16string_view ASecond) const noexcept {
    return CompareText(AFirst, ASecond) < 0;
  }
};
struct TTextEqual {
  using is_transparent = void;
  bool operator()(std::u16string_view AFirst, std::u16string_view ASecond) const noexcept {
    return SameText(AFirst, ASecond);
  }
};
struct TTextHash {
  using is_transparent = void;
  // not noexcept: the standard containers then keep each hash, and growing need not read every text again
  std::size_t operator()(std::u16string_view AText) const { return HashText(AText); }
};

/// AText without the units up to U+0020 at both ends.
[[nodiscard]] std::u16string_view Trim(std::u16string_view AText) noexcept;
/// The text between the quotes with which AText begins, a doubled quote inside for one; what stands behind them is
/// dropped. A text without an opening and a closing quote stays.
[[nodiscard]] std::u16string Dequoted(std::u16string_view AText);
/// The parts of AText between the delimiters; no part for an empty text, empty parts are kept.
[[nodiscard]] std::vector<std::u16string_view> Split(std::u16string_view AText, char16_t ADelimiter);

/// Decimal text of a number.
[[nodiscard]] std::u16string IntToStr(std::int64_t AValue);
/// Reads a text of ASCII digits only (no sign, no blanks) whose value fits; false otherwise, AValue untouched.
[[nodiscard]] bool TryDigitsToInt(std::u16string_view AText, std::uint32_t& AValue) noexcept;

/// UTF-8 of a UTF-16 text; a lone surrogate becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(std::u16string_view AText);
/// UTF-16 of a UTF-8 text; each maximal ill-formed part becomes U+FFFD.
[[nodiscard]] std::u16string FromUtf8(std::string_view AText);
/// The same into a text whose memory is used again.
void AssignUtf8(std::u16string& AResult, std::string_view AText);
/// UTF-16 of an ASCII text.
[[nodiscard]] std::u16string FromAscii(std::string_view AText);

/// The text of a NUL-terminated argument; empty for null.
[[nodiscard]] inline std::u16string_view TextOf(const char16_t* AText) noexcept {
  return AText == nullptr ? std::u16string_view{} : std::u16string_view{AText};
}

/// How many whole UTF-16 units (little-endian) of stored bytes stand in front of the first NUL or their end.
[[nodiscard]] std::size_t UnitsToNul(std::span<const std::byte> AData) noexcept;
/// Those units; an odd last byte is dropped. This is how a registry string is read whatever its terminator.
[[nodiscard]] std::u16string TextFromBytes(std::span<const std::byte> AData);

}  // namespace varcolin
