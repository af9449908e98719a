// What programs learn from executables and shortcuts: start menu, Run keys, the shell's usage records.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <mutex>

#include "common/LinkBuilder.h"
#include "common/PeBuilder.h"
#include "common/Session.h"
#include "common/VersionBytes.h"
#include "products/uItemFolder.h"
#include "support/uText.h"

namespace varcolin::testing {
namespace {

using enum TPropertyID;

constexpr std::u16string_view Menu = u"C:\\Users\\User\\AppData\\Roaming\\Microsoft\\Windows\\Start Menu\\Programs\\";
constexpr std::u16string_view CommonMenu = u"C:\\ProgramData\\Microsoft\\Windows\\Start Menu\\Programs\\";
constexpr std::string_view RunKey = "\\Microsoft\\Windows\\CurrentVersion\\Run]\n";

TBytes LinkTo(std::u16string_view ATarget, std::u16string_view AIcon = {}, std::int32_t AIconIndex = 0) {
  TLinkBuilder link;
  link.IconIndex = AIconIndex;
  if (!ATarget.empty()) link.LinkInfo(MakeLinkInfo({.Volume = MakeVolume(u""), .BasePath = ATarget}));
  if (!AIcon.empty()) link.IconLocation(AIcon);
  return link.Build();
}

TBytes ExecutableWith(const std::vector<TBytes>& AStrings, std::uint16_t ALanguage = 0x409, bool AHasIcon = true) {
  TPeBuilder builder;
  builder.Add(16, 1, Resource({Strings({Table(u"040904B0", AStrings)}), Translations({{ALanguage, 1200}})}));
  if (AHasIcon) builder.AddIcon(1, std::array<std::uint8_t, 2>{16, 32});
  return builder.Build();
}

using TLines = std::vector<std::string>;

/// What was found, one line an entry: executable, shortcut's name, icon.
TLines Folders() {
  const std::scoped_lock lock(TItemFolder::Mutex());
  TLines lines;
  for (const auto& item : TItemFolder::Items()) {
    lines.push_back(ToUtf8(item->FExecutedFile + u"|" + item->FLinkName + u"|" + item->FIconLocation));
  }
  return lines;
}

/// A machine with one program, Tool, so that its details are due.
class FoldersTest : public ::testing::Test {
 protected:
  void AddFile(std::u16string_view APath, const TBytes& AData = {}) { Files.AddFile(APath, AData); }

  /// What a first reading finds.
  TLines Found() {
    Session.AddProgram("Tool");
    Session.Discover();
    return Folders();
  }

