#include <gtest/gtest.h>

#include "common/VersionBytes.h"

#include "siblings/VersionResource.h"

namespace varcolin {
namespace {

using namespace testing;

TBytes UsualResource() {
  return Resource({Strings({Table(u"040904B0", {String(u"CompanyName", u"Example Ltd."), String(u"Empty", u""),
                                                String(u"ProductVersion", u"1.2.3")})}),
                   Translations({{0x0409, 0x04B0}})});
}

TEST(VersionResource, PicksTheTable) {
  const TBytes german = Table(u"040704b0", {String(u"CompanyName", u"Beispiel"), String(u"Comments", u"deutsch")});
  const TBytes english = Table(u"040904B0", {String(u"CompanyName", u"Example"), String(u"FileVersion", u"9")});
  const TBytes ansi = Table(u"040904E4", {String(u"CompanyName", u"Ansi")});
  const TBytes french = Table(u"040C04B0", {String(u"CompanyName", u"Exemple")});
  const TBytes nameless = Table(u"english", {String(u"CompanyName", u"Nameless")});

  struct TCase {
    const char* What;
    TBytes Data;
    std::u16string_view Name;
    std::u16string_view Value;
    std::optional<std::uint16_t> Language;
  };
  const TCase cases[] = {
      {"first translation", Resource({Strings({english, german}), Translations({{0x407, 0x4B0}, {0x409, 0x4B0}})}),
       u"companyname", u"Beispiel", 0x407},
      {"second translation has the text",
       Resource({Strings({german, english}), Translations({{0x407, 0x4B0}, {0x409, 0x4B0}})}), u"FileVersion", u"9",
       0x407},
      {"the translations before the strings", Resource({Translations({{0x407, 0x4B0}}), Strings({english, german})}),
       u"CompanyName", u"Beispiel", 0x407},
      {"translation without a table", Resource({Strings({french, ansi}), Translations({{0x411, 0x4B0}})}),
       u"CompanyName", u"Ansi", 0x411},
      {"no translations", Resource({Strings({french, ansi, english})}), u"CompanyName", u"Example", 0x40C},
      {"only an unusual table", Resource({Strings({french})}), u"CompanyName", u"Exemple", 0x40C},
      {"a table without a language", Resource({Strings({nameless})}), u"CompanyName", u"Nameless", std::nullopt},
      {"no such text", Resource({Strings({english})}), u"Comments", u"", 0x409},
      {"another resource", Resource({Strings({english})}, u"VS_OTHER_INFO"), u"CompanyName", u"", std::nullopt},
      {"a text whose length counts bytes",
       Resource({Strings({Table(u"040904B0", {Node(u"CompanyName", 1, Text(u"Example"), 16)})})}), u"CompanyName",
       u"Example", 0x409},
      {"a text without a terminator",
       Resource({Strings({Table(
           u"040904B0", {Node(u"CompanyName", 1, {std::byte{'A'}, std::byte{}, std::byte{'B'}, std::byte{}}, 2)})})}),
       u"CompanyName", u"AB", 0x409},
      {"a broken translation at the end", Resource({Strings({german}), Translations({{0x407, 0x4B0}}, 3)}),
       u"CompanyName", u"Beispiel", 0x407},
  };
  for (const TCase& test : cases) {
    SCOPED_TRACE(test.What);
    const TVersionResource resource(test.Data);
    EXPECT_EQ(resource.Value(test.Name), test.Value);
    EXPECT_EQ(resource.Language(), test.Language);
  }
}

/// A text may be lost or cut short by a broken resource, but never comes from outside it. Each resource lies in a block
/// of just its size, so that a sanitizer sees a read past its end.
TEST(VersionResource, EveryTruncation) {
  const TBytes whole = UsualResource();
  const std::u16string_view value = u"Example Ltd.";
  std::size_t found = 0;
  for (std::size_t size = 0; size <= whole.size(); ++size) {
    const TBytes cut(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size));
    const std::u16string text = TVersionResource(cut).Value(u"CompanyName");
    EXPECT_TRUE(value.starts_with(text)) << size;
    found += text == value ? 1 : 0;
  }
  EXPECT_GT(found, 1U);
}

/// Every 16-bit word in turn takes the values that lengths lie with.
TEST(VersionResource, EveryLyingWord) {
  const TBytes whole = UsualResource();
  for (std::size_t offset = 0; offset + 2 <= whole.size(); offset += 2) {
    for (const std::uint16_t lie : {0, 1, 5, 6, 7, 0x7FFF, 0xFFFD, 0xFFFF}) {
      TBytes broken = whole;
      broken[offset] = static_cast<std::byte>(lie & 0xFF);
      broken[offset + 1] = static_cast<std::byte>(lie >> 8);
      const TVersionResource resource(broken);
      EXPECT_LE(resource.Value(u"CompanyName").size(), whole.size() / 2);
      EXPECT_LE(resource.Translations().size(), whole.size() / 4);
    }
  }
}

TEST(VersionResource, ManyTablesAndTranslationsStayCheap) {
  std::vector<TBytes> tables;
  for (int i = 0; i < 1500; ++i) tables.push_back(Table(u"04090000", {}));
  const std::vector<TVersionTranslation> translations(5000, TVersionTranslation{0x407, 0x4B0});
  const TBytes data = Resource({Translations(translations), Strings(tables)});
  const TVersionResource resource(data);
  EXPECT_EQ(resource.Value(u"CompanyName"), u"");
  EXPECT_LT(resource.Translations().size(), 100U);
}

}  // namespace
}  // namespace varcolin
