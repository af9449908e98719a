// Windows path texts. The disk is never consulted. A delimiter is a backslash; where the file name is split off, a
// colon is one too.
#pragma once

#include <string>
#include <string_view>

namespace varcolin {

/// APath with one backslash at its end (an empty path becomes one backslash).
[[nodiscard]] std::u16string IncludeTrailingPathDelimiter(std::u16string_view APath);
/// APath without the one backslash at its end.
[[nodiscard]] std::u16string_view ExcludeTrailingPathDelimiter(std::u16string_view APath) noexcept;
/// What stands behind the last backslash or colon.
[[nodiscard]] std::u16string_view ExtractFileName(std::u16string_view APath) noexcept;
/// What stands up to and including the last backslash or colon.
[[nodiscard]] std::u16string_view ExtractFilePath(std::u16string_view APath) noexcept;
/// From the last dot of the file name, the dot included; empty when there is none.
[[nodiscard]] std::u16string_view ExtractFileExt(std::u16string_view APath) noexcept;

}  // namespace varcolin
