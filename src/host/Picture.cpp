#include "host/Picture.h"

#include <cstdlib>
#include <memory>

#include "host/HostError.h"

#define STBI_WRITE_NO_STDIO
#define STB_IMAGE_WRITE_STATIC
#define STB_IMAGE_WRITE_IMPLEMENTATION
#include <stb/stb_image_write.h>

namespace varcolin::host {

namespace {

/// Appends a number in ASize bytes, the lowest one first.
void Append(std::string& AData, std::uint64_t ANumber, unsigned ASize) {
  for (; ASize > 0; --ASize, ANumber >>= 8U) AData += static_cast<char>(ANumber & 0xFFU);
}

}  // namespace

bool TPicture::IsClear() const noexcept {
  for (std::size_t at = 3; at < Pixels.size(); at += BytesPerPixel) {
    if (Pixels[at] != 0) return false;
  }
  return true;
}

std::string FormatPng(const TPicture& APicture) {
  int size = 0;
  const auto width = static_cast<int>(APicture.Width);
  const auto height = static_cast<int>(APicture.Height);
  const std::unique_ptr<unsigned char, decltype(&std::free)> data(
      stbi_write_png_to_mem(APicture.Pixels.data(), 0, width, height, TPicture::BytesPerPixel, &size), &std::free);
  if (data == nullptr) throw EHostError("there is not enough memory for the picture");
  return {reinterpret_cast<const char*>(data.get()), static_cast<std::size_t>(size)};
}

std::string FormatIco(const TPicture& APicture) {
  constexpr std::uint32_t fileHeader = 6 + 16;
  constexpr std::uint32_t bitmapHeader = 40;
  std::string colours;
  std::string mask;
  for (std::size_t row = APicture.Height; row-- > 0;) {
    std::string bits((APicture.Width + 31) / 32 * 4, '\0');
    for (std::size_t column = 0; column < APicture.Width; ++column) {
      const std::uint8_t* pixel = &APicture.Pixels[(row * APicture.Width + column) * TPicture::BytesPerPixel];
      const bool shows = pixel[3] != 0;
      // where nothing shows the colours are black: readers that know masks only would invert what is below
      for (const std::size_t part : {2, 1, 0}) colours += shows ? static_cast<char>(pixel[part]) : '\0';
      colours += static_cast<char>(pixel[3]);
      if (!shows)
        bits[column / 8] = static_cast<char>(static_cast<unsigned char>(bits[column / 8]) | 0x80U >> column % 8);
    }
    mask += bits;
  }
  const std::size_t size = colours.size() + mask.size();
  std::string file;
  Append(file, 0, 2);
  Append(file, 1, 2);  // an icon
  Append(file, 1, 2);  // with one picture
  Append(file, APicture.Width, 1);
  Append(file, APicture.Height, 1);
  Append(file, 0, 2);
  Append(file, 1, 2);
  Append(file, 32, 2);
  Append(file, bitmapHeader + size, 4);
  Append(file, fileHeader, 4);
  Append(file, bitmapHeader, 4);
  Append(file, APicture.Width, 4);
  Append(file, std::uint64_t{APicture.Height} * 2, 4);  // with the mask
  Append(file, 1, 2);
  Append(file, 32, 2);
  Append(file, 0, 4);
  Append(file, size, 4);
  Append(file, 0, 16);
  return file + colours + mask;
}

}  // namespace varcolin::host
