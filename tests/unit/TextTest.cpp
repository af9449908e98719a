// Text without a locale: case, searching, splitting, conversions, paths.
#include <gtest/gtest.h>

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <unordered_set>
#include <vector>

#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

std::vector<std::byte> BytesOf(std::initializer_list<unsigned> AValues) {
  std::vector<std::byte> result;
  for (const unsigned value : AValues) result.push_back(static_cast<std::byte>(value));
  return result;
}

TEST(Text, CaseMapsUnitByUnit) {
  const struct {
    const char16_t* Lower;
    const char16_t* Upper;
  } pairs[] = {
      {u"abcxyz019[`{", u"ABCXYZ019[`{"},
      {u"\u00E4\u00F6\u00FC\u00FF\u00DF",
       u"\u00C4\u00D6\u00DC\u0178\u00DF"},  // the German sharp s has no single capital
      {u"\u03B1\u03C9\u1F80\u1FB3", u"\u0391\u03A9\u1F88\u1FBC"},
      {u"\u0436\u0451\u0458", u"\u0416\u0401\u0408"},
      {u"\u0101\u017E\u01C6\uFF41", u"\u0100\u017D\u01C4\uFF21"},
      {u"\U00010428", u"\U00010428"},  // a letter beyond the basic plane
  };
  for (const auto& pair : pairs) {
    EXPECT_EQ(UpperCase(pair.Lower), pair.Upper);
    EXPECT_EQ(LowerCase(pair.Upper), pair.Lower);
    EXPECT_TRUE(SameText(pair.Lower, pair.Upper));
    EXPECT_EQ(HashText(pair.Lower), HashText(pair.Upper));
  }
  EXPECT_TRUE(SameText(u"\u03C2", u"\u03C3")) << "both forms of sigma have one capital";
  EXPECT_TRUE(SameText(u"\u01C5", u"\u01C6")) << "a title-case letter";
  // no letter outside ASCII is the same as one inside: dotless i, dotted I, long s, Kelvin sign
  for (const char16_t unit : u"\u0130\u0131\u017F\u212A") {
    if (unit == 0) break;
    EXPECT_GE(UpperChar(unit), 0x80);
    EXPECT_GE(LowerChar(unit), 0x80);
  }
}

TEST(Text, MappingTwiceChangesNothing) {
  for (std::uint32_t code = 0; code < 0x10000; ++code) {
    const auto unit = static_cast<char16_t>(code);
    EXPECT_EQ(UpperChar(UpperChar(unit)), UpperChar(unit)) << code;
    EXPECT_EQ(LowerChar(LowerChar(unit)), LowerChar(unit)) << code;
  }
}

TEST(Text, ComparesUpperCased) {
  EXPECT_EQ(CompareText(u"", u""), 0);
  EXPECT_LT(CompareText(u"", u"a"), 0);
  EXPECT_LT(CompareText(u"ab", u"ABC"), 0);
  EXPECT_GT(CompareText(u"b", u"A"), 0);
  EXPECT_GT(CompareText(u"_", u"z"), 0) << "the underscore stands behind the capitals";
  EXPECT_FALSE(SameText(u"abc", u"abcd"));
  EXPECT_TRUE(StartsText(u"", u"x") && StartsText(u"HKEY", u"hkey_users") && !StartsText(u"abc", u"ab"));
  EXPECT_TRUE(EndsText(u" (X86)", u"Programs (x86)") && !EndsText(u"xabc", u"abc"));
}

TEST(Text, FindsAndReplaces) {
  EXPECT_EQ(FindText(u"B", u"abcb"), 1U);
  EXPECT_EQ(FindText(u"B", u"abcb", 2), 3U);
  EXPECT_EQ(FindText(u"b", u"abcb", 99), std::u16string_view::npos);
  EXPECT_EQ(FindText(u"", u"abc"), std::u16string_view::npos);
  EXPECT_EQ(FindText(u"abcd", u"abc"), std::u16string_view::npos);
  EXPECT_EQ(ReplaceAllText(u"aAbaa", u"A", u"aa"), u"aaaabaaaa") << "what was put in is not searched again";
  EXPECT_EQ(ReplaceAllText(u"aaa", u"aa", u"x"), u"xa");
  EXPECT_EQ(ReplaceAllText(u"abc", u"", u"x"), u"abc");
}

TEST(Text, TrimsSplitsAndReadsNumbers) {
  EXPECT_EQ(Trim(u" \t\r\n a b \x01"), u"a b");
  EXPECT_EQ(Trim(u" \u00A0 "), u"\u00A0");
  EXPECT_TRUE(Trim(u"   ").empty());
  EXPECT_TRUE(Split(u"", u';').empty());
  EXPECT_EQ(Split(u";a b;;", u';'), (std::vector<std::u16string_view>{u"", u"a b", u"", u""}));
  EXPECT_EQ(IntToStr(INT64_MIN), u"-9223372036854775808");
  std::uint32_t number = 7;
  for (const char16_t* bad : {u"", u"-1", u"+1", u" 1", u"1 ", u"4294967296", u"99999999999999999999999", u"\uFF11"}) {
    EXPECT_FALSE(TryDigitsToInt(bad, number));
  }
  EXPECT_EQ(number, 7U);
  EXPECT_TRUE(TryDigitsToInt(u"0004294967295", number));
  EXPECT_EQ(number, 4294967295U);
}

