// Text of the host: conversion between the UTF-16 of the library and the UTF-8 of the output, case folding, and how
// values are written for people and for programs. Everything here is pure and may run on any thread.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "intf/intf_Base.h"

namespace varcolin::host {

/// UTF-8 of a UTF-16 text; every lone surrogate becomes U+FFFD.
[[nodiscard]] std::string ToUtf8(std::u16string_view AText);
/// UTF-16 of a UTF-8 text; every malformed sequence becomes U+FFFD.
[[nodiscard]] std::u16string ToUtf16(std::string_view AText);
/// Takes the first character off a UTF-8 text; U+FFFD for a malformed sequence, and for an empty text.
[[nodiscard]] char32_t NextCharacter(std::string_view& AText) noexcept;
/// Appends a character as UTF-8; U+FFFD for what is no Unicode scalar value.
void AppendUtf8(std::string& AText, char32_t ACharacter);

/// The text for comparisons without regard to case: simple one-to-one folding of the Latin, Greek, Cyrillic and
/// Armenian letters, the same whatever the user's locale is.
[[nodiscard]] std::u32string FoldCase(std::string_view AText);

/// A date-time broken down to the millisecond.
struct TDateParts {
  int Year = 0;
  unsigned Month = 0;
  unsigned Day = 0;
  unsigned Milliseconds = 0;  ///< since midnight
};

/// Breaks a date-time down; false for 0, which stands for an unknown date, and for what lies outside the years 1 to
/// 9999 or is no number.
[[nodiscard]] bool SplitDateTime(TDateTime ADate, TDateParts& AResult) noexcept;
/// "YYYY-MM-DDTHH:MM:SS.sss"; empty when the date is unknown.
[[nodiscard]] std::string FormatIsoDateTime(TDateTime ADate);
/// "YYYY-MM-DD"; empty when the date is unknown.
[[nodiscard]] std::string FormatDate(TDateTime ADate);
/// "12.3 MB", in steps of 1024; empty for 0 and less, which stand for an unknown size.
[[nodiscard]] std::string FormatSize(std::int64_t ABytes);

}  // namespace varcolin::host
