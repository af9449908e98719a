// The pure parts of the host: text, cells, tables, JSON, selection.
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

#include "host/Cells.h"
#include "host/Json.h"
#include "host/LinkRecord.h"
#include "host/LogText.h"
#include "host/Selection.h"
#include "host/Table.h"
#include "host/Text.h"

namespace varcolin::host {
namespace {

using namespace std::string_literals;

const std::string Replacement = "\xEF\xBF\xBD";

TProductRecord Program(std::string AName, std::string APublisher = {}, std::int64_t ASize = 0, TDateTime ADate = 0) {
  TProductRecord record;
  record.DisplayName = std::move(AName);
  record.Publisher = std::move(APublisher);
  record.EstimatedSize = ASize;
  record.InstallDate = ADate;
  return record;
}

std::vector<std::string> Names(const std::vector<TProductRecord>& APrograms) {
  std::vector<std::string> names;
  for (const TProductRecord& program : APrograms) names.push_back(program.DisplayName);
  return names;
}

/// The names of an object's members, a blank behind each.
std::string KeysOf(const nlohmann::ordered_json& AObject) {
  std::string keys;
  for (const auto& item : AObject.items()) keys += item.key() + ' ';
  return keys;
}

TEST(HostText, ConvertsBetweenTheEncodings) {
  EXPECT_EQ(ToUtf8(u"a\u00E4\u20AC\U0001F3A8"), "a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xA8");
  const char16_t lone[] = {u'x', 0xD83D, u'y', 0xDC00, 0xD800};
  EXPECT_EQ(ToUtf8({lone, 5}), "x" + Replacement + "y" + Replacement + Replacement);
  EXPECT_EQ(ToUtf16("a\xC3\xA4\xE2\x82\xAC\xF0\x9F\x8E\xA8"), u"a\u00E4\u20AC\U0001F3A8");
  // overlong forms, surrogates, values past the end, lone and missing continuation bytes
  for (const std::string bytes : {"\xC0\xAF", "\xE0\x80\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xF8\x88", "\x80",
                                  "\xE2\x82", "\xF0\x9F\x8E"}) {
    const std::u16string text = ToUtf16(bytes + "!");
    EXPECT_EQ(text.back(), u'!');
    EXPECT_EQ(text.find_first_not_of(u'\uFFFD'), text.size() - 1);
  }
}

TEST(HostText, FoldsLettersOfManyScripts) {
  EXPECT_EQ(FoldCase("ÄÖÜ ŽŁ ΑΒΓΣς БЁЖ Ａ"), FoldCase("äöü žł αβγσσ бёж ａ"));
  EXPECT_NE(FoldCase("×"), FoldCase("÷"));
  EXPECT_EQ(FoldCase("Ÿ"), FoldCase("ÿ"));
}

TEST(HostText, WritesDates) {
  struct TCase {
    TDateTime Date;
    std::string Iso;
  };
  for (const TCase& test :
       {TCase{0, ""}, TCase{41130, "2012-08-09T00:00:00.000"}, TCase{41130.424444444444, "2012-08-09T10:11:12.000"},
        TCase{1, "1899-12-31T00:00:00.000"}, TCase{-1.25, "1899-12-29T06:00:00.000"},
        TCase{36585.999999999, "2000-03-01T00:00:00.000"}, TCase{-693593, "0001-01-01T00:00:00.000"},
        TCase{2958465.5, "9999-12-31T12:00:00.000"}, TCase{2958465.9999999999, ""}, TCase{-693594, ""},
        TCase{1e300, ""}, TCase{-1e300, ""}, TCase{std::numeric_limits<double>::quiet_NaN(), ""},
        TCase{std::numeric_limits<double>::infinity(), ""}}) {
    EXPECT_EQ(FormatIsoDateTime(test.Date), test.Iso) << test.Date;
    EXPECT_EQ(FormatDate(test.Date), test.Iso.substr(0, 10)) << test.Date;
  }
}

TEST(HostText, WritesSizes) {
  const std::vector<std::pair<std::int64_t, std::string>> cases{{-2048, ""},
                                                                {0, ""},
                                                                {1023, "1023 B"},
                                                                {1024, "1.0 KB"},
                                                                {1024 * 1024 - 1, "1.0 MB"},
                                                                {12897485, "12.3 MB"},
                                                                {3221225472, "3.0 GB"},
                                                                {std::numeric_limits<std::int64_t>::max(), "8.0 EB"}};
  for (const auto& [bytes, text] : cases) EXPECT_EQ(FormatSize(bytes), text) << bytes;
}

TEST(HostCells, KeepsTheTerminalSafe) {
  for (const std::string& text : {"\x1B[31mred"s, "bell\a"s, "a\r\nb"s, "nul\0"s,
                                  "\xC2\x9B"s
                                  "31m"s,
                                  "\xE2\x80\xAE"s, "\xE2\x81\xA6"s, "\xE2\x80\xA8"s, "\xFF"s, "\xEF\xBB\xBF"s}) {
    const std::string shown = Printable(text);
    std::string_view rest = shown;
    while (!rest.empty()) EXPECT_FALSE(IsSteering(NextCharacter(rest))) << text;
    EXPECT_NE(shown.find(Replacement), std::string::npos) << text;
  }
  std::string piled = "e";
  for (int i = 0; i < 1000; ++i) piled += "\xCC\x81";
  EXPECT_EQ(Printable(piled).size(), 1 + 8 * 2U);
  EXPECT_EQ(TextCells(Printable("桜川e\xCC\x81한🎨")), 2 + 2 + 1 + 2 + 2U);
}

TEST(HostCells, CutsAndWrapsAtCells) {
  EXPECT_EQ(FitToCells("abcdef", 6), "abcdef");
  EXPECT_EQ(FitToCells("abcdef", 4), "abc…");
  EXPECT_EQ(FitToCells("桜川桜川", 4), "桜…");  // half of a wide character is not shown
  EXPECT_EQ(FitToCells("abc", 0), "");
  EXPECT_EQ(WrapToCells("one two three", 8), (std::vector<std::string>{"one two", "three"}));
  EXPECT_EQ(WrapToCells("桜川桜", 3), (std::vector<std::string>{"桜", "川", "桜"}));
  EXPECT_EQ(WrapToCells("", 5), std::vector<std::string>{""});
}

TEST(HostText, NamesFieldsForPeopleAndPrograms) {
  const std::tuple<const char*, const char*, const char*> cases[] = {
      {"GUID", "GUID", "guid"},
      {"LinkFlags", "Link flags", "linkFlags"},
      {"LinkTargetIDList", "Link target ID list", "linkTargetIDList"},
      {"ConsoleFEProps", "Console FE props", "consoleFEProps"},
      {"ScreenBufferSizeX", "Screen buffer size X", "screenBufferSizeX"},
      {"IDList", "ID list", "idList"},
      {"Size", "Size", "size"},
      {"", "", ""},
  };
  for (const auto& [name, people, json] : cases) {
    EXPECT_EQ(NameForPeople(name), people);
    EXPECT_EQ(NameForJson(name), json);
  }
}

TEST(HostTable, FitsEveryWidth) {
  TTable table({{"Name", 16, 40, 2, false}, {"Publisher", 10, 40, 0, false}, {"Size", 9, 9, 1, true}});
  table.AddRow({"Süßwasser-Planer", "Größenwahn", "1.0 MB"});
  table.AddRow({std::string(5000, 'x'), "桜川桜川桜川桜川", ""});
  table.AddRow({"\x1B[2J\n", "", "1023.9 KB"});
  for (std::size_t width = 1; width < 130; ++width) {
    std::istringstream lines(table.Format(width));
    std::string line;
    int count = 0;
    while (std::getline(lines, line)) {
      EXPECT_LE(TextCells(line), width);
      ++count;
    }
    EXPECT_EQ(count, 4);
  }
  EXPECT_LT(table.Format(UnlimitedCells).size(), 500U);
  EXPECT_EQ(TTable({{"A", 1, 9, 0, false}, {"B", 1, 9, 0, true}}).Format(80), "A  B\n");
}

TEST(HostJson, IsOneDocumentWhateverTheNames) {
  TProductRecord record = Program("\"\\ \x1B\x7F\xC2\x9B\xE2\x80\xAE 桜 \0 end"s, "p", -2048, 41130.5);
  record.Actions = ActionBit(TPossibleActions::paUninstall) | ActionBit(TPossibleActions::paRemoveFromRegistry);
  record.Usage = TUsedType::utRarely;
  record.Rating = TSoftwareRating::stRisky;
  const std::string text = FormatJson(EProductKind::Program, std::vector{record, Program("second")});
  std::string_view rest = text;
  while (!rest.empty()) {
    const char32_t character = NextCharacter(rest);
    EXPECT_TRUE(character == U'\n' || !IsSteering(character)) << static_cast<unsigned>(character);
  }
  const auto document = nlohmann::ordered_json::parse(text);
  ASSERT_EQ(document.at("programs").size(), 2U);
  const auto& first = document["programs"][0];
  EXPECT_EQ(KeysOf(first),
            "displayName version publisher installLocation installSource installDate contact comments readMeLink "
            "helpLink supportLink supportTelephone updateInfoLink language estimatedSize registeredOwner "
            "registeredCompany guid productId lastUsedDate usage rating actions iconIndex ");
  EXPECT_EQ(first["displayName"], record.DisplayName);
  EXPECT_EQ(first["estimatedSize"], -2048);
  EXPECT_EQ(first["installDate"], "2012-08-09T12:00:00.000");
  EXPECT_TRUE(first["lastUsedDate"].is_null());
  EXPECT_EQ(first["usage"], "rarely");
  EXPECT_EQ(first["rating"], "risky");
  EXPECT_EQ(first["actions"], nlohmann::json({"uninstall", "removeFromRegistry"}));
  EXPECT_EQ(FormatJson(EProductKind::Program, {}), "{\"programs\":[]}\n");
}

TEST(HostJson, UpdatesHaveTheirOwnNames) {
  TProductRecord record = Program("Fix");
  record.Kind = EProductKind::Update;
  record.ReleaseType = TReleaseType::rtServicePack;
  const auto document = nlohmann::ordered_json::parse(FormatJson(EProductKind::Update, std::vector{record}));
  EXPECT_EQ(KeysOf(document.at("updates").at(0)),
            "displayName version publisher installLocation installSource installDate contact comments readMeLink "
            "helpLink supportLink supportTelephone updateInfoLink language estimatedSize updateId releaseType "
            "parentDisplayName actions iconIndex ");
  std::string types;
  for (int type = 0; type < 8; ++type) types.append(ReleaseTypeName(static_cast<TReleaseType>(type))).append("|");
  EXPECT_EQ(types, "none|softwareUpdate|update|updateRollup|servicePack|criticalUpdate|securityUpdate|hotfix|");
  EXPECT_EQ(FormatJson(EProductKind::Update, {}), "{\"updates\":[]}\n");
}

TEST(HostSelection, FiltersAndSorts) {
  const std::vector<TProductRecord> all{Program("beta", "Zeta", 10, 41000.5), Program("Äpfel", "", -1, 0),
                                        Program("Alpha", "zeta", 30, 41001), Program("gamma", "Alef", 10, -5),
                                        Program("ärger", "Alef", 0, 41000.75)};
  const auto sorted = [&](ESortOrder AOrder) {
    std::vector<TProductRecord> programs = all;
    SortProducts(programs, AOrder);
    return Names(programs);
  };
  using TNames = std::vector<std::string>;
  EXPECT_EQ(sorted(ESortOrder::Name), (TNames{"Alpha", "beta", "gamma", "Äpfel", "ärger"}));
  EXPECT_EQ(sorted(ESortOrder::Size), (TNames{"Alpha", "beta", "gamma", "Äpfel", "ärger"}));
  EXPECT_EQ(sorted(ESortOrder::Date), (TNames{"Alpha", "ärger", "beta", "gamma", "Äpfel"}));
  EXPECT_EQ(sorted(ESortOrder::Publisher), (TNames{"Äpfel", "gamma", "ärger", "Alpha", "beta"}));
  std::vector<TProductRecord> filtered = all;
  FilterProducts(filtered, "ZET");
  EXPECT_EQ(Names(filtered), (TNames{"beta", "Alpha"}));
}

TEST(HostSelection, FindsByGuidThenNameThenPart) {
  std::vector<TProductRecord> all{Program("Tool"), Program("Tool Box"), Program("tool"), Program("{G}")};
  all[1].Guid = "{ABC}";
  EXPECT_EQ(Names(FindProducts(all, "abc")), std::vector<std::string>{"Tool Box"});
  EXPECT_EQ(Names(FindProducts(all, "{abc}")), std::vector<std::string>{"Tool Box"});
  EXPECT_EQ(Names(FindProducts(all, "TOOL")), (std::vector<std::string>{"Tool", "tool"}));
  EXPECT_EQ(Names(FindProducts(all, "OL B")), std::vector<std::string>{"Tool Box"});
  EXPECT_TRUE(FindProducts(all, "").empty());
}

TEST(HostSelection, TellsWhatChanged) {
  const std::vector before{Program("stays"), Program("goes"), Program("grows", "", 1024), Program("twin"),
                           Program("twin")};
  std::vector after{Program("comes", "From afar"), Program("stays"), Program("grows", "", 2048), Program("twin")};
  after[1].IconIndex = 7;  // nothing that a person sees
  std::vector<std::string> lines;
  for (const TProductChange& change : CompareReadings(before, after)) lines.push_back(DescribeChange(change));
  std::erase(lines, "");
  EXPECT_EQ(lines, (std::vector<std::string>{"vanished  goes", "vanished  twin", "appeared  comes (From afar)",
                                             "changed   grows: Size \"1.0 KB\" -> \"2.0 KB\""}));
}

TEST(HostLog, IsReadWhateverItsBytes) {
  EXPECT_EQ(DecodeLog("\xFF\xFE"
                      "a\0\r\0\n\0\x1B\0\xE4\0\n\0"s),
            "a\n" + Replacement + "ä\n");
  EXPECT_EQ(DecodeLog("\xFF\xFE"
                      "a\0b"s),
            "a\n");
  EXPECT_EQ(DecodeLog("plain\r\ntext"), "plain\ntext\n");
  EXPECT_EQ(DecodeLog(""), "");
}

}  // namespace
}  // namespace varcolin::host