TEST(Text, ConvertsToAndFromUtf8) {
  EXPECT_EQ(ToUtf8(u"a\u00E4\u20AC\U0001F600"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80");
  std::u16string used(30, u'x');
  AssignUtf8(used, "a\xC3\xA4");
  EXPECT_EQ(used, u"a\u00E4");
  AssignUtf8(used, "b");
  EXPECT_EQ(used, u"b");
  EXPECT_EQ(FromUtf8("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80"), u"a\u00E4\u20AC\U0001F600");
  const std::u16string lone[] = {{0xD800}, {0xDC00}, {0xD800, u'x'}, {0xDC00, 0xD800}};
  const char* const shown[] = {"\xEF\xBF\xBD", "\xEF\xBF\xBD", "\xEF\xBF\xBDx", "\xEF\xBF\xBD\xEF\xBF\xBD"};
  for (std::size_t i = 0; i < std::size(lone); ++i) EXPECT_EQ(ToUtf8(lone[i]), shown[i]);

  const struct {
    std::string_view Bytes;
    std::u16string_view Text;
  } illFormed[] = {
      {"\x80", u"\uFFFD"},
      {"\xC0\xAF", u"\uFFFD\uFFFD"},                      // overlong
      {"\xE0\x80\xAF", u"\uFFFD\uFFFD\uFFFD"},            // overlong
      {"\xED\xA0\x80", u"\uFFFD\uFFFD\uFFFD"},            // a surrogate
      {"\xF4\x90\x80\x80", u"\uFFFD\uFFFD\uFFFD\uFFFD"},  // past the last code point
      {"\xF5\xFF", u"\uFFFD\uFFFD"},
      {"\xE2\x82", u"\uFFFD"},  // cut off: one maximal part
      {"\xF0\x9F\x98"
       "a",
       u"\uFFFD"
       u"a"},
      {"\xE2\x82\xC3\xA4", u"\uFFFD\u00E4"},
  };
  for (const auto& row : illFormed) EXPECT_EQ(FromUtf8(row.Bytes), row.Text);
}

TEST(Text, ReadsStoredStringsWhateverTheirTerminator) {
  EXPECT_EQ(TextFromBytes({}), u"");
  EXPECT_EQ(TextFromBytes(BytesOf({0x41})), u"");
  EXPECT_EQ(TextFromBytes(BytesOf({0x41, 0, 0xAC, 0x20})), u"A\u20AC");
  EXPECT_EQ(TextFromBytes(BytesOf({0x41, 0, 0x42})), u"A");
  EXPECT_EQ(TextFromBytes(BytesOf({0x41, 0, 0, 0, 0x42, 0})), u"A");
  EXPECT_EQ(TextFromBytes(BytesOf({0, 0xD8})), std::u16string(1, 0xD800));
  // wherever it ends, whatever stands beside the end, and wherever in memory that is
  for (const char16_t unit : {u'a', u'\x80', u'\u0100', u'\u8000', u'\uFF00', u'\uFFFF', u'\u0001'}) {
    for (std::size_t length = 0; length < 10; ++length) {
      std::u16string text(length, unit);
      text.append(1, u'\0').append(9, unit);
      std::vector<std::byte> bytes(1);
      bytes.insert(bytes.end(), std::as_bytes(std::span(text)).begin(), std::as_bytes(std::span(text)).end());
      EXPECT_EQ(TextFromBytes(std::span(bytes).subspan(1)), text.substr(0, length));
      EXPECT_EQ(UnitsToNul(std::span(bytes).subspan(1, 2 * length)), length) << "the bytes end before it";
    }
  }
}

TEST(Text, HashesAreThoseOfTheUpperCase) {
  for (std::uint32_t code = 1; code < 0x10000; ++code) {
    std::u16string text = u"aB\u00E4Cd_fGh";
    text[code % text.size()] = static_cast<char16_t>(code);
    ASSERT_EQ(HashText(text), HashText(UpperCase(text))) << code;
  }
  // names that differ in one unit, wherever it stands
  std::unordered_set<std::uint16_t> ends;
  const std::u16string name = u"Package_1_for_KB2000000~amd64~~6.1";
  for (std::size_t at = 0; at < name.size(); ++at) {
    for (char16_t unit = u'0'; unit <= u'9'; ++unit) {
      std::u16string changed = name;
      changed[at] = unit;
      if (changed != name) ends.insert(static_cast<std::uint16_t>(HashText(changed)));
    }
  }
  EXPECT_GT(ends.size(), 320U) << "the low bits tell nearly all of the some 330 apart";
}

TEST(Text, TakesPathsApart) {
  const struct {
    std::u16string_view Path, Folder, Name, Extension;
  } rows[] = {
      {u"", u"", u"", u""},
      {u"C:\\a.b\\c", u"C:\\a.b\\", u"c", u""},
      {u"C:\\a\\b.tar.gz", u"C:\\a\\", u"b.tar.gz", u".gz"},
      {u"C:file.txt", u"C:", u"file.txt", u".txt"},
      {u"a/b.c", u"", u"a/b.c", u".c"},
      {u"a\\", u"a\\", u"", u""},
      {u".", u"", u".", u"."},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(ExtractFilePath(row.Path), row.Folder);
    EXPECT_EQ(ExtractFileName(row.Path), row.Name);
    EXPECT_EQ(ExtractFileExt(row.Path), row.Extension);
  }
  EXPECT_EQ(IncludeTrailingPathDelimiter(u""), u"\\");
  EXPECT_EQ(IncludeTrailingPathDelimiter(u"a\\"), u"a\\");
  EXPECT_EQ(ExcludeTrailingPathDelimiter(u"a\\\\"), u"a\\");
}

}  // namespace
}  // namespace varcolin
