#include "support/uGuid.h"

#include <cstdint>

#include "support/uFormat.h"

namespace varcolin {
namespace {

/// Length of the registry form.
constexpr std::size_t GuidLength = 38;
/// Where its hyphens stand.
constexpr std::size_t Hyphens[] = {9, 14, 19, 24};

/// The value of a hexadecimal digit; 16 for any other unit.
std::uint32_t DigitValue(char16_t AUnit) noexcept {
  if (AUnit >= u'0' && AUnit <= u'9') return AUnit - u'0';
  if (AUnit >= u'A' && AUnit <= u'F') return AUnit - u'A' + 10;
  if (AUnit >= u'a' && AUnit <= u'f') return AUnit - u'a' + 10;
  return 16;
}

bool ReadHex(std::u16string_view AText, std::uint32_t& AValue) noexcept {
  AValue = 0;
  for (const char16_t unit : AText) {
    const std::uint32_t digit = DigitValue(unit);
    if (digit == 16) return false;
    AValue = AValue << 4 | digit;
  }
  return true;
}

}  // namespace

std::optional<TGUID> ParseGuid(std::u16string_view AText) noexcept {
  if (AText.size() != GuidLength || AText.front() != u'{' || AText.back() != u'}') return std::nullopt;
  for (const std::size_t hyphen : Hyphens) {
    if (AText[hyphen] != u'-') return std::nullopt;
  }
  TGUID guid{};
  std::uint32_t value = 0;
  if (!ReadHex(AText.substr(1, 8), guid.D1)) return std::nullopt;
  if (!ReadHex(AText.substr(10, 4), value)) return std::nullopt;
  guid.D2 = static_cast<std::uint16_t>(value);
  if (!ReadHex(AText.substr(15, 4), value)) return std::nullopt;
  guid.D3 = static_cast<std::uint16_t>(value);
  for (std::size_t i = 0; i < 8; ++i) {
    if (!ReadHex(AText.substr(i < 2 ? 20 + 2 * i : 21 + 2 * i, 2), value)) return std::nullopt;
    guid.D4[i] = static_cast<std::uint8_t>(value);
  }
  return guid;
}

std::u16string GuidToText(const TGUID& AGuid) {
  std::u16string result = Format(u"{%.8x-%.4x-%.4x-", {AGuid.D1, AGuid.D2, AGuid.D3});
  for (std::size_t i = 0; i < 8; ++i) {
    if (i == 2) result += u'-';
    result += Format(u"%.2x", {AGuid.D4[i]});
  }
  result += u'}';
  return result;
}

}  // namespace varcolin
