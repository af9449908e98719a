#include "host/Text.h"

#include <array>
#include <cmath>

namespace varcolin::host {

namespace {

constexpr char32_t ReplacementCharacter = 0xFFFD;
constexpr std::uint32_t MillisecondsPerDay = 86'400'000;

constexpr bool IsHighSurrogate(char32_t ACharacter) { return ACharacter >= 0xD800 && ACharacter <= 0xDBFF; }
constexpr bool IsLowSurrogate(char32_t ACharacter) { return ACharacter >= 0xDC00 && ACharacter <= 0xDFFF; }

/// A run of capital letters: either all of it lies one distance from the small letters, or (Distance 0) capital and
/// small letter alternate, the capital having the parity of First.
struct TFoldRange {
  char32_t First;
  char32_t Last;
  std::int32_t Distance;
};

constexpr std::array FoldRanges{
    TFoldRange{0x00C0, 0x00D6, 32},   TFoldRange{0x00D8, 0x00DE, 32}, TFoldRange{0x0100, 0x012E, 0},
    TFoldRange{0x0132, 0x0136, 0},    TFoldRange{0x0139, 0x0147, 0},  TFoldRange{0x014A, 0x0176, 0},
    TFoldRange{0x0178, 0x0178, -121}, TFoldRange{0x0179, 0x017D, 0},  TFoldRange{0x01CD, 0x01DB, 0},
    TFoldRange{0x01DE, 0x01EE, 0},    TFoldRange{0x01F8, 0x021E, 0},  TFoldRange{0x0222, 0x0232, 0},
    TFoldRange{0x0386, 0x0386, 38},   TFoldRange{0x0388, 0x038A, 37}, TFoldRange{0x038C, 0x038C, 64},
    TFoldRange{0x038E, 0x038F, 63},   TFoldRange{0x0391, 0x03A1, 32}, TFoldRange{0x03A3, 0x03AB, 32},
    TFoldRange{0x03C2, 0x03C2, 1},    TFoldRange{0x0400, 0x040F, 80}, TFoldRange{0x0410, 0x042F, 32},
    TFoldRange{0x0460, 0x0480, 0},    TFoldRange{0x048A, 0x04BE, 0},  TFoldRange{0x04C1, 0x04CD, 0},
    TFoldRange{0x04D0, 0x052E, 0},    TFoldRange{0x0531, 0x0556, 48}, TFoldRange{0x1E00, 0x1E94, 0},
    TFoldRange{0x1EA0, 0x1EFE, 0},    TFoldRange{0xFF21, 0xFF3A, 32}, TFoldRange{0x10400, 0x10427, 40},
};

char32_t Fold(char32_t ACharacter) {
  if (ACharacter < 0x80) return ACharacter >= U'A' && ACharacter <= U'Z' ? ACharacter + 32 : ACharacter;
  for (const TFoldRange& range : FoldRanges) {
    if (ACharacter < range.First) break;
    if (ACharacter > range.Last) continue;
    if (range.Distance != 0) return static_cast<char32_t>(static_cast<std::int32_t>(ACharacter) + range.Distance);
    return (ACharacter - range.First) % 2 == 0 ? ACharacter + 1 : ACharacter;
  }
  return ACharacter;
}

/// Appends ANumber in decimal, with leading zeros up to AWidth digits.
void AppendNumber(std::string& AText, unsigned ANumber, std::size_t AWidth) {
  const std::string digits = std::to_string(ANumber);
  if (digits.size() < AWidth) AText.append(AWidth - digits.size(), '0');
  AText += digits;
}

/// Sets the calendar date of a day counted from 1970-01-01 (Gregorian throughout).
void SetDate(std::int64_t ADays, TDateParts& AResult) {
  // counted in eras of 400 years that begin on the first of March, so that the leap day is the last of its year
  const std::int64_t shifted = ADays + 719'468;
  const std::int64_t era = (shifted >= 0 ? shifted : shifted - 146'096) / 146'097;
  const auto dayOfEra = static_cast<unsigned>(shifted - era * 146'097);
  const unsigned yearOfEra = (dayOfEra - dayOfEra / 1'460 + dayOfEra / 36'524 - dayOfEra / 146'096) / 365;
  const unsigned dayOfYear = dayOfEra - (365 * yearOfEra + yearOfEra / 4 - yearOfEra / 100);
  const unsigned monthFromMarch = (5 * dayOfYear + 2) / 153;
  AResult.Day = dayOfYear - (153 * monthFromMarch + 2) / 5 + 1;
  AResult.Month = monthFromMarch < 10 ? monthFromMarch + 3 : monthFromMarch - 9;
  AResult.Year = static_cast<int>(yearOfEra) + static_cast<int>(era) * 400 + (AResult.Month <= 2 ? 1 : 0);
}

void AppendDate(std::string& AText, const TDateParts& AParts) {
  AppendNumber(AText, static_cast<unsigned>(AParts.Year), 4);
  AText += '-';
  AppendNumber(AText, AParts.Month, 2);
  AText += '-';
  AppendNumber(AText, AParts.Day, 2);
}

}  // namespace

void AppendUtf8(std::string& AText, char32_t ACharacter) {
  if (ACharacter > 0x10FFFF || IsHighSurrogate(ACharacter) || IsLowSurrogate(ACharacter)) {
    ACharacter = ReplacementCharacter;
  }
  const auto tail = [&](unsigned AShift) { AText += static_cast<char>(0x80U | ((ACharacter >> AShift) & 0x3FU)); };
  if (ACharacter < 0x80) {
    AText += static_cast<char>(ACharacter);
  } else if (ACharacter < 0x800) {
    AText += static_cast<char>(0xC0U | (ACharacter >> 6U));
    tail(0);
  } else if (ACharacter < 0x10000) {
    AText += static_cast<char>(0xE0U | (ACharacter >> 12U));
    tail(6);
    tail(0);
  } else {
    AText += static_cast<char>(0xF0U | (ACharacter >> 18U));
    tail(12);
    tail(6);
    tail(0);
  }
}

std::string ToUtf8(std::u16string_view AText) {
  std::string result;
  result.reserve(AText.size());
  for (std::size_t i = 0; i < AText.size(); ++i) {
    char32_t character = AText[i];
    if (IsHighSurrogate(character) && i + 1 < AText.size() && IsLowSurrogate(AText[i + 1])) {
      character = 0x10000 + ((character - 0xD800) << 10U) + (AText[++i] - 0xDC00U);
    }
    AppendUtf8(result, character);
  }
  return result;
}

char32_t NextCharacter(std::string_view& AText) noexcept {
  if (AText.empty()) return ReplacementCharacter;
  const auto first = static_cast<unsigned char>(AText.front());
  AText.remove_prefix(1);
  if (first < 0x80) return first;
  // 0xC0, 0xC1 and everything from 0xF5 begin no well-formed sequence
  const unsigned length = first >= 0xC2 && first <= 0xDF   ? 1
                          : (first & 0xF0U) == 0xE0        ? 2
                          : first >= 0xF0 && first <= 0xF4 ? 3
                                                           : 0;
  if (length == 0) return ReplacementCharacter;
  char32_t character = first & (0x3FU >> length);
  for (unsigned i = 0; i < length; ++i) {
    if (AText.empty()) return ReplacementCharacter;
    const auto next = static_cast<unsigned char>(AText.front());
    const bool overlong = i == 0 && ((first == 0xE0 && next < 0xA0) || (first == 0xF0 && next < 0x90));
    const bool tooBig = i == 0 && ((first == 0xED && next > 0x9F) || (first == 0xF4 && next > 0x8F));
    if ((next & 0xC0U) != 0x80 || overlong || tooBig) return ReplacementCharacter;
    character = (character << 6U) | (next & 0x3FU);
    AText.remove_prefix(1);
  }
  return character;
}

std::u16string ToUtf16(std::string_view AText) {
  std::u16string result;
  result.reserve(AText.size());
  while (!AText.empty()) {
    const char32_t character = NextCharacter(AText);
    if (character < 0x10000) {
      result += static_cast<char16_t>(character);
    } else {
      result += static_cast<char16_t>(0xD800 + ((character - 0x10000) >> 10U));
      result += static_cast<char16_t>(0xDC00 + ((character - 0x10000) & 0x3FFU));
    }
  }
  return result;
}

std::u32string FoldCase(std::string_view AText) {
  std::u32string result;
  result.reserve(AText.size());
  while (!AText.empty()) result += Fold(NextCharacter(AText));
  return result;
}

bool SplitDateTime(TDateTime ADate, TDateParts& AResult) noexcept {
  constexpr TDateTime firstDay = -693'593;     // 0001-01-01
  constexpr TDateTime endOfTime = 2'958'466;   // 10000-01-01
  constexpr std::int64_t daysTo1970 = 25'569;  // from 1899-12-30
  if (!(ADate > firstDay - 1 && ADate < endOfTime) || ADate == 0) return false;
  // before the first day of the scale the fraction still counts forward from midnight
  const TDateTime wholeDays = std::trunc(ADate);
  auto day = static_cast<std::int64_t>(wholeDays);
  auto milliseconds = static_cast<std::uint32_t>(std::llround(std::fabs(ADate - wholeDays) * MillisecondsPerDay));
  if (milliseconds >= MillisecondsPerDay) {
    milliseconds -= MillisecondsPerDay;
    ++day;
  }
  if (day >= static_cast<std::int64_t>(endOfTime)) return false;
  SetDate(day - daysTo1970, AResult);
  AResult.Milliseconds = milliseconds;
  return true;
}

std::string FormatIsoDateTime(TDateTime ADate) {
  TDateParts parts;
  std::string result;
  if (!SplitDateTime(ADate, parts)) return result;
  AppendDate(result, parts);
  result += 'T';
  AppendNumber(result, parts.Milliseconds / 3'600'000, 2);
  result += ':';
  AppendNumber(result, parts.Milliseconds / 60'000 % 60, 2);
  result += ':';
  AppendNumber(result, parts.Milliseconds / 1'000 % 60, 2);
  result += '.';
  AppendNumber(result, parts.Milliseconds % 1'000, 3);
  return result;
}

std::string FormatDate(TDateTime ADate) {
  TDateParts parts;
  std::string result;
  if (SplitDateTime(ADate, parts)) AppendDate(result, parts);
  return result;
}

std::string FormatSize(std::int64_t ABytes) {
  constexpr std::array units{" KB", " MB", " GB", " TB", " PB", " EB"};
  if (ABytes <= 0) return {};
  if (ABytes < 1024) return std::to_string(ABytes) + " B";
  // tenths of the unit, rounded; a value that rounds to 1024.0 is shown as 1.0 of the next unit
  std::uint64_t divisor = 1024;
  std::size_t unit = 0;
  const auto tenths = [&] {
    const auto bytes = static_cast<std::uint64_t>(ABytes);
    return bytes / divisor * 10 + (bytes % divisor * 10 + divisor / 2) / divisor;
  };
  while (tenths() >= 10'240 && unit + 1 < units.size()) {
    divisor *= 1024;
    ++unit;
  }
  return std::to_string(tenths() / 10) + '.' + std::to_string(tenths() % 10) + units[unit];
}

}  // namespace varcolin::host
