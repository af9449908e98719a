// Resources of executables: what is found in sound files, and that broken ones do no harm.
#include "platform/simulated/PeResources.h"

#include <gtest/gtest.h>

#include <random>

#include "common/PeBuilder.h"
#include "common/VersionBytes.h"

namespace varcolin {
namespace {

using testing::TBytes;

constexpr std::uint8_t Sides[] = {16, 32, 48};

TBytes Sample(bool AIs64) {
  testing::TPeBuilder builder;
  builder.AddStrings(0, std::to_array<std::u16string_view>({u"zero", u"one"}));
  builder.AddStrings(0, std::to_array<std::u16string_view>({u"null", u"eins"}), 0x407);
  builder.AddStrings(0, std::to_array<std::u16string_view>({u"neutral"}), 0);
  builder.AddIcon(7, Sides);
  builder.AddIcon(9, std::span(Sides).first(1));
  builder.Add(16, 1, testing::MakeVersion(1, 2));
  return builder.Build(AIs64);
}

/// Asks for everything that can be asked for; returns how much came back.
std::size_t ReadAll(std::span<const std::byte> AFile) {
  std::size_t size = 0;
  for (const TIconImage& image : ReadIconFile(AFile)) size += image.Data.size();
  const std::optional<TPeResources> resources = TPeResources::Open(AFile);
  if (!resources) return size;
  for (const std::uint32_t id : {0U, 1U, 15U, 16U, 0xFFFFU}) size += resources->FindString(id, 0x409).size();
  for (const std::int32_t index : {0, 1, -7, -9, 100, -100000}) {
    for (const TIconImage& image : resources->FindIcon(index)) size += image.Data.size();
  }
  if (const auto version = resources->At(PeResource::Version, 0)) size += version->size();
  return size;
}

TEST(PeResourcesTest, FindsWhatIsThere) {
  for (const bool is64 : {false, true}) {
    const TBytes file = Sample(is64);
    const std::optional<TPeResources> resources = TPeResources::Open(file);
    ASSERT_TRUE(resources);
    EXPECT_EQ(resources->ProcessorKind(), is64 ? 0x8664 : 0x14C);
    EXPECT_EQ(resources->FindString(1, 0x409), u"one");
    EXPECT_EQ(resources->FindString(1, 0x407), u"eins");
    EXPECT_EQ(resources->FindString(1, 0xC07), u"eins") << "another country of the language";
    EXPECT_EQ(resources->FindString(0, 0x411), u"neutral") << "no such language";
    EXPECT_EQ(resources->FindString(2), u"");
    EXPECT_EQ(resources->FindString(0x10001, 0x409), u"one") << "the low word counts";
    EXPECT_EQ(resources->FindIcon(0).size(), 3U);
    EXPECT_EQ(resources->FindIcon(1).size(), 1U);
    EXPECT_EQ(resources->FindIcon(2).size(), 0U);
    EXPECT_EQ(resources->FindIcon(-9).size(), 1U);
    EXPECT_EQ(resources->FindIcon(-8).size(), 0U);
    const TBytes version = testing::MakeVersion(1, 2);
    const auto found = resources->Find(PeResource::Version, 1);
    ASSERT_TRUE(found);
    EXPECT_TRUE(std::equal(found->begin(), found->end(), version.begin(), version.end()));
  }
  const TBytes bare = testing::TPeBuilder().Build();
  const std::optional<TPeResources> none = TPeResources::Open(bare);
  ASSERT_TRUE(none);
  EXPECT_FALSE(none->HasResources());
  EXPECT_EQ(none->FindString(0), u"");
}

TEST(PeResourcesTest, ChoosesTheImageForASize) {
  const TBytes file = testing::MakeIconFile(Sides);
  const std::vector<TIconImage> images = ReadIconFile(file);
  ASSERT_EQ(images.size(), 3U);
  const struct {
    std::uint32_t Size;
    std::uint32_t Width;
  } cases[] = {{8, 16}, {16, 16}, {17, 32}, {32, 32}, {33, 48}, {256, 48}};
  for (const auto& [size, width] : cases) EXPECT_EQ(ChooseImage(images, size)->Width, width) << size;
  EXPECT_EQ(ChooseImage({}, 16), nullptr);
}

TEST(PeResourcesTest, SurvivesEveryTruncation) {
  for (const bool is64 : {false, true}) {
    const TBytes whole = Sample(is64);
    const std::size_t complete = ReadAll(whole);
    EXPECT_GT(complete, 1000U);
    for (std::size_t size = 0; size < whole.size(); size += size < 2048 ? 1 : 37) {
      const TBytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
      EXPECT_LE(ReadAll(cut), complete);
    }
  }
  const TBytes icon = testing::MakeIconFile(Sides);
  for (std::size_t size = 0; size < icon.size(); size += 3) {
    static_cast<void>(ReadAll(std::span(icon).first(size)));
  }
}

TEST(PeResourcesTest, SurvivesFlippedBytes) {
  const TBytes whole = Sample(false);
  const TBytes icon = testing::MakeIconFile(Sides);
  std::mt19937 random(20120809);
  for (int round = 0; round < 3000; ++round) {
    TBytes broken = round % 4 == 0 ? icon : whole;
    // headers and directories stand in front
    const std::size_t range = std::min<std::size_t>(broken.size(), 1200);
    for (int i = 0; i < 4; ++i) broken[random() % range] = static_cast<std::byte>(random());
    static_cast<void>(ReadAll(broken));
  }
}

TEST(PeResourcesTest, DirectoriesThatLieEndSoon) {
  constexpr std::size_t Resources = 0x200;  // where the builder puts them
  // every directory claims the most entries there can be, and they all lead back to the first directory
  TBytes file = Sample(false);
  file.resize(file.size() + 0x200000);
  testing::Patch(file, 0x40 + 24 + 224 + 16, file.size() - Resources, 4);  // the section is as long as the file
  for (std::size_t at = Resources; at + 16 <= file.size(); at += 8) {
    testing::Patch(file, at, 3, 4);
    testing::Patch(file, at + 4, 0x80000000U, 4);
  }
  testing::Patch(file, Resources + 12, 0xFFFFFFFF, 4);
  EXPECT_EQ(ReadAll(file), 0U);
  // a string whose length reaches past its block
  testing::TPeBuilder builder;
  TBytes block;
  testing::Put(block, 0xFFFF, 2);
  testing::Put(block, u'x', 2);
  builder.Add(6, 1, block);
  const TBytes lying = builder.Build();
  const std::optional<TPeResources> resources = TPeResources::Open(lying);
  EXPECT_EQ(resources->FindString(0), u"");
  EXPECT_EQ(resources->FindString(1), u"");
}

}  // namespace
}  // namespace varcolin
