// The locales that Windows ships with, as an English Windows 7 names them.
#pragma once

#include <cstdint>
#include <string_view>

namespace varcolin {

/// One locale; a bare language is one too.
struct TLocale {
  std::uint16_t Id = 0;               ///< language id, sub-language included
  std::u16string_view Name;           ///< "en-US"
  std::u16string_view DisplayName;    ///< "English (United States)"
  std::u16string_view Abbreviation;   ///< "ENU"
  std::u16string_view TimeSeparator;  ///< between hours and minutes
};

/// The locale with a language id; a bare language id gives the language ("English"). False when there is none.
[[nodiscard]] bool FindLocale(std::uint16_t AId, TLocale& ALocale) noexcept;
/// The same by name, without regard to case.
[[nodiscard]] bool FindLocale(std::u16string_view AName, TLocale& ALocale) noexcept;

}  // namespace varcolin
