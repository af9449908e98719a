// Format strings, date-times, GUIDs and the texts of exceptions.
#include <gtest/gtest.h>

#include <stdexcept>

#include "services/uDLLGlobals.h"
#include "support/uDateTime.h"
#include "support/uExceptions.h"
#include "support/uFormat.h"
#include "support/uGuid.h"

namespace varcolin {
namespace {

TEST(Format, FollowsItsSpecifiers) {
  EXPECT_EQ(Format(u"", {}), u"");
  EXPECT_EQ(Format(u"100%%", {}), u"100%");
  EXPECT_EQ(Format(u"%s: %d.%d", {u"shell32.dll", 6U, 0}), u"shell32.dll: 6.0");
  EXPECT_EQ(Format(u"%1:s %0:s %s", {u"a", u"b"}), u"b a b") << "an index also moves those behind it";
  EXPECT_EQ(Format(u"[%5s|%-5s|%.2s|%5.1s]", {u"ab", u"ab", u"abc", u"abc"}), u"[   ab|ab   |ab|    a]");
  EXPECT_EQ(Format(u"%.4d %.4d %5d|%-5d|", {7, -7, -7, 7}), u"0007 -0007    -7|7    |");
  EXPECT_EQ(Format(u"%x %.8x %X", {0xABC, 0xABC, 255}), u"ABC 00000ABC FF");
  EXPECT_EQ(Format(u"%u %x %d", {std::int32_t{-1}, std::int32_t{-1}, std::int64_t{INT64_MIN}}),
            u"4294967295 FFFFFFFF -9223372036854775808");
  EXPECT_EQ(Format(u"%u", {std::uint64_t{UINT64_MAX}}), u"18446744073709551615");
  EXPECT_EQ(Format(u"\"%s\"", {u"50%d %s"}), u"\"50%d %s\"") << "an argument is never read as a format";
}

TEST(Format, RefusesWhatDoesNotFit) {
  const struct {
    const char16_t* Format;
    bool MissingArgument;
  } rows[] = {
      {u"%", false},
      {u"%q", false},
      {u"%5", false},
      {u"%.s", false},
      {u"%-", false},
      {u"%d", false},
      {u"%1:d", true},
      {u"%s%s", true},
      {u"%0:s%s", true},
      {u"%s%", false},
      {u"%99999999999s", false},
      {u"%5000s", false},
      {u"%.99999s", false},
      {u"%7777777:s", false},
  };
  for (const auto& row : rows) {
    const std::u16string format = row.Format;
    const std::u16string expected = row.MissingArgument
                                        ? u"No argument for format '" + format + u"'"
                                        : u"Format '" + format + u"' invalid or incompatible with argument";
    try {
      static_cast<void>(Format(format, {u"text"}));
      ADD_FAILURE() << "no exception";
    } catch (const EConvertError& e) {
      EXPECT_EQ(e.Message(), expected);
    }
  }
  EXPECT_THROW(static_cast<void>(Format(u"%s", {1})), EConvertError);
}

TEST(Exceptions, ShowClassAndMessage) {
  const auto textOf = [](auto AThrow) {
    try {
      AThrow();
    } catch (...) {
      return CurrentErrorText();
    }
    return TErrorText{};
  };
  EXPECT_EQ(textOf([] { throw EAssertionFailed(u"uItemProduct", 524); }).Message,
            u"Assertion failure (uItemProduct, line 524)");
  EXPECT_EQ(textOf([] { throw std::runtime_error("gr\xC3\xBC\xC3\x9F"); }).Message, u"gr\u00FC\u00DF");
  EXPECT_EQ(textOf([] { throw 1; }).ClassText, u"unknown exception");
  EXPECT_TRUE(CurrentErrorText().ClassText.empty());
  EXPECT_STREQ(EOSError(5, u"\u00FC").what(), "System Error.  Code: 5.\r\n\xC3\xBC");
}

TEST(DateTime, EncodesDays) {
  const struct {
    std::uint32_t Year, Month, Day;
    TDateTime Result;
  } rows[] = {{1899, 12, 30, 0},    {1899, 12, 29, -1},      {1900, 1, 1, 2},   {2000, 2, 29, 36585},
              {2012, 8, 15, 41136}, {9999, 12, 31, 2958465}, {1, 1, 1, -693593}};
  for (const auto& row : rows) {
    TDateTime result = 0.5;
    EXPECT_TRUE(TryEncodeDate(row.Year, row.Month, row.Day, result));
    EXPECT_EQ(result, row.Result) << row.Year;
  }
  const std::uint32_t bad[][3] = {{0, 1, 1},     {10000, 1, 1}, {2012, 0, 1},   {2012, 13, 1},         {2012, 1, 0},
                                  {2012, 4, 31}, {1900, 2, 29}, {2012, 257, 1}, {0xFFFFFFFF, 1, 0x101}};
  for (const auto& row : bad) {
    TDateTime result = 0.5;
    EXPECT_FALSE(TryEncodeDate(row[0], row[1], row[2], result));
    EXPECT_EQ(result, 0.5);
  }
}

TEST(DateTime, ConvertsFileTimes) {
  const TSystemTime time{2012, 8, 3, 15, 6, 7, 8, 90};
  const TFileTime fileTime = SystemTimeToFileTime(time);
  EXPECT_EQ(fileTime.Ticks, 129894844280900000U);
  const TSystemTime back = FileTimeToSystemTime(fileTime);
  EXPECT_EQ(FormatDateAndTime(back, u":"), u"2012.08.15 06:07:08.090");
  EXPECT_EQ(FormatTime(back, u"."), u"06.07.08.090");
  EXPECT_EQ(back.DayOfWeek, 3);
  EXPECT_NEAR(FileTimeToDateTime(fileTime), 41136 + (6 * 3600 + 7 * 60 + 8.09) / 86400, 1e-9);

  const TSystemTime bad[] = {{2012, 2, 0, 30, 0, 0, 0, 0}, {1600, 1, 0, 1, 0, 0, 0, 0},  {10000, 1, 0, 1, 0, 0, 0, 0},
                             {2012, 1, 0, 1, 24, 0, 0, 0}, {2012, 1, 0, 1, 0, 60, 0, 0}, {2012, 300, 0, 1, 0, 0, 0, 0}};
  for (const TSystemTime& row : bad) EXPECT_EQ(SystemTimeToFileTime(row).Ticks, 0U);

  const TFileTime last = SystemTimeToFileTime({9999, 12, 0, 31, 23, 59, 59, 999});
  EXPECT_EQ(FileTimeToSystemTime(last).Year, 9999);
  EXPECT_GT(FileTimeToDateTime(last), 2958465);
  for (const std::uint64_t ticks : {last.Ticks + 10'000, std::uint64_t{UINT64_MAX}}) {
    EXPECT_EQ(FileTimeToSystemTime({ticks}).Year, 0);
    EXPECT_EQ(FileTimeToDateTime({ticks}), 0);
  }
  EXPECT_EQ(FileTimeToDateTime({0}), 0) << "before the first day of date-times";
  EXPECT_EQ(FileTimeToDateTime(SystemTimeToFileTime({1899, 12, 0, 31, 0, 0, 0, 0})), 1);
}

TEST(DateTime, IsReadFromEightDigits) {
  EXPECT_EQ(DLLGlobals::DecodeDateTimeRegistry(u"20120815"), 41136);
  for (const char16_t* bad : {u"", u"20120230", u"2012089", u"201208150", u"2012-8-1", u" 2012081", u"00000000"}) {
    EXPECT_EQ(DLLGlobals::DecodeDateTimeRegistry(bad), 0);
  }
}

TEST(Guid, IsReadInRegistryForm) {
  constexpr std::u16string_view text = u"{01234567-89AB-CDEF-0123-456789ABCDEF}";
  const auto guid = ParseGuid(u"{01234567-89ab-cDEF-0123-456789abcdef}");
  ASSERT_TRUE(guid.has_value());
  EXPECT_EQ(*guid, (TGUID{0x01234567, 0x89AB, 0xCDEF, {0x01, 0x23, 0x45, 0x67, 0x89, 0xAB, 0xCD, 0xEF}}));
  EXPECT_EQ(GuidToText(*guid), text);
  for (std::size_t i = 0; i < text.size(); ++i) {
    std::u16string broken(text);
    broken[i] = u'g';
    EXPECT_FALSE(ParseGuid(broken)) << i;
  }
  EXPECT_FALSE(ParseGuid(text.substr(1)));
}

TEST(Guid, IsDecodedFromEveryRegistryForm) {
  const std::u16string guid = u"{90120000-0030-0000-0000-0000000FF1CE}";
  const std::pair<std::u16string, std::u16string> rows[] = {
      {guid, guid},
      {u"{90120000-0030-0000-0000-0000000ff1ce}", u"{90120000-0030-0000-0000-0000000ff1ce}"},
      {guid.substr(1, 36), guid},
      {u"00002109030000000000000000F01FEC", guid},
      {u"00002109030000000000000000f01fec", guid},
      {guid + u"_Office", guid + u"_Office"},
      {guid + u"_", guid + u"_"},
      {u"", u""},
      {u"Office", u""},
      {guid.substr(1), u""},
      {guid + u"x", u""},
      {guid.substr(1, 36) + u"_x", u""},
      {u"x" + guid + u"_x", u""},
      {u"_" + guid, u""},
      {u"00002109030000000000000000F01FE-", u""},
      {u"0000210903000000000000000_F01FEC", u""},
      {std::u16string(38, u'{'), u""},
  };
  for (const auto& [text, decoded] : rows) EXPECT_EQ(DLLGlobals::TryDecodeGUIDFromStr(text), decoded);
}

}  // namespace
}  // namespace varcolin
