#include "support/uText.h"

#include <algorithm>
#include <array>
#include <bit>
#include <charconv>
#include <cstring>
#include <limits>
#include <type_traits>

#include "support/uBytes.h"
#include "support/uUnicodeCase.h"

namespace varcolin {
namespace {

constexpr char16_t Replacement = 0xFFFD;

constexpr bool IsHighSurrogate(char16_t AUnit) noexcept { return (AUnit & 0xFC00) == 0xD800; }
constexpr bool IsLowSurrogate(char16_t AUnit) noexcept { return (AUnit & 0xFC00) == 0xDC00; }

/// Length of the longest part at AText's start that begins a well-formed sequence, and whether that part is a whole
/// one.
struct TUtf8Part {
  std::size_t Length;
  char32_t Code;
  bool Whole;
};

TUtf8Part NextUtf8(std::string_view AText) noexcept {
  const auto byteAt = [AText](std::size_t AIndex) { return static_cast<unsigned char>(AText[AIndex]); };
  const unsigned lead = byteAt(0);
  if (lead < 0x80) return {1, lead, true};
  std::size_t length = 0;
  char32_t code = 0;
  if (lead >= 0xC2 && lead <= 0xDF) {
    length = 2;
    code = lead & 0x1F;
  } else if (lead >= 0xE0 && lead <= 0xEF) {
    length = 3;
    code = lead & 0x0F;
  } else if (lead >= 0xF0 && lead <= 0xF4) {
    length = 4;
    code = lead & 0x07;
  } else {
    return {1, 0, false};
  }
  for (std::size_t i = 1; i < length; ++i) {
    if (i == AText.size()) return {i, 0, false};
    unsigned low = 0x80;
    unsigned high = 0xBF;
    if (i == 1) {  // no overlong forms, no surrogates, nothing past U+10FFFF
      if (lead == 0xE0) low = 0xA0;
      if (lead == 0xED) high = 0x9F;
      if (lead == 0xF0) low = 0x90;
      if (lead == 0xF4) high = 0x8F;
    }
    const unsigned next = byteAt(i);
    if (next < low || next > high) return {i, 0, false};
    code = code << 6 | (next & 0x3F);
  }
  return {length, code, true};
}

void AppendUtf8(std::string& AResult, char32_t ACode) {
  const auto put = [&AResult](char32_t AByte) { AResult.push_back(static_cast<char>(AByte)); };
  if (ACode < 0x80) {
    put(ACode);
  } else if (ACode < 0x800) {
    put(0xC0 | ACode >> 6);
    put(0x80 | (ACode & 0x3F));
  } else if (ACode < 0x10000) {
    put(0xE0 | ACode >> 12);
    put(0x80 | (ACode >> 6 & 0x3F));
    put(0x80 | (ACode & 0x3F));
  } else {
    put(0xF0 | ACode >> 18);
    put(0x80 | (ACode >> 12 & 0x3F));
    put(0x80 | (ACode >> 6 & 0x3F));
    put(0x80 | (ACode & 0x3F));
  }
}

/// Whether every unit of a text of bytes or of UTF-16 is ASCII. Nearly every text is: all units are looked at together.
template <class TUnit>
bool IsAscii(std::basic_string_view<TUnit> AText) noexcept {
  std::make_unsigned_t<std::conditional_t<sizeof(TUnit) == 1, char, std::uint16_t>> all = 0;
  for (const TUnit unit : AText) all |= static_cast<decltype(all)>(unit);
  return all < 0x80;
}

/// As many units as are looked at together.
constexpr std::size_t UnitsOfWord = sizeof(std::uint64_t) / sizeof(char16_t);
/// Times a unit: as many of that unit.
constexpr std::uint64_t InEachUnit = 0x0001'0001'0001'0001;

std::uint64_t WordAt(const char16_t* AUnits) noexcept {
  std::uint64_t word = 0;
  std::memcpy(&word, AUnits, sizeof word);
  return word;
}

/// How many of the first ACount units are the same, case included, counted in steps: at least one that differs is left,
/// or fewer than a step. Most names that are compared are the same for long or to their end.
std::size_t SameSteps(const char16_t* AFirst, const char16_t* ASecond, std::size_t ACount) noexcept {
  std::size_t done = 0;
  while (done + UnitsOfWord <= ACount && WordAt(AFirst + done) == WordAt(ASecond + done)) done += UnitsOfWord;
  return done;
}

/// WordAt with its units in upper case.
std::uint64_t UpperWord(const char16_t* AUnits) noexcept {
  const std::uint64_t word = WordAt(AUnits);
  if ((word & 0xFF80 * InEachUnit) == 0) {
    // ASCII, all at once: bit 7 of a sum tells whether the unit is at least 'a', of the other whether it is above 'z'
    const std::uint64_t fromA = word + (0x80 - u'a') * InEachUnit;
    const std::uint64_t behindZ = word + (0x80 - u'z' - 1) * InEachUnit;
    const std::uint64_t letters = fromA & ~behindZ & 0x80 * InEachUnit;
    return word - (letters >> 2);  // 0x20 below
  }
  std::array<char16_t, UnitsOfWord> upper;
  std::transform(AUnits, AUnits + UnitsOfWord, upper.begin(), UpperChar);
  return WordAt(upper.data());
}

/// The difference of the first units that are not the same without regard to case; 0 when all ACount are.
int Difference(const char16_t* AFirst, const char16_t* ASecond, std::size_t ACount) noexcept {
  for (std::size_t i = SameSteps(AFirst, ASecond, ACount); i < ACount; ++i) {
    if (AFirst[i] == ASecond[i]) continue;
    if (const int difference = UpperChar(AFirst[i]) - UpperChar(ASecond[i]); difference != 0) return difference;
  }
  return 0;
}

/// Whether AText has APart at AFrom; the caller has checked that it fits.
bool MatchesAt(std::u16string_view APart, std::u16string_view AText, std::size_t AFrom) noexcept {
  return Difference(APart.data(), AText.data() + AFrom, APart.size()) == 0;
}

}  // namespace

char16_t UpperChar(char16_t AUnit) noexcept {
  if (AUnit < 0x80) return AUnit >= u'a' && AUnit <= u'z' ? static_cast<char16_t>(AUnit - 32) : AUnit;
  return UnicodeUpper(AUnit);
}

char16_t LowerChar(char16_t AUnit) noexcept {
  if (AUnit < 0x80) return AUnit >= u'A' && AUnit <= u'Z' ? static_cast<char16_t>(AUnit + 32) : AUnit;
  return UnicodeLower(AUnit);
}

std::u16string UpperCase(std::u16string_view AText) {
  std::u16string result(AText);
  std::ranges::transform(result, result.begin(), UpperChar);
  return result;
}

std::u16string LowerCase(std::u16string_view AText) {
  std::u16string result(AText);
  std::ranges::transform(result, result.begin(), LowerChar);
  return result;
}

int CompareText(std::u16string_view AFirst, std::u16string_view ASecond) noexcept {
  const std::size_t common = std::min(AFirst.size(), ASecond.size());
  const int difference = Difference(AFirst.data(), ASecond.data(), common);
  if (difference != 0 || AFirst.size() == ASecond.size()) return difference;
  return AFirst.size() < ASecond.size() ? -1 : 1;
}

bool SameText(std::u16string_view AFirst, std::u16string_view ASecond) noexcept {
  return AFirst.size() == ASecond.size() && MatchesAt(AFirst, ASecond, 0);
}

bool StartsText(std::u16string_view APart, std::u16string_view AText) noexcept {
  return APart.size() <= AText.size() && MatchesAt(APart, AText, 0);
}

bool EndsText(std::u16string_view APart, std::u16string_view AText) noexcept {
  return APart.size() <= AText.size() && MatchesAt(APart, AText, AText.size() - APart.size());
}

std::size_t FindText(std::u16string_view APart, std::u16string_view AText, std::size_t AFrom) noexcept {
  if (APart.empty() || APart.size() > AText.size()) return std::u16string_view::npos;
  for (std::size_t i = AFrom; i <= AText.size() - APart.size(); ++i) {
    if (MatchesAt(APart, AText, i)) return i;
  }
  return std::u16string_view::npos;
}

std::u16string ReplaceAllText(std::u16string_view AText, std::u16string_view AOld, std::u16string_view ANew) {
  std::u16string result;
  std::size_t from = 0;
  for (std::size_t at = 0; (at = FindText(AOld, AText, from)) != std::u16string_view::npos; from = at + AOld.size()) {
    result += AText.substr(from, at - from);
    result += ANew;
  }
  result += AText.substr(from);
  return result;
}

std::size_t HashText(std::u16string_view AText) noexcept {
  std::uint64_t hash = AText.size();
  const auto mix = [&hash](std::uint64_t AWord) {
    hash = (hash ^ AWord) * 0x9E3779B97F4A7C15U;
    hash ^= hash >> 32;  // a product carries upwards only: bring it back down to where the next one starts
  };
  std::size_t done = 0;
  for (; done + UnitsOfWord <= AText.size(); done += UnitsOfWord) mix(UpperWord(AText.data() + done));
  std::uint64_t rest = 0;
  for (; done < AText.size(); ++done) rest = rest << 16 | UpperChar(AText[done]);
  mix(rest);
  return static_cast<std::size_t>(hash);
}

std::u16string_view Trim(std::u16string_view AText) noexcept {
  while (!AText.empty() && AText.front() <= u' ') AText.remove_prefix(1);
  while (!AText.empty() && AText.back() <= u' ') AText.remove_suffix(1);
  return AText;
}

std::u16string Dequoted(std::u16string_view AText) {
  if (!AText.starts_with(u'"')) return std::u16string(AText);
  std::u16string result;
  for (std::size_t i = 1; i < AText.size(); ++i) {
    if (AText[i] == u'"') {
      if (i + 1 == AText.size() || AText[i + 1] != u'"') return result;
      ++i;
    }
    result += AText[i];
  }
  return std::u16string(AText);
}

std::vector<std::u16string_view> Split(std::u16string_view AText, char16_t ADelimiter) {
  std::vector<std::u16string_view> parts;
  if (AText.empty()) return parts;
  for (;;) {
    const std::size_t at = AText.find(ADelimiter);
    parts.push_back(AText.substr(0, at));
    if (at == std::u16string_view::npos) return parts;
    AText.remove_prefix(at + 1);
  }
}

std::u16string IntToStr(std::int64_t AValue) {
  char buffer[24];
  const auto end = std::to_chars(std::begin(buffer), std::end(buffer), AValue).ptr;
  return {std::begin(buffer), end};
}

bool TryDigitsToInt(std::u16string_view AText, std::uint32_t& AValue) noexcept {
  if (AText.empty()) return false;
  std::uint64_t value = 0;
  for (const char16_t unit : AText) {
    if (unit < u'0' || unit > u'9') return false;
    value = value * 10 + (unit - u'0');
    if (value > std::numeric_limits<std::uint32_t>::max()) return false;
  }
  AValue = static_cast<std::uint32_t>(value);
  return true;
}

std::string ToUtf8(std::u16string_view AText) {
  if (IsAscii(AText)) return {AText.begin(), AText.end()};
  std::string result;
  result.reserve(AText.size());
  for (std::size_t i = 0; i < AText.size(); ++i) {
    char32_t code = AText[i];
    if (IsHighSurrogate(AText[i]) && i + 1 < AText.size() && IsLowSurrogate(AText[i + 1])) {
      code = 0x10000 + ((code & 0x3FF) << 10 | (AText[++i] & 0x3FF));
    } else if (IsHighSurrogate(AText[i]) || IsLowSurrogate(AText[i])) {
      code = Replacement;
    }
    AppendUtf8(result, code);
  }
  return result;
}

std::u16string FromUtf8(std::string_view AText) {
  std::u16string result;
  AssignUtf8(result, AText);
  return result;
}

void AssignUtf8(std::u16string& AResult, std::string_view AText) {
  if (IsAscii(AText)) {
    AResult.resize(AText.size());
    std::ranges::copy(AText, AResult.begin());
    return;
  }
  AResult.clear();
  AResult.reserve(AText.size());
  while (!AText.empty()) {
    const TUtf8Part part = NextUtf8(AText);
    AText.remove_prefix(part.Length);
    if (!part.Whole) {
      AResult.push_back(Replacement);
    } else if (part.Code < 0x10000) {
      AResult.push_back(static_cast<char16_t>(part.Code));
    } else {
      AResult.push_back(static_cast<char16_t>(0xD800 + ((part.Code - 0x10000) >> 10)));
      AResult.push_back(static_cast<char16_t>(0xDC00 + ((part.Code - 0x10000) & 0x3FF)));
    }
  }
}

std::u16string FromAscii(std::string_view AText) { return {AText.begin(), AText.end()}; }

std::size_t UnitsToNul(std::span<const std::byte> AData) noexcept {
  constexpr std::uint64_t HighBits = 0x8000 * InEachUnit;
  constexpr std::size_t BitsOfUnit = 16;
  const std::size_t count = AData.size() / sizeof(char16_t);
  std::size_t done = 0;
  for (; done + UnitsOfWord <= count; done += UnitsOfWord) {
    const auto word = NumberAt<std::uint64_t>(AData, done * sizeof(char16_t));
    // only a unit that is 0, or one behind it, borrows from a high bit that it does not have
    const std::uint64_t borrows = (word - InEachUnit) & ~word & HighBits;
    if (borrows != 0) return done + static_cast<std::size_t>(std::countr_zero(borrows)) / BitsOfUnit;
  }
  while (done < count && NumberAt<char16_t>(AData, done * sizeof(char16_t)) != 0) ++done;
  return done;
}

std::u16string TextFromBytes(std::span<const std::byte> AData) {
  std::u16string result(UnitsToNul(AData), u'\0');
  if (!result.empty()) std::memcpy(result.data(), AData.data(), result.size() * sizeof(char16_t));
  return result;
}

}  // namespace varcolin