  TSession Session;
  TSimulatedFiles& Files = Session.Machine().Files();
};

TEST_F(FoldersTest, AProgramLearnsFromTheExecutableOfItsShortcut) {
  const std::u16string tool = u"C:\\Apps\\Tool\\tool.exe";
  AddFile(tool, ExecutableWith({String(u"CompanyName", u"Maker"), String(u"FileVersion", u"3.1.0")}, 0x407, false));
  AddFile(u"C:\\Windows\\System32\\pictures.dll", ExecutableWith({}));
  const TFileTime used{129882528000000000ULL};  // 2012-08-01
  Files.SetTimes(tool, {}, used, {});
  Files.AddFile(u"C:\\Program Files (x86)\\Velmoran\\TolvaneRatings.txt", "risky file C:\\Apps\\Tool\\tool.exe\n");
  AddFile(std::u16string(CommonMenu) + u"Maker\\Tool 3.lnk", LinkTo(tool, u"%windir%\\system32\\pictures.dll", 0));
  Session.AddProgram("Tool (x86) 3.0");
  Session.AddProgram("Known",
                     "\"Publisher\"=\"Own\"\n\"DisplayVersion\"=\"9\"\n\"InstallLocation\"=\"C:\\\\Apps\\\\Tool\"\n");
  Session.Discover();
  const auto program = Session.Program("Tool (x86) 3.0");
  EXPECT_EQ(PropertyOf(*program, Publisher), "Maker");
  EXPECT_EQ(PropertyOf(*program, DisplayVersion), "3.1.0");
  EXPECT_EQ(PropertyOf(*program, InstallLocation), "C:\\Apps\\Tool\\");
  EXPECT_EQ(PropertyOf(*program, Language), "German (Germany)");
  EXPECT_EQ(PropertyOf(*program, LastUsedDate), "2012-08-01 00:00:00");
  EXPECT_EQ(PropertyOf(*program, Rating), "2");
  EXPECT_GT(program->GetIconIndex(), 3) << "the shortcut's icon, since the executable has none";
  const auto known = Session.Program("Known");
  EXPECT_EQ(PropertyOf(*known, Publisher), "Own") << "what is registered stays";
  EXPECT_EQ(PropertyOf(*known, DisplayVersion), "9");
  EXPECT_EQ(PropertyOf(*known, Language), "German (Germany)");
}

TEST_F(FoldersTest, AProgramFindsItsFolderByNameThenByPlaceThenByAPartOfItsName) {
  const auto add = [&](std::u16string_view ALink, std::u16string_view AFile, std::u16string_view AMaker) {
    AddFile(AFile, ExecutableWith({String(u"CompanyName", AMaker)}));
    if (!ALink.empty()) AddFile(std::u16string(Menu) + std::u16string(ALink), LinkTo(AFile));
  };
  add(u"B\\Tool 3 (x86).lnk", u"C:\\Tool\\t.exe", u"tool");
  add(u"C\\Deluxe.lnk", u"C:\\Deluxe\\d.exe", u"deluxe");
  add(u"D\\Tool - 2.0.lnk", u"C:\\Second\\t.exe", u"second tool");
  add(u"E\\7 - 9.lnk", u"C:\\Digits\\7.exe", u"digits");
  add(u"F\\Half (open.lnk", u"C:\\Half\\h.exe", u"half");
  add(u"", u"C:\\Plain\\p.exe", u"plain");
  add(u"", u"C:\\Plain\\Sub\\s.exe", u"sub");
  AddFile(std::u16string(Menu) + u"G\\Broken target.lnk", LinkTo({}));
  Session.Reg("[HKEY_CURRENT_USER\\Software" + std::string(RunKey) +
              "\"1\"=\"C:\\\\Plain\\\\Sub\\\\s.exe\"\n\"2\"=\"C:\\\\Plain\\\\p.exe\"\n");
  struct TRow {
    const char* Name;
    const char* Location;
    const char* Maker;
  };
  const TRow rows[] = {
      {"TOOL (64 bit) 1.2.3", "", "tool"},  // the first of two shortcuts of that name
      {"tool -", "C:\\\\Plain", "tool"},
      {"7 - 9", "", "digits"},
      {"Half (open 5", "", "half"},
      {"Half", "", ""},
      {"Something", "c:\\\\plain", "plain"},
      {"Something else", "C:\\\\Plain\\\\Sub\\\\", "sub"},
      {"Deluxe Tool Box", "C:\\\\Nowhere", "tool"},  // the first of the list, not of the name
      {"My deluxe things", "", "deluxe"},
      {"Tool Deluxe", "C:\\\\Deluxe", "deluxe"},
      {"Anything", "C:\\\\", ""},
      {"Too", "", ""},
      {"(x) 3", "", ""},
      // one that lies beside a shortcut without a target, of which nothing can be learnt
      {"Lonely", "C:\\\\Users\\\\User\\\\AppData\\\\Roaming\\\\Microsoft\\\\Windows\\\\Start Menu\\\\Programs\\\\G",
       ""},
  };
  for (const TRow& row : rows)
    Session.AddProgram(row.Name, "\"InstallLocation\"=\"" + std::string(row.Location) + "\"\n");
  Session.Discover();
  for (const TRow& row : rows) {
    const auto program = Session.Program(row.Name);
    EXPECT_EQ(PropertyOf(*program, Publisher), row.Maker) << row.Name;
    EXPECT_EQ(program->GetIconIndex() > 3, row.Maker != std::string_view()) << row.Name;
  }
}

TEST_F(FoldersTest, ShortcutsShareAnEntryUnlessTheyAreNamedDifferently) {
  AddFile(u"C:\\A\\a.exe");
  AddFile(u"C:\\B\\b.exe");
  AddFile(std::u16string(Menu) + u"A.lnk", LinkTo(u"C:\\A\\a.exe", u"C:\\A\\a.ico", -7));
  AddFile(std::u16string(Menu) + u"Help for A.LNK", LinkTo(u"c:\\a\\A.EXE"));
  AddFile(std::u16string(CommonMenu) + u"a 2.lnk", LinkTo(u"C:\\A\\a.exe", u"C:\\other.ico"));
  AddFile(std::u16string(CommonMenu) + u"Gone.lnk", LinkTo(u"C:\\Gone\\g.exe"));
  AddFile(std::u16string(CommonMenu) + u"notes.txt", {});
  Session.Reg("[HKEY_CURRENT_USER\\Software" + std::string(RunKey) +
              "\"a\"=\"C:\\\\A\\\\a.exe\"\n\"b\"=\"C:\\\\B\\\\b.exe\"\n");
  const TLines expected{"C:\\A\\a.exe|A|C:\\A\\a.ico,-7", "c:\\a\\A.EXE|Help for A|", "C:\\Gone\\g.exe|Gone|",
                        "c:\\b\\b.exe||"};
  EXPECT_EQ(Found(), expected);
  Session.Discover();
  EXPECT_EQ(Folders(), expected) << "a second reading finds the same";
}

TEST_F(FoldersTest, AShortcutGetsItsTargetWhenItHasOne) {
  const std::u16string file = std::u16string(Menu) + u"Tool.lnk";
  AddFile(u"C:\\T\\t.exe", ExecutableWith({String(u"CompanyName", u"Maker")}));
  AddFile(file, LinkTo({}));
  EXPECT_EQ(Found(), TLines{"|Tool|"});
  AddFile(file, LinkTo(u"C:\\T\\t.exe"));
  Session.Discover();
  EXPECT_EQ(Folders(), TLines{"C:\\T\\t.exe|Tool|"});
  EXPECT_EQ(PropertyOf(*Session.Program("Tool"), Publisher), "Maker");
}

TEST_F(FoldersTest, ATargetIsLookedUpAsThisProcessSeesIt) {
  AddFile(u"C:\\Program Files\\New\\n.exe");
  AddFile(u"C:\\Windows\\editor.exe");
  AddFile(std::u16string(Menu) + u"a.lnk", LinkTo(u"C:\\Program Files (x86)\\New\\n.exe"));
  AddFile(std::u16string(Menu) + u"b.lnk", LinkTo(u"editor.exe"));
  TLinkBuilder variable;
  variable.TextBlock(0xA0000001, u"%windir%\\editor.exe", u"%windir%\\editor.exe");
  AddFile(std::u16string(Menu) + u"c.lnk", variable.Build());
  EXPECT_EQ(Found(),
            (TLines{"C:\\Program Files\\New\\n.exe|a|", "C:\\Windows\\editor.exe|b|", "C:\\Windows\\editor.exe|c|"}));
}

TEST_F(FoldersTest, BrokenShortcutsHideNoOthersAndAreLogged) {
  AddFile(u"C:\\T\\t.exe");
  const TBytes sound = LinkTo(u"C:\\T\\t.exe");
  TLinkBuilder lying;
  lying.Block(0xA0000001, TBytes(8), 0xFFFFFFFF);
  AddFile(std::u16string(Menu) + u"1 empty.lnk", {});
  AddFile(std::u16string(Menu) + u"2 cut.lnk", TBytes(sound.begin(), sound.end() - 9));
  AddFile(std::u16string(Menu) + u"3 lying.lnk", lying.Build());
  AddFile(std::u16string(Menu) + u"4 denied.lnk", sound);
  AddFile(std::u16string(Menu) + u"5 huge.lnk", TBytes(0x500001));
  AddFile(std::u16string(Menu) + u"Tool.lnk", sound);
  Files.MarkDenied(std::u16string(Menu) + u"4 denied.lnk");
  Files.AddFolder(std::u16string(Menu) + u"Folder.lnk");
  Files.AddFolder(std::u16string(Menu) + u"Denied");
  Files.MarkDenied(std::u16string(Menu) + u"Denied");
  EXPECT_EQ(Found(), TLines{"C:\\T\\t.exe|Tool|"});
  const auto lines = Session.LogLines();
  for (const char* name : {"1 empty", "2 cut", "3 lying", "4 denied", "5 huge"}) {
    const auto names = [&](const std::string& ALine) { return ALine.find(name) != std::string::npos; };
    EXPECT_TRUE(std::ranges::any_of(lines, names)) << name;
  }
}

TEST_F(FoldersTest, LinksBetweenFoldersDoNotKeepTheWalkGoing) {
  const std::u16string menu(Menu);
  AddFile(u"C:\\T\\t.exe");
  AddFile(menu + u"Deep\\Deeper\\Tool.lnk", LinkTo(u"C:\\T\\t.exe"));
  AddFile(u"D:\\Menu\\Linked.lnk", LinkTo(u"C:\\T\\t.exe"));
  for (const char16_t* name : {u"up", u"up again", u"Deep\\up", u"Deep\\Deeper\\up"}) {
    Files.AddLink(menu + name, menu.substr(0, menu.size() - 1));
  }
  Files.AddLink(menu + u"self", menu + u"self");
  Files.AddLink(menu + u"elsewhere", u"D:\\Menu");
  TLines found = Found();
  std::ranges::sort(found);
  EXPECT_EQ(found, (TLines{"C:\\T\\t.exe|Linked|", "C:\\T\\t.exe|Tool|"}));
}

struct TValueCase {
  const char* Name;
  const char* Registry;
  const char* Expected;  ///< the line of what was found; null for nothing
  const char* Settings = "\"NoEncrypt\"=dword:0";

