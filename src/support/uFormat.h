// Formatting by the rules of the suite's format strings.
#pragma once

#include <concepts>
#include <cstdint>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

namespace varcolin {

/// One argument of Format: a text or a number.
class TFormatArg {
 public:
  TFormatArg(std::u16string_view AText) noexcept : FText(AText), FIsText(true) {}
  TFormatArg(const std::u16string& AText) noexcept : FText(AText), FIsText(true) {}
  TFormatArg(const char16_t* AText) noexcept : FText(AText), FIsText(true) {}
  template <std::integral T>
  TFormatArg(T ANumber) noexcept
      : FNumber(static_cast<std::int64_t>(ANumber)), FUnsigned(static_cast<std::make_unsigned_t<T>>(ANumber)) {}
  TFormatArg(bool AValue) = delete;

  [[nodiscard]] bool IsText() const noexcept { return FIsText; }
  [[nodiscard]] std::u16string_view Text() const noexcept { return FText; }
  [[nodiscard]] std::int64_t Number() const noexcept { return FNumber; }
  /// The number's bits in its own width, which is what %u and %x show of a negative one.
  [[nodiscard]] std::uint64_t UnsignedNumber() const noexcept { return FUnsigned; }

 private:
  std::u16string_view FText;
  std::int64_t FNumber = 0;
  std::uint64_t FUnsigned = 0;
  bool FIsText = false;
};

/// Replaces %s (text), %d and %u (decimal) and %x (upper-case hexadecimal), with an optional argument index ("%0:s"),
/// width, left alignment ("%-8s") and precision ("%.4x"), and %% by a percent sign. Raises EConvertError ("Format '%s'
/// invalid or incompatible with argument", "No argument for format '%s'") when the format is broken or does not fit.
/// Arguments are data: what they contain is never read as a format.
[[nodiscard]] std::u16string Format(std::u16string_view AFormat, std::initializer_list<TFormatArg> AArgs);

}  // namespace varcolin
