// The ANSI code page of simulated machines: Windows-1252.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

namespace varcolin {

/// The unit that a byte of Windows-1252 stands for; bytes without a meaning stay control characters.
[[nodiscard]] constexpr char16_t FromAnsi(std::byte AByte) noexcept {
  constexpr std::array<char16_t, 32> from80 = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                               0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                               0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                               0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};
  const auto code = std::to_integer<std::uint8_t>(AByte);
  return code >= 0x80 && code < 0xA0 ? from80[code - 0x80U] : char16_t{code};
}

}  // namespace varcolin
