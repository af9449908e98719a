// What the image lists of "Varcolin.dll" show. The library lives in this process, so its handles are the host's too.
#include <algorithm>
#include <memory>

#include "host/Library.h"
#include "host/SystemCalls.windows.h"

namespace varcolin::host {

namespace {

struct TIconDeleter {
  void operator()(void* AIcon) const noexcept { DestroyIcon(AIcon); }
};
struct TBitmapDeleter {
  void operator()(void* ABitmap) const noexcept { DeleteObject(ABitmap); }
};
struct TContextDeleter {
  void operator()(void* AContext) const noexcept { DeleteDC(AContext); }
};
using TIcon = std::unique_ptr<void, TIconDeleter>;
using TBitmap = std::unique_ptr<void, TBitmapDeleter>;
using TContext = std::unique_ptr<void, TContextDeleter>;

/// A bitmap's pixels: blue, green, red, opacity, row by row from the top. Without pixels when it cannot be read.
TPicture ReadBitmap(void* ABitmap) {
  constexpr std::int32_t longestSide = 1024;
  TBitmapFacts facts{};
  if (ABitmap == nullptr || GetObjectW(ABitmap, sizeof(facts), &facts) == 0) return {};
  if (facts.Width <= 0 || facts.Height <= 0 || std::max(facts.Width, facts.Height) > longestSide) return {};
  TPicture picture(static_cast<std::uint32_t>(facts.Width), static_cast<std::uint32_t>(facts.Height));
  TBitmapHeader header{sizeof(TBitmapHeader), facts.Width, -facts.Height, 1, 32, 0, 0, 0, 0, 0, 0};
  const TContext context(CreateCompatibleDC(nullptr));
  const int rows = GetDIBits(context.get(), ABitmap, 0, picture.Height, picture.Pixels.data(), &header, 0);
  return rows == facts.Height ? picture : TPicture();
}

/// Puts red in front of blue.
void SwapColours(TPicture& APicture) {
  for (std::size_t at = 0; at < APicture.Pixels.size(); at += TPicture::BytesPerPixel) {
    std::swap(APicture.Pixels[at], APicture.Pixels[at + 2]);
  }
}

/// Makes the pixels opaque but for those where the mask is white. The mask may go on below the picture's last row.
void ApplyMask(TPicture& APicture, const TPicture& AMask) {
  for (std::size_t at = 0; at < APicture.Pixels.size(); at += TPicture::BytesPerPixel) {
    APicture.Pixels[at + 3] = AMask.Pixels[at] != 0 ? 0 : 255;
  }
}

}  // namespace

std::optional<TPicture> TLibrary::DrawImage(TNativeUInt AImageList, std::int32_t AIndex) const {
  constexpr unsigned normal = 0;
  const TIcon icon(ImageList_GetIcon(reinterpret_cast<void*>(AImageList), AIndex, normal));
  TIconParts parts{};
  if (icon == nullptr || GetIconInfo(icon.get(), &parts) == 0) return std::nullopt;
  const TBitmap maskBitmap(parts.Mask);
  const TBitmap colourBitmap(parts.Colours);
  const TPicture mask = ReadBitmap(parts.Mask);
  TPicture colours = ReadBitmap(parts.Colours);
  if (parts.Colours == nullptr && mask.Height >= 2) {
    // black and white: mask and colours in one bitmap, half of its rows each
    colours = TPicture(mask.Width, mask.Height / 2);
    const std::size_t half = colours.Pixels.size();
    std::copy_n(mask.Pixels.begin() + static_cast<std::ptrdiff_t>(half), half, colours.Pixels.begin());
    ApplyMask(colours, mask);
  } else if (colours.IsClear()) {
    // colours without opacity: the mask tells what shows
    if (mask.Width != colours.Width || mask.Height < colours.Height) return std::nullopt;
    ApplyMask(colours, mask);
  }
  if (colours.Pixels.empty()) return std::nullopt;
  SwapColours(colours);
  return colours;
}

}  // namespace varcolin::host
