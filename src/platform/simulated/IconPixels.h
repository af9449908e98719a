// What a picture of an icon looks like: from the bytes that lie in executables and icon files to pixels. Everything in
// the bytes may lie. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

namespace varcolin {

/// Pixels of four bytes each (red, green, blue, and how opaque it is, from 0 to 255, which the colours do not depend
/// on), row by row from the top.
struct TIconPixels {
  std::uint32_t Width = 0;
  std::uint32_t Height = 0;
  std::vector<std::uint8_t> Bytes;
};

/// Longest side of a picture that is drawn, in pixels.
inline constexpr std::uint32_t LongestIconSide = 1024;

/// Decodes a picture: a bitmap without file header whose height counts the mask below it (1, 4, 8, 16, 24 or 32 bits
/// a pixel, not compressed), or a PNG picture. Where the mask is set the picture is transparent; the mask of a 32-bit
/// bitmap counts only when none of its pixels is opaque to any degree. Nothing for a picture of another kind, an
/// incomplete one, and one with a side longer than LongestIconSide.
[[nodiscard]] std::optional<TIconPixels> DecodeIconPicture(std::span<const std::byte> APicture);

/// The picture at another size (at least one pixel each way): every pixel is the mean of what it covers.
[[nodiscard]] TIconPixels ScalePixels(const TIconPixels& APixels, std::uint32_t AWidth, std::uint32_t AHeight);

}  // namespace varcolin
