// A picture in memory and the files that it is written as. Pure; any thread.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace varcolin::host {

/// Pixels of four bytes each: red, green, blue, and how opaque the pixel is (0 to 255, not multiplied into the
/// colours); row by row from the top.
struct TPicture {
  static constexpr std::size_t BytesPerPixel = 4;

  std::uint32_t Width = 0;
  std::uint32_t Height = 0;
  std::vector<std::uint8_t> Pixels;

  TPicture() = default;
  /// A picture that is transparent all over.
  TPicture(std::uint32_t AWidth, std::uint32_t AHeight)
      : Width(AWidth), Height(AHeight), Pixels(std::size_t{AWidth} * AHeight * BytesPerPixel) {}

  /// Whether no pixel is opaque to any degree.
  [[nodiscard]] bool IsClear() const noexcept;
};

/// The bytes of a PNG file. Throws EHostError when memory does not suffice.
[[nodiscard]] std::string FormatPng(const TPicture& APicture);
/// The bytes of an icon file (.ico) with this picture of at most 256 pixels a side, as a 32-bit bitmap with a mask:
/// the form that every reader of icons takes.
[[nodiscard]] std::string FormatIco(const TPicture& APicture);

}  // namespace varcolin::host
