// Pictures of icons as the simulated machine draws them: every form, and bytes that lie.
#include "platform/simulated/IconPixels.h"

#include <gtest/gtest.h>

#include <random>

#include "common/Bytes.h"
#include "host/Picture.h"
#include "platform/simulated/SimulatedMachine.h"

namespace varcolin {
namespace {

using testing::Append;
using testing::Put;
using testing::TBytes;

TBytes FromHex(std::string_view AHex) {
  TBytes bytes;
  for (std::size_t at = 0; at < AHex.size(); at += AHex[at] == ' ' ? 1 : 2) {
    if (AHex[at] != ' ')
      bytes.push_back(static_cast<std::byte>(std::stoul(std::string(AHex.substr(at, 2)), nullptr, 16)));
  }
  return bytes;
}

/// A picture of two by two pixels; its rows and those of its mask run from the bottom to the top.
TBytes Bitmap(unsigned ABits, std::string_view APalette, std::string_view ARows, std::string_view AMask) {
  TBytes bytes;
  for (const std::uint64_t number : {40, 2, 4}) Put(bytes, number, 4);
  Put(bytes, 1, 2);
  Put(bytes, ABits, 2);
  Put(bytes, 0, 16);
  Put(bytes, FromHex(APalette).size() / 4, 4);
  Put(bytes, 0, 4);
  for (const std::string_view part : {APalette, ARows, AMask}) Append(bytes, FromHex(part));
  return bytes;
}

constexpr std::string_view Palette = "0000FF00 00FF0000 FF000000";
constexpr std::string_view LastIsClear = "40000000 00000000";

struct TPictureCase {
  const char* Name;
  TBytes Bytes;
  std::string_view Pixels;  // by a letter each
};

const TPictureCase Pictures[] = {
    {"1 bit", Bitmap(1, "0000FF00 00FF0000", "80000000 40000000", LastIsClear), "RGG."},
    {"4 bits", Bitmap(4, Palette, "20000000 01000000", LastIsClear), "RGB."},
    {"8 bits", Bitmap(8, Palette, "02000000 00010000", LastIsClear), "RGB."},
    {"8 bits, colours that the palette lacks", Bitmap(8, Palette, "09FF0000 00010000", "00000000 00000000"), "RGKK"},
    {"16 bits", Bitmap(16, "", "1F000000 007CE003", LastIsClear), "RGB."},
    {"24 bits", Bitmap(24, "", "FF00000000000000 0000FF00FF000000", LastIsClear), "RGB."},
    {"24 bits behind a palette", Bitmap(24, Palette, "FF00000000000000 0000FF00FF000000", LastIsClear), "RGB."},
    {"32 bits with a mask", Bitmap(32, "", "FF00000000000000 0000FF0000FF0000", LastIsClear), "RGB."},
    {"32 bits with opacity", Bitmap(32, "", "FF0000FF00000000 0000FFFF00FF00FF", "FFFFFFFF FFFFFFFF"), "RGB."},
    {"32 bits with opacity alone", Bitmap(32, "", "FF0000FF00000000 0000FFFF00FF00FF", ""), "RGB."},
};

/// What an image list of images of two by two pixels shows of a picture, by a letter a pixel; nothing when it cannot.
std::string Shown(const TBytes& APicture) {
  TSimulatedMachine machine{TSimulatedFacts{}};
  TSimulatedIcons& icons = machine.Icons();
  TImageList list;
  std::int32_t index = -1;
  EXPECT_EQ(icons.MakeImageList(2, 2, 1, 1, list), WinError::Success);
  const TIcon icon = icons.MakeIcon({2, 2, std::make_shared<const TBytes>(APicture)});
  EXPECT_EQ(icons.AppendIcon(list, icon, index), WinError::Success);
  EXPECT_FALSE(icons.Draw(list.Value(), index + 1) || icons.Draw(list.Value(), -1) || icons.Draw(icon.Value(), 0));
  const std::optional<TIconPixels> pixels = icons.Draw(list.Value(), index);
  std::string letters;
  for (std::size_t at = 0; pixels && at < pixels->Bytes.size(); at += 4) {
    const std::uint8_t* pixel = &pixels->Bytes[at];
    const unsigned bits = (pixel[0] / 255U) | (pixel[1] / 255U) << 1 | (pixel[2] / 255U) << 2;
    letters += pixel[3] == 0 ? '.' : pixel[3] != 255 ? '?' : "KRG?B???"[bits];
  }
  return letters;
}

TEST(IconPixels, ShowsEveryFormOfABitmap) {
  for (const TPictureCase& picture : Pictures) EXPECT_EQ(Shown(picture.Bytes), picture.Pixels) << picture.Name;
}

/// A PNG picture of two by two pixels, an index each, whose bytes are not packed.
TBytes PngWith(std::string_view APalette, std::string_view ARows, std::uint32_t AWidth = 2) {
  TBytes png = FromHex("89504E470D0A1A0A");
  const auto chunk = [&](std::string_view AKind, const TBytes& AData) {
    for (const std::uint32_t shift : {24, 16, 8, 0}) Put(png, AData.size() >> shift & 0xFFU, 1);
    for (const char letter : AKind) Put(png, static_cast<unsigned char>(letter), 1);
    Append(png, AData);
    Put(png, 0, 4);
  };
  TBytes header;
  for (const std::uint32_t shift : {24, 16, 8, 0}) Put(header, AWidth >> shift & 0xFFU, 1);
  Append(header, FromHex("00000002 08 03 000000"));
  const TBytes rows = FromHex(ARows);
  TBytes data = FromHex("7801 01");
  Put(data, rows.size(), 2);
  Put(data, ~rows.size() & 0xFFFFU, 2);
  Append(data, rows);
  Put(data, 0, 4);
  chunk("IHDR", header);
  chunk("PLTE", FromHex(APalette));
  chunk("IDAT", data);
  chunk("IEND", {});
  return png;
}

TEST(IconPixels, ShowsPngPictures) {
  host::TPicture picture(2, 2);
  picture.Pixels = {255, 0, 0, 255, 0, 255, 0, 255, 0, 0, 255, 255, 9, 9, 9, 0};
  const std::string png = host::FormatPng(picture);
  const std::span<const std::byte> bytes = std::as_bytes(std::span(png));
  EXPECT_EQ(Shown(TBytes(bytes.begin(), bytes.end())), "RGB.");
  EXPECT_EQ(Shown(PngWith("FF0000 00FF00", "000001 000101")), "RGGG");
  EXPECT_EQ(Shown(PngWith("FF0000", "000001 0009FF")), "RKKK") << "colours that the palette lacks";
  EXPECT_EQ(Shown(PngWith("FF0000", "000001 0009FF", 1025)), "") << "larger than any icon";
  EXPECT_EQ(Shown(PngWith("FF0000", "0000")), "") << "too few pixels";
}

TEST(IconPixels, RefusesWhatIsIncompleteOrLies) {
  for (const TPictureCase& picture : Pictures) {
    const bool isOpaqueByItself = std::string_view(picture.Name).find("opacity") != std::string_view::npos;
    const std::size_t needed = isOpaqueByItself ? 40 + 16 : picture.Bytes.size();
    for (std::size_t size = 0; size < needed; ++size) {
      EXPECT_EQ(Shown(TBytes(picture.Bytes.begin(), picture.Bytes.begin() + static_cast<std::ptrdiff_t>(size))), "")
          << picture.Name << " cut to " << size;
    }
  }
  const struct {
    const char* Lie;
    std::size_t At;
    std::uint32_t Value;
    std::size_t Size;
  } lies[] = {{"a header of another kind", 0, 12, 4},
              {"a header past the end", 0, 0xFFFFFFF0, 4},
              {"no columns", 4, 0, 4},
              {"columns to the left", 4, 0xFFFFFFFE, 4},
              {"too many columns", 4, 0x7FFFFFFF, 4},
              {"no rows", 8, 1, 4},
              {"rows from the top", 8, 0xFFFFFFFC, 4},
              {"too many rows", 8, 0x7FFFFFFF, 4},
              {"a depth that is none", 14, 2, 2},
              {"packed", 16, 1, 4},
              {"a palette past the end", 32, 0x40000001, 4}};
  for (const auto& [lie, at, value, size] : lies) {
    TBytes picture = Pictures[2].Bytes;
    testing::Patch(picture, at, value, size);
    EXPECT_EQ(Shown(picture), "") << lie;
  }
}

TEST(IconPixels, SurvivesFlippedBytes) {
  std::mt19937 random(20120809);
  std::vector<TBytes> seeds{PngWith("FF0000 00FF00", "000001 000101")};
  for (const TPictureCase& picture : Pictures) seeds.push_back(picture.Bytes);
  for (int round = 0; round < 5000; ++round) {
    TBytes broken = seeds[static_cast<std::size_t>(round) % seeds.size()];
    for (int i = 0; i < 3; ++i) broken[random() % broken.size()] = static_cast<std::byte>(random());
    const std::optional<TIconPixels> pixels = DecodeIconPicture(broken);
    EXPECT_TRUE(!pixels || pixels->Bytes.size() == std::size_t{pixels->Width} * pixels->Height * 4);
  }
}

TEST(IconPixels, ScalesByWhatIsCovered) {
  const TIconPixels source{2, 2, {200, 0, 0, 255, 100, 0, 0, 255, 9, 9, 9, 0, 9, 9, 9, 0}};
  const TIconPixels one = ScalePixels(source, 1, 1);
  EXPECT_EQ(one.Bytes, (std::vector<std::uint8_t>{150, 0, 0, 128})) << "clear pixels lend no colour";
  const TIconPixels wide = ScalePixels(source, 3, 2);
  EXPECT_EQ(std::vector(wide.Bytes.begin(), wide.Bytes.begin() + 12),
            (std::vector<std::uint8_t>{200, 0, 0, 255, 150, 0, 0, 255, 100, 0, 0, 255}));
  EXPECT_EQ(ScalePixels(wide, 2, 2).Bytes.size(), 16U);
}

}  // namespace
}  // namespace varcolin
