// The simple case mappings of the basic plane outside ASCII.
#pragma once

namespace varcolin {

/// The upper (lower) case of one UTF-16 unit beyond ASCII; the unit itself when it has none. A mapping never crosses
/// the border to ASCII.
[[nodiscard]] char16_t UnicodeUpper(char16_t AUnit) noexcept;
[[nodiscard]] char16_t UnicodeLower(char16_t AUnit) noexcept;

}  // namespace varcolin
