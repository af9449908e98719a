#include "platform/simulated/IconPixels.h"

#include <algorithm>
#include <array>

#include "platform/simulated/PngReader.h"
#include "support/uBytes.h"

namespace varcolin {
namespace {

using TColour = std::array<std::uint8_t, 4>;  // red, green, blue, opacity

constexpr std::size_t BytesPerPixel = 4;
constexpr std::uint8_t Opaque = 255;
constexpr std::uint64_t BitmapHeader = 40;
constexpr std::uint64_t PaletteEntry = 4;

constexpr bool IsSide(std::int64_t ASide) noexcept { return ASide > 0 && ASide <= LongestIconSide; }

/// Bytes of a bitmap's row: it is filled up to four.
constexpr std::uint64_t RowSize(std::uint64_t AWidth, std::uint64_t ABits) noexcept {
  return (AWidth * ABits + 31) / 32 * 4;
}

/// A bitmap whose header has been checked. Its rows run from the bottom to the top.
class TBitmap {
 public:
  /// Nothing when the picture is no bitmap of an icon, or its colours are incomplete.
  static std::optional<TBitmap> Open(std::span<const std::byte> AData) {
    const auto headerSize = NumberAt<std::uint32_t>(AData, 0);
    const std::int64_t width = NumberAt<std::int32_t>(AData, 4);
    const std::int64_t height = NumberAt<std::int32_t>(AData, 8) / 2;
    const auto bits = NumberAt<std::uint16_t>(AData, 14);
    const auto compression = NumberAt<std::uint32_t>(AData, 16);
    constexpr std::array<std::uint16_t, 6> known{1, 4, 8, 16, 24, 32};
    if (headerSize < BitmapHeader || !IsSide(width) || !IsSide(height) || compression != 0) return std::nullopt;
    if (std::ranges::find(known, bits) == known.end()) return std::nullopt;
    TBitmap bitmap;
    bitmap.FWidth = static_cast<std::uint32_t>(width);
    bitmap.FHeight = static_cast<std::uint32_t>(height);
    bitmap.FBits = bits;
    const std::uint64_t used = NumberAt<std::uint32_t>(AData, 32);
    const std::uint64_t most = bits <= 8 ? std::uint64_t{1} << bits : 0;
    const std::uint64_t entries = used == 0 ? most : used;
    const std::uint64_t palette = headerSize;
    const std::uint64_t colours = palette + entries * PaletteEntry;
    const std::uint64_t mask = colours + RowSize(bitmap.FWidth, bits) * bitmap.FHeight;
    if (mask > AData.size()) return std::nullopt;
    const auto part = [&](std::uint64_t ABegin, std::uint64_t ASize) {
      return AData.subspan(static_cast<std::size_t>(ABegin), static_cast<std::size_t>(ASize));
    };
    bitmap.FPalette = part(palette, std::min(entries, most) * PaletteEntry);
    bitmap.FColours = part(colours, mask - colours);
    const std::uint64_t maskSize = RowSize(bitmap.FWidth, 1) * bitmap.FHeight;
    if (maskSize <= AData.size() - mask) bitmap.FMask = part(mask, maskSize);
    return bitmap;
  }

  /// Nothing when the mask would count and is incomplete.
  [[nodiscard]] std::optional<TIconPixels> Decode() const {
    TIconPixels pixels{FWidth, FHeight, {}};
    pixels.Bytes.reserve(std::size_t{FWidth} * FHeight * BytesPerPixel);
    bool hasOpacity = false;
    for (std::uint32_t row = 0; row < FHeight; ++row) {
      for (std::uint32_t column = 0; column < FWidth; ++column) {
        const TColour colour = ColourAt(row, column);
        hasOpacity = hasOpacity || colour[3] != 0;
        pixels.Bytes.insert(pixels.Bytes.end(), colour.begin(), colour.end());
      }
    }
    if (hasOpacity) return pixels;
    if (FMask.empty()) return std::nullopt;
    std::uint8_t* opacity = pixels.Bytes.data() + 3;
    for (std::uint32_t row = 0; row < FHeight; ++row) {
      for (std::uint32_t column = 0; column < FWidth; ++column, opacity += BytesPerPixel) {
        *opacity = Bits(FMask, row, column, 1) != 0 ? 0 : Opaque;
      }
    }
    return pixels;
  }

 private:
  /// The bits of one pixel of at most eight.
  [[nodiscard]] unsigned Bits(std::span<const std::byte> ARows, std::uint32_t ARow, std::uint32_t AColumn,
                              unsigned ABits) const noexcept {
    const std::uint64_t bit = std::uint64_t{AColumn} * ABits;
    const std::size_t at = (FHeight - 1 - ARow) * RowSize(FWidth, ABits) + bit / 8;
    const unsigned shift = 8 - ABits - static_cast<unsigned>(bit % 8);
    return std::to_integer<unsigned>(ARows[at]) >> shift & ((1U << ABits) - 1);
  }

