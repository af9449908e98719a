// GUIDs as text.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "intf/intf_Base.h"

namespace varcolin {

/// Reads the registry form, 38 characters with braces and hyphens, hexadecimal digits in any case (the GUID form that
/// CLSIDFromString accepts; program identifiers are not looked up).
[[nodiscard]] std::optional<TGUID> ParseGuid(std::u16string_view AText) noexcept;
/// The registry form with upper-case digits.
[[nodiscard]] std::u16string GuidToText(const TGUID& AGuid);

}  // namespace varcolin
