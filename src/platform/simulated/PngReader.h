// PNG pictures, as icons have held them since Windows Vista. Pure; any thread.
#pragma once

#include "platform/simulated/IconPixels.h"

namespace varcolin {

/// Whether the bytes begin like a PNG picture.
[[nodiscard]] bool IsPng(std::span<const std::byte> AData) noexcept;
/// Decodes a PNG picture; nothing when it is broken, incomplete, or has a side longer than ALongestSide pixels. Takes
/// no more memory than such a picture needs, whatever its bytes would unpack to.
[[nodiscard]] std::optional<TIconPixels> ReadPng(std::span<const std::byte> AData, std::uint32_t ALongestSide);

}  // namespace varcolin
