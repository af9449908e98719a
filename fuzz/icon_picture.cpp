// Pictures of icons: bitmaps and PNG, from executables and icon files.
#include "fuzz/Fuzz.h"
#include "platform/simulated/IconPixels.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* AData, std::size_t ASize) {
  using namespace varcolin;
  const std::optional<TIconPixels> pixels = DecodeIconPicture(fuzz::AsInput(AData, ASize));
  if (!pixels) return 0;
  fuzz::Check(pixels->Width > 0 && pixels->Width <= LongestIconSide, "a picture has columns");
  fuzz::Check(pixels->Height > 0 && pixels->Height <= LongestIconSide, "a picture has rows");
  fuzz::Check(pixels->Bytes.size() == std::size_t{pixels->Width} * pixels->Height * 4, "all pixels are there");
  const TIconPixels small = ScalePixels(*pixels, 16, 16);
  fuzz::Check(small.Bytes.size() == std::size_t{16} * 16 * 4, "all pixels are there at another size");
  return 0;
}
