// Texts that hold paths. The disk is never consulted.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace varcolin {

/// APath without blanks around it, with backslashes for slashes, without doubled backslashes (but for a leading pair)
/// and with "." and ".." components resolved. ".." does not leave a drive's root or a network share; at the start of a
/// relative path it stays. A trailing backslash stays. Paths that begin with "\\?\" or "\\.\" are literal and only
/// trimmed.
[[nodiscard]] std::u16string NormalizePathText(std::u16string_view APath);

/// A text of the form "path,number".
struct TIconLocation {
  std::u16string_view File;  ///< as it stands there, quotes included, without blanks around it
  std::int32_t Index = 0;    ///< 0 when the text has none
};

/// Splits AText at its last comma when a decimal number of 32 bits, with or without a sign, follows there; otherwise
/// the whole text is the file. A pair of quotes around both parts together is passed over.
[[nodiscard]] TIconLocation SplitIconLocation(std::u16string_view AText) noexcept;

}  // namespace varcolin