  [[nodiscard]] TLines Lines() const { return Expected == nullptr ? TLines{} : TLines{Expected}; }
};

constexpr const char* App = "c:\\tools\\app.exe||";

constexpr TValueCase RunCases[] = {
    {"quoted, with arguments", R"("v"="\"C:\\Tools\\App.exe\" /min")", App},
    {"quoted", R"("v"="\"C:\\Tools\\App.exe\"")", App},
    {"plain", R"("v"="C:\\Tools\\App.EXE")", App},
    {"plain, with arguments", R"("v"="C:\\Tools\\App.exe /min")", nullptr},
    {"no closing quote", R"("v"="\"C:\\Tools\\App.exe")", nullptr},
    {"a bare name on the path", R"("v"="system.exe")", "C:\\Windows\\system.exe||"},
    {"another kind of file", R"("v"="C:\\Tools\\App.txt")", nullptr},
    {"gone", R"("v"="C:\\Tools\\Gone.exe")", nullptr},
    {"a folder", R"("v"="C:\\Tools\\Folder.exe")", nullptr},
    {"empty quotes", R"("v"="\"\"")", nullptr},
    {"empty", R"("v"="")", nullptr},
    // "%windir%\e.exe"
    {"expandable", R"("v"=hex(2):25,00,77,00,69,00,6e,00,64,00,69,00,72,00,25,00,5c,00,65,00,2e,00,65,00,78,00,65,00)",
     "C:\\Windows\\e.exe||"},
    // "C:\a.exe" without a terminator, a half unit behind it
    {"an odd length", R"("v"=hex(1):43,00,3a,00,5c,00,61,00,2e,00,65,00,78,00,65,00,41)", "c:\\a.exe||"},
    {"a list of texts", R"("v"=hex(7):43,00,3a,00,5c,00,61,00,2e,00,65,00,78,00,65,00,00,00,00,00)", nullptr},
    {"a number", R"("v"=dword:1)", nullptr},
};

/// What is found on a new machine with files to run, and this in its registry.
TLines FoundWith(const std::string& ARegistry) {
  TSession session;
  auto& files = session.Machine().Files();
  for (const char16_t* file : {u"C:\\Tools\\App.exe", u"C:\\Tools\\App.txt", u"C:\\Windows\\system.exe",
                               u"C:\\Windows\\e.exe", u"C:\\a.exe"}) {
    files.AddFile(file, "");
  }
  files.AddFolder(u"C:\\Tools\\Folder.exe");
  for (const char16_t* link : {u"C:\\Tools\\App.lnk", u"C:\\Users\\User\\Desktop\\Notes.lnk"}) {
    files.AddFile(link, LinkTo(u"C:\\Tools\\App.exe"));
  }
  session.AddProgram("Tool");
  session.Reg(ARegistry);
  session.Discover();
  return Folders();
}

TEST(RunKeysTest, CommandsWithoutArgumentsAreTaken) {
  for (const TValueCase& row : RunCases) {
    EXPECT_EQ(FoundWith("[HKEY_CURRENT_USER\\Software" + std::string(RunKey) + row.Registry), row.Lines()) << row.Name;
  }
}

TEST(RunKeysTest, BothViewsOfTheMachineAreRead) {
  for (const bool isWow64 : {true, false}) {
    TSimulatedFacts facts;
    facts.IsWow64 = isWow64;
    TSession session(facts);
    for (const char16_t* file : {u"C:\\32.exe", u"C:\\64.exe"}) session.Machine().Files().AddFile(file, "");
    session.AddProgram("Tool");
    session.Reg("[HKEY_LOCAL_MACHINE\\SOFTWARE" + std::string(RunKey) +
                "\"v\"=\"C:\\\\64.exe\"\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node" + std::string(RunKey) +
                "\"v\"=\"C:\\\\32.exe\"\n");
    session.Discover();
    EXPECT_EQ(Folders(), isWow64 ? TLines({"c:\\32.exe||", "c:\\64.exe||"}) : TLines{"c:\\64.exe||"});
  }
}

constexpr TValueCase UsageCases[] = {
    {"an executable", R"("HRZR_EHACNGU:P:\\Gbbyf\\Ncc.rkr"=hex:00)", "C:\\Tools\\App.exe||"},
    {"in other case", R"("hrzr_ehacngu:p:\\gbbyf\\NCC.RKR"=hex:00)", "c:\\tools\\APP.EXE||"},
    {"a shortcut of the desktop", R"("HRZR_EHACNGU:Abgrf.yax"=hex:00)", "C:\\Tools\\App.exe|Notes|"},
    {"a shortcut elsewhere", R"("HRZR_EHACNGU:P:\\Gbbyf\\Ncc.yax"=hex:00)", "C:\\Tools\\App.exe|App|"},
    {"a bare executable", R"("HRZR_EHACNGU:flfgrz.rkr"=hex:00)", "C:\\Windows\\system.exe||"},
    {"nothing recorded of it", R"("HRZR_EHACNGU:P:\\Gbbyf\\Ncc.rkr"=hex:)", "C:\\Tools\\App.exe||"},
    {"a record of the wrong length and type", R"("HRZR_EHACNGU:P:\\Gbbyf\\Ncc.rkr"="odd")", "C:\\Tools\\App.exe||"},
    {"not scrambled", R"("UEME_RUNPATH:C:\\Tools\\App.exe"=hex:00)", nullptr},
    {"another kind of record", R"("HRZR_EHACVQY:P:\\Gbbyf\\Ncc.rkr"=hex:00)", nullptr},
    {"another kind of file", R"("HRZR_EHACNGU:P:\\Gbbyf\\Ncc.gkg"=hex:00)", nullptr},
    {"the kind alone", R"("HRZR_EHACNGU:"=hex:00)", nullptr},
    {"an extension alone", R"("HRZR_EHACNGU:.yax"=hex:00)", nullptr},
    {"part of the kind", R"("HRZR_EHAC"=hex:00)", nullptr},
    {"an unnamed value", R"(@="")", nullptr},
    {"taken as it is", R"("UEME_RUNPATH:C:\\Tools\\App.exe"=hex:00)", "C:\\Tools\\App.exe||", "\"NoEncrypt\"=dword:1"},
    {"a setting of another type", R"("UEME_RUNPATH:C:\\Tools\\App.exe"=hex:00)", nullptr, "\"NoEncrypt\"=\"1\""},
};

TEST(UsageRecordTest, NamesArePathsOfUsedFiles) {
  const std::string userAssist =
      "[HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Explorer\\UserAssist\\";
  for (const TValueCase& row : UsageCases) {
    EXPECT_EQ(FoundWith(userAssist + "{75048700-EF1F-11D0-9888-006097DEACF9}\\Count]\n" + row.Registry + "\n" +
                        userAssist + "Settings]\n" + row.Settings),
              row.Lines())
        << row.Name;
  }
}

}  // namespace
}  // namespace varcolin::testing
