#include "platform/simulated/PngReader.h"

#include <algorithm>
#include <array>
#include <cstdlib>
#include <memory>

namespace varcolin {
namespace {

// A packed picture can claim to unpack to gigabytes: what the decoder may have in one piece is enough for the largest
// picture that is drawn, sixteen bits a channel, and for a buffer that was doubled once.
constexpr std::size_t MostBytes = std::size_t{LongestIconSide} * LongestIconSide * 8 * 3;

void* Allocate(std::size_t ASize) noexcept { return ASize <= MostBytes ? std::malloc(ASize) : nullptr; }

void* Reallocate(void* AMemory, std::size_t ASize) noexcept {
  return ASize <= MostBytes ? std::realloc(AMemory, ASize) : nullptr;
}

}  // namespace
}  // namespace varcolin

#define STBI_MALLOC(ASize) varcolin::Allocate(ASize)
#define STBI_REALLOC(AMemory, ASize) varcolin::Reallocate(AMemory, ASize)
#define STBI_FREE(AMemory) std::free(AMemory)
#define STBI_ONLY_PNG
#define STBI_NO_STDIO
#define STBI_NO_LINEAR
#define STBI_NO_FAILURE_STRINGS
#define STB_IMAGE_STATIC
#define STB_IMAGE_IMPLEMENTATION
#include <stb/stb_image.h>

namespace varcolin {
namespace {

constexpr std::array<std::uint8_t, 8> Signature{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};

/// The number of four bytes at AOffset, the highest one first; the caller has seen that they are there.
std::uint32_t LongAt(std::span<const std::byte> AData, std::size_t AOffset) noexcept {
  std::uint32_t value = 0;
  for (const std::byte byte : AData.subspan(AOffset, 4)) value = value << 8U | std::to_integer<std::uint32_t>(byte);
  return value;
}

constexpr std::uint32_t Kind(char A, char B, char C, char D) noexcept {
  return std::uint32_t(A) << 24U | std::uint32_t(B) << 16U | std::uint32_t(C) << 8U | std::uint32_t(D);
}

/// The picture with those of its parts that are whole and say what it looks like, so that the decoder meets nothing
/// that leads it astray: a part that reaches past the end, one without data, a palette that lacks the colours which
/// pixels name. Empty for a picture with a part that it cannot be understood without and that is none of these.
std::vector<std::byte> WithSoundParts(std::span<const std::byte> AData) {
  constexpr std::size_t lead = 8;  // of a part: length and kind
  constexpr std::size_t tail = 4;  // its checksum, which the decoder passes over
  constexpr std::uint32_t wholePalette = 256 * 3;
  constexpr std::uint32_t optional = 0x20000000;  // a bit of the kind
  std::vector<std::byte> result(AData.begin(), AData.begin() + Signature.size());
  AData = AData.subspan(Signature.size());
  while (AData.size() >= lead + tail) {
    const std::uint32_t length = LongAt(AData, 0);
    const std::uint32_t kind = LongAt(AData, 4);
    if (length > AData.size() - lead - tail) break;
    const auto part = AData.first(lead + length + tail);
    AData = AData.subspan(part.size());
    const bool isData = kind == Kind('I', 'D', 'A', 'T');
    const bool isPalette = kind == Kind('P', 'L', 'T', 'E');
    if (isData && length == 0) continue;
    if (isPalette && length < wholePalette) {
      const std::size_t at = result.size();
      result.insert(result.end(), part.begin(), part.end() - tail);
      result.resize(at + lead + wholePalette + tail);
      result[at + 2] = std::byte{wholePalette >> 8U};
      result[at + 3] = std::byte{wholePalette & 0xFFU};
    } else if (isData || isPalette || kind == Kind('I', 'H', 'D', 'R') || kind == Kind('t', 'R', 'N', 'S') ||
               kind == Kind('I', 'E', 'N', 'D')) {
      result.insert(result.end(), part.begin(), part.end());
    } else if ((kind & optional) == 0) {
      return {};
    }
  }
  return result;
}

}  // namespace

bool IsPng(std::span<const std::byte> AData) noexcept {
  return AData.size() >= Signature.size() &&
         std::equal(Signature.begin(), Signature.end(), AData.begin(),
                    [](std::uint8_t AWanted, std::byte AByte) { return std::byte{AWanted} == AByte; });
}

std::optional<TIconPixels> ReadPng(std::span<const std::byte> AData, std::uint32_t ALongestSide) {
  constexpr int channels = 4;
  if (!IsPng(AData) || AData.size() > MostBytes) return std::nullopt;
  const std::vector<std::byte> data = WithSoundParts(AData);
  const auto* bytes = reinterpret_cast<const stbi_uc*>(data.data());
  const auto size = static_cast<int>(data.size());
  const auto isSide = [&](int ASide) { return ASide > 0 && static_cast<std::uint32_t>(ASide) <= ALongestSide; };
  int width = 0;
  int height = 0;
  int inFile = 0;
  // asked for its size first, since a decoder takes the memory that a picture claims to need
  if (stbi_info_from_memory(bytes, size, &width, &height, &inFile) == 0 || !isSide(width) || !isSide(height)) {
    return std::nullopt;
  }
  const std::unique_ptr<stbi_uc, decltype(&std::free)> pixels(
      stbi_load_from_memory(bytes, size, &width, &height, &inFile, channels), &std::free);
  if (pixels == nullptr || !isSide(width) || !isSide(height)) return std::nullopt;
  const std::size_t count = static_cast<std::size_t>(width) * static_cast<std::size_t>(height) * channels;
  return TIconPixels{static_cast<std::uint32_t>(width), static_cast<std::uint32_t>(height),
                     std::vector<std::uint8_t>(pixels.get(), pixels.get() + count)};
}

}  // namespace varcolin