  /// A colour of the picture; its opacity is 0 unless the bitmap tells it.
  [[nodiscard]] TColour ColourAt(std::uint32_t ARow, std::uint32_t AColumn) const noexcept {
    if (FBits <= 8) {
      return FromBytes(FPalette, Bits(FColours, ARow, AColumn, FBits) * PaletteEntry, false);
    }
    const std::size_t at = (FHeight - 1 - ARow) * RowSize(FWidth, FBits) + std::uint64_t{AColumn} * FBits / 8;
    if (FBits != 16) return FromBytes(FColours, at, FBits == 32);
    const unsigned value = NumberAt<std::uint16_t>(FColours, at);
    const auto part = [value](unsigned AShift) {
      const unsigned five = value >> AShift & 31U;
      return static_cast<std::uint8_t>(five << 3U | five >> 2U);
    };
    return {part(10), part(5), part(0), 0};
  }

  /// Blue, green and red as they lie in palettes and rows; black for a colour that the palette does not have.
  [[nodiscard]] static TColour FromBytes(std::span<const std::byte> AData, std::size_t AOffset,
                                         bool AHasOpacity) noexcept {
    const auto part = [&](std::size_t AIndex) { return NumberAt<std::uint8_t>(AData, AOffset + AIndex); };
    return {part(2), part(1), part(0), AHasOpacity ? part(3) : std::uint8_t{0}};
  }

  std::uint32_t FWidth = 0;
  std::uint32_t FHeight = 0;
  unsigned FBits = 0;
  std::span<const std::byte> FPalette;
  std::span<const std::byte> FColours;
  std::span<const std::byte> FMask;  // empty when it is incomplete
};

/// How much of each source pixel a target pixel covers. Both axes are measured in units of which a source pixel is
/// ATarget long and a target pixel ASource long, so that all shares are whole numbers.
struct TShare {
  std::size_t Index;
  std::uint64_t Amount;
};

std::vector<TShare> SharesOf(std::uint64_t APosition, std::uint64_t ASource, std::uint64_t ATarget) {
  const std::uint64_t begin = APosition * ASource;
  const std::uint64_t end = begin + ASource;
  std::vector<TShare> shares;
  for (std::uint64_t index = begin / ATarget; index * ATarget < end; ++index) {
    const std::uint64_t first = std::max(begin, index * ATarget);
    const std::uint64_t last = std::min(end, (index + 1) * ATarget);
    shares.push_back({static_cast<std::size_t>(index), last - first});
  }
  return shares;
}

}  // namespace

std::optional<TIconPixels> DecodeIconPicture(std::span<const std::byte> APicture) {
  if (IsPng(APicture)) return ReadPng(APicture, LongestIconSide);
  const std::optional<TBitmap> bitmap = TBitmap::Open(APicture);
  return bitmap ? bitmap->Decode() : std::nullopt;
}

TIconPixels ScalePixels(const TIconPixels& APixels, std::uint32_t AWidth, std::uint32_t AHeight) {
  if (APixels.Width == AWidth && APixels.Height == AHeight) return APixels;
  TIconPixels result{AWidth, AHeight, {}};
  result.Bytes.reserve(std::size_t{AWidth} * AHeight * BytesPerPixel);
  std::vector<std::vector<TShare>> columns;
  for (std::uint32_t column = 0; column < AWidth; ++column) columns.push_back(SharesOf(column, APixels.Width, AWidth));
  const std::uint64_t area = std::uint64_t{APixels.Width} * APixels.Height;
  for (std::uint32_t row = 0; row < AHeight; ++row) {
    const std::vector<TShare> rows = SharesOf(row, APixels.Height, AHeight);
    for (const std::vector<TShare>& across : columns) {
      std::array<std::uint64_t, 3> colours{};  // a transparent pixel's colour does not count
      std::uint64_t opacity = 0;
      for (const TShare& down : rows) {
        for (const TShare& share : across) {
          const std::uint8_t* pixel = &APixels.Bytes[(down.Index * APixels.Width + share.Index) * BytesPerPixel];
          const std::uint64_t weight = down.Amount * share.Amount * pixel[3];
          opacity += weight;
          for (std::size_t part = 0; part < colours.size(); ++part) colours[part] += weight * pixel[part];
        }
      }
      for (const std::uint64_t colour : colours) {
        result.Bytes.push_back(opacity == 0 ? 0 : static_cast<std::uint8_t>((colour + opacity / 2) / opacity));
      }
      result.Bytes.push_back(static_cast<std::uint8_t>((opacity + area / 2) / area));
    }
  }
  return result;
}

}  // namespace varcolin
