// What a product says of itself: properties, actions and icons, read through the boundary.
#include <gtest/gtest.h>

#include <array>

#include "common/PeBuilder.h"
#include "common/Session.h"
#include "library/uVarcolin.h"
#include "platform/Files.h"

namespace varcolin::testing {
namespace {

using enum TPropertyID;

TBytes PeWithString(std::uint32_t AId, std::u16string_view AText) {
  constexpr std::uint32_t BlockSize = 16;
  std::u16string_view texts[BlockSize];
  texts[AId % BlockSize] = AText;
  TPeBuilder builder;
  builder.AddStrings(AId - AId % BlockSize, texts);
  return builder.Build();
}

TBytes PeWithTwoIcons() {
  TPeBuilder builder;
  builder.AddIcon(1, std::array<std::uint8_t, 2>{16, 32});
  builder.AddIcon(2, std::array<std::uint8_t, 1>{32});
  return builder.Build();
}

struct TCase {
  const char* Name;
  std::string_view Values;
  TPropertyID Property;
  const char* Expected;
};

constexpr TCase Cases[] = {
    {"version from the text", "\"DisplayVersion\"=\"1.2\"\n\"VersionMajor\"=dword:9\n", DisplayVersion, "1.2"},
    {"an expandable version is none", "\"DisplayVersion\"=hex(2):31,00\n", DisplayVersion, ""},
    {"version from its parts", "\"VersionMajor\"=dword:5\n\"VersionMinor\"=\"1\"\n", DisplayVersion, "5.1"},
    {"a minor part alone", "\"VersionMinor\"=dword:3\n", DisplayVersion, ".3"},
    {"a version that is present and empty", "\"DisplayVersion\"=\"\"\n\"VersionMajor\"=dword:9\n", DisplayVersion, ""},
    {"an install location", "\"InstallLocation\"=\"C:\\\\Games\"\n", InstallLocation, "C:\\Games\\"},
    {"an expandable one stays unexpanded", "\"InstallLocation\"=hex(2):25,00,58,00,25,00\n", InstallLocation, "%X%\\"},
    {"that of another installer", "\"Inno Setup: App Path\"=\"D:\\\\A\\\\\"\n", InstallLocation, "D:\\A\\"},
    {"that of the uninstaller below program files",
     "\"UninstallString\"=\"\\\"c:\\\\program files (x86)\\\\Tool\\\\u.exe\\\" /x\"\n", InstallLocation,
     "c:\\program files (x86)\\Tool\\"},
    {"an uninstaller elsewhere names none", "\"UninstallString\"=\"C:\\\\Windows\\\\u.exe\"\n", InstallLocation, ""},
    {"an install date of the day that the key was written", "\"InstallDate\"=\"20120809\"\n", InstallDate,
     "2012-08-09 10:11:12"},
    {"one of another day", "\"InstallDate\"=\"20110102\"\n", InstallDate, "2011-01-02 00:00:00"},
    {"a text that is no date is final", "\"InstallDate\"=\"2012-8-9\"\n\"Installed\"=\"20110102\"\n", InstallDate,
     "2012-08-09 10:11:12"},
    {"no such day", "\"InstallDate\"=\"20120230\"\n", InstallDate, "2012-08-09 10:11:12"},
    {"the other date value", "\"InstallDate\"=dword:1\n\"Installed\"=\"20110102\"\n", InstallDate,
     "2011-01-02 00:00:00"},
    {"support link", "\"MoreInfoURL\"=\"more\"\n", SupportLink, "more"},
    {"support link that is present and empty", "\"URLInfoAbout\"=\"\"\n\"MoreInfoURL\"=\"more\"\n", SupportLink, ""},
    {"an expandable contact is none", "\"Contact\"=hex(2):41,00\n", Contact, ""},
    {"language by number", "\"Language\"=dword:407\n", Language, "German (Germany)"},
    {"language by name", "\"Language\"=\"fr-FR\"\n", Language, "French (France)"},
    {"an unknown language stays as written", "\"Language\"=\"1033\"\n", Language, "1033"},
    {"the other language value", "\"Language\"=dword:0fffffff\n\"ShellUITransformLanguage\"=\"de-DE\"\n", Language,
     "German (Germany)"},
    {"size above two gigabytes", "\"EstimatedSize\"=dword:00300000\n", EstimatedSize, "3221225472"},
    {"a size is a signed number of kilobytes", "\"EstimatedSize\"=dword:ffffffff\n", EstimatedSize, "-1024"},
    {"a size of another type is none", "\"EstimatedSize\"=hex(b):01,00,00,00,00,00,00,00\n", EstimatedSize, "0"},
    {"a number of the wrong length is none", "\"EstimatedSize\"=hex(4):01,00\n", EstimatedSize, "0"},
    {"owner: the first that is present", "\"Inno Setup: User\"=\"\"\n\"RegOwner\"=\"Me\"\n", RegisteredOwner, ""},
    {"company", "\"RegCompany\"=\"Us\"\n", RegisteredCompany, "Us"},
    {"a text of an odd length drops its last byte", "\"Publisher\"=hex(1):41,00,42\n", Publisher, "A"},
    {"a text without a terminator", "\"Publisher\"=hex(1):41,00,42,00\n", Publisher, "AB"},
    {"a text ends at its first NUL", "\"Publisher\"=hex(1):41,00,00,00,42,00\n", Publisher, "A"},
    {"a localised name that does not resolve", "\"DisplayName_Localized\"=\"@C:\\\\no.dll,-1\"\n", DisplayName, "Tool"},
    {"a localised name that is plain", "\"DisplayName_Localized\"=\"Werkzeug\"\n", DisplayName, "Werkzeug"},
    {"a localised name from a resource", "\"DisplayName_Localized\"=\"@%windir%\\\\names.dll,-101\"\n", DisplayName,
     "From a resource"},
    {"usage without records", "", Usage, "1"},
    {"rating without a list", "\"Publisher\"=\"Nobody\"\n", Rating, "1"},
    {"no update identifier", "", UpdateID, "null"},
};

TEST(ProductTest, PropertiesAreReadFromTheRegistryAsWritten) {
  for (const TCase& row : Cases) {
    SCOPED_TRACE(row.Name);
    TSession session;
    session.Machine().Files().AddFile(u"C:\\Windows\\names.dll", PeWithString(101, u"From a resource"));
    session.AddProgram("Tool", row.Values);
    session.Discover();
    ASSERT_EQ(session.Programs().size(), 1U);
    EXPECT_EQ(PropertyOf(*session.Programs()[0], row.Property), row.Expected);
  }
}

struct TActionCase {
  const char* Name;
  std::string Values;
  const char* Expected;
};

constexpr const char* There = "\"UninstallString\"=\"C:\\\\There\\\\u.exe /x\"\n";
constexpr const char* Gone = "\"UninstallString\"=\"C:\\\\Gone\\\\u.exe /x\"\n";

const TActionCase ActionCases[] = {
    {"no command", "", "forget"},
    {"an uninstaller alone", Gone, "modifyRemove,forget"},
    {"that must not repair, there", std::string(There) + "\"NoRepair\"=dword:1\n", "uninstall,forget"},
    {"that must not repair, gone", std::string(Gone) + "\"NoRepair\"=dword:1\n", "forget"},
    {"that must not be removed, there", std::string(There) + "\"NoRemove\"=dword:1\n", "uninstall,forget"},
    {"a flag as text is none", std::string(There) + "\"NoRepair\"=\"1\"\n", "modifyRemove,forget"},
    {"uninstall path", "\"UninstallPath\"=\"C:\\\\There\\\\u.exe\"\n\"NoRepair\"=dword:1\n", "uninstall,forget"},
    {"modify and an uninstaller there", std::string(There) + "\"ModifyPath\"=\"m\"\n", "uninstall,modify,forget"},
    {"modify and an uninstaller gone", std::string(Gone) + "\"ModifyPath\"=\"m\"\n", "modify,forget"},
    {"modify and no removal", std::string(There) + "\"ModifyPath\"=\"m\"\n\"NoRemove\"=dword:1\n", "modify,forget"},
    {"repair", "\"RepairPath\"=\"r\"\n", "repair,forget"},
    {"repair that is not wanted", "\"RepairPath\"=\"r\"\n\"NoRepair\"=dword:1\n", "forget"},
    {"quiet and there", "\"QuietUninstallString\"=\"\\\"C:\\\\There\\\\u.exe\\\" /S\"\n", "quiet,forget"},
    {"quiet and gone", "\"QuietUninstallString\"=\"C:\\\\Gone\\\\u.exe /S\"\n", "forget"},
    {"an installer product", "\"WindowsInstaller\"=dword:1\n", "uninstall,modify,repair,forget"},
    {"an installer product with flags", "\"WindowsInstaller\"=dword:1\n\"NoModify\"=dword:2\n\"NoRepair\"=dword:1\n",
     "uninstall,forget"},
};

TEST(ProductTest, ActionsAreThoseThatTheEntryAllows) {
  for (const TActionCase& row : ActionCases) {
    SCOPED_TRACE(row.Name);
    TSession session;
    session.Machine().Files().AddFile(u"C:\\There\\u.exe", "");
    session.AddProgram("Tool", row.Values);
    session.Discover();
    EXPECT_EQ(ActionsOf(session.Program("Tool")->GetPossibleActions()), row.Expected);
  }
}

TEST(ProductTest, SeveralKeysFillEachOther) {
  TSession session;
  session.AddProgram("Tool", "\"DisplayVersion\"=\"1\"\n");
  session.AddProgram("ToolPart",
                     "\"DisplayName\"=\"Tool\"\n\"SystemComponent\"=dword:1\n\"DisplayVersion\"=\"2\"\n"
                     "\"Publisher\"=\"Maker\"\n\"UninstallString\"=\"other\"\n\"EstimatedSize\"=dword:1\n");
  session.Discover();
  const auto tool = session.Program("Tool");
  EXPECT_EQ(PropertyOf(*tool, DisplayVersion), "1");
  EXPECT_EQ(PropertyOf(*tool, Publisher), "Maker");
  EXPECT_EQ(PropertyOf(*tool, EstimatedSize), "0") << "the size comes from the main key only";
  EXPECT_EQ(ActionsOf(tool->GetPossibleActions()), "forget") << "and so do the commands";
}

std::string ShellCache(std::size_t ASize, std::uint8_t AUses, std::uint8_t ADay, const char* AType = "hex") {
  // size of the record, name flag, 4096 bytes, last use, use count, path "C:\T\t.exe"
  std::vector<std::uint8_t> bytes(ASize);
  const auto put = [&](std::size_t AOffset, std::uint64_t AValue, std::size_t ACount) {
    for (std::size_t i = 0; i < ACount && AOffset + i < ASize; ++i) bytes[AOffset + i] = std::uint8_t(AValue >> 8 * i);
  };
  put(0, ASize, 4);
  put(4, 1, 4);
  put(8, 4096, 8);
  put(16, 129882528000000000ULL + ADay * 864000000000ULL, 8);  // 2012-08-01 and so many days
  put(24, AUses, 4);
  const std::u16string path = u"C:\\T\\t.exe";
  for (std::size_t i = 0; i < path.size(); ++i) put(28 + 2 * i, path[i], 2);
  std::string text = AType + std::string(":");
  char digits[4];
  for (const std::uint8_t byte : bytes) {
    std::snprintf(digits, sizeof digits, "%02x,", byte);
    text += digits;
  }
  text.pop_back();
  return text;
}

TEST(ProductTest, ShellCacheCompletesProgramsBeforeWindows7) {
  constexpr const char* Cache =
      "\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\App Management\\ARPCache\\Tool]\n\"SlowInfoCache\"=";
  TSimulatedFacts vista;
  vista.Version.Minor = 0;
  for (const bool isVista : {true, false}) {
    TSession session(isVista ? vista : TSimulatedFacts{});
    session.AddProgram("Tool");
    session.Reg(std::string("[HKEY_LOCAL_MACHINE") + Cache + ShellCache(552, 11, 1) + "\n[HKEY_CURRENT_USER" + Cache +
                ShellCache(552, 4, 5));
    session.Discover();
    const auto tool = session.Program("Tool");
    EXPECT_EQ(PropertyOf(*tool, EstimatedSize), isVista ? "4096" : "0");
    EXPECT_EQ(PropertyOf(*tool, Usage), isVista ? "3" : "1");
    EXPECT_EQ(PropertyOf(*tool, LastUsedDate).substr(0, 10), isVista ? "2012-08-06" : "");
    EXPECT_EQ(PropertyOf(*tool, InstallLocation), isVista ? "C:\\T\\" : "");
  }
  for (const std::string& broken : {ShellCache(551, 11, 1), ShellCache(553, 11, 1), ShellCache(552, 11, 1, "hex(1)")}) {
    TSession session(vista);
    session.AddProgram("Tool");
    session.Reg(std::string("[HKEY_LOCAL_MACHINE") + Cache + broken);
    session.Discover();
    EXPECT_EQ(PropertyOf(*session.Program("Tool"), EstimatedSize), "0");
  }
}

TEST(ProductTest, SizeIsMeasuredBelowTheInstallFolderOnly) {
  struct TRow {
    const char* Location;
    const char* Size;
  };
  for (const TRow& row :
       {TRow{"C:\\\\Games\\\\Tool", "150"}, TRow{"C:\\\\", "0"}, TRow{"C:\\\\Program Files (x86)", "0"},
        TRow{"C:\\\\Program Files\\\\", "0"}, TRow{"C:\\\\WINDOWS\\\\Tool", "0"}, TRow{"C:\\\\Missing", "0"}}) {
    TSession session;
    auto& files = session.Machine().Files();
    files.AddFile(u"C:\\Games\\Tool\\a.bin", std::string(50, 'a'));
    files.AddFile(u"C:\\Games\\Tool\\Sub\\b.bin", std::string(100, 'b'));
    files.AddFile(u"C:\\Windows\\Tool\\c.bin", "c");
    files.AddFile(u"C:\\Program Files\\d.bin", "d");
    files.AddFile(u"C:\\Program Files (x86)\\e.bin", "e");
    session.AddProgram("Tool", std::string("\"InstallLocation\"=\"") + row.Location + "\"\n");
    session.Discover();
    EXPECT_EQ(PropertyOf(*session.Program("Tool"), EstimatedSize), row.Size) << row.Location;
  }
}

TEST(ProductTest, IconsComeFromTheIconLocationAndServeBothLists) {
  TSession session;
  session.Machine().Files().AddFile(u"C:\\T\\icons.exe", PeWithTwoIcons());
  session.AddProgram("Tool", "\"DisplayIcon\"=\"\\\"C:\\\\T\\\\icons.exe\\\",-1\"\n");
  session.AddProgram("Plain", "\"DisplayIcon\"=\"C:\\\\T\\\\icons.exe,7\"\n");
  session.Discover();
  EXPECT_EQ(session.Program("Tool")->GetIconIndex(), 4);
  EXPECT_EQ(session.Program("Plain")->GetIconIndex(), 3) << "an index without an icon leaves the default";
  session.Discover();
  EXPECT_EQ(session.Program("Tool")->GetIconIndex(), 4) << "an icon is added once";
}

TEST(ProductTest, HostLiesInItsOwnInstallLocation) {
  TSession session;
  session.AddProgram("Tool", "\"InstallLocation\"=\"c:\\\\PROGRAM files (x86)\\\\velmoran\"\n");
  session.AddProgram("Plain");
  session.Discover();
  EXPECT_FALSE(session.Program("Tool")->IsNotHost());
  EXPECT_TRUE(session.Program("Plain")->IsNotHost());
}

TEST(ProductTest, WrappersTellAChangeOnceAReadingAndOutliveTheirRecords) {
  TSession session;
  session.AddProgram("Tool");
  session.Discover();
  const auto tool = session.Program("Tool");
  EXPECT_TRUE(tool->IsChanged());
  EXPECT_FALSE(tool->IsChanged());
  session.Discover();
  EXPECT_TRUE(tool->IsChanged());
  TPossibleActions action = TPossibleActions::paRemoveFromRegistry;
  TNativeUInt window = 1;
  EXPECT_TRUE(tool->RunAction(&action, &window));
  EXPECT_EQ(window, 0U);
  EXPECT_TRUE(session.Programs().empty());
  EXPECT_EQ(PropertyOf(*tool, DisplayName), "null");
  EXPECT_EQ(tool->GetIconIndex(), -1);
  EXPECT_EQ(tool->GetPossibleActions(), 0);
  EXPECT_FALSE(tool->IsChanged());
  EXPECT_TRUE(tool->RunAction(&action, &window));
  EXPECT_TRUE(tool->IsNotHost());
  session.Unload();
  EXPECT_EQ(PropertyOf(*tool, DisplayName), "null");
}

TEST(CollectionTest, ServesWhatTheHostAsksFor) {
  TSession session;
  session.AddProgram("Tool");
  session.Discover();
  TInterfaceRef<IProductCollection> programs;
  TInterfaceRef<IProductCollection> again;
  TInterfaceRef<IProductCollection> updates;
  session.Manager().GetPrograms(programs.Receive());
  session.Manager().GetPrograms(again.Receive());
  session.Manager().GetUpdates(updates.Receive());
  EXPECT_NE(programs.Get(), again.Get());
  EXPECT_EQ(programs->GetSupportedProperties(), 0x3DFFFFU);
  EXPECT_EQ(updates->GetSupportedProperties(), 0x1C07FFFU);
  EXPECT_NE(programs->GetIconListSmall(), programs->GetIconListLarge());
  for (const std::int32_t index : {-1, programs->GetCount(), INT32_MIN, INT32_MAX}) {
    TInterfaceRef<IProduct> item;
    programs->GetItem(index, item.Receive());
    EXPECT_FALSE(item) << index;
  }
  const auto tool = session.Program("Tool");
  for (const std::int32_t number : {-1, 22, 23, 24, 25, INT32_MAX}) {
    TVariantValue value;
    tool->GetProperty(number, value.Receive());
    EXPECT_EQ(value.Value().Type, EVariantType::Null) << number;
  }
}

TEST(ManagerTest, AnswersToItsGuidAlone) {
  TSession session;
  IVarcolin& manager = session.Load();
  for (const char16_t* text : {u"{D1465CA9-77C6-49DF-929C-4E4D64730201}", u"{d1465ca9-77c6-49df-929c-4e4d64730201}"}) {
    EXPECT_EQ(TVarcolin::Instance(text), &manager);
  }
  for (const char16_t* text : std::initializer_list<const char16_t*>{
           u"D1465CA9-77C6-49DF-929C-4E4D64730201", u"{D1465CA9-77C6-49DF-929C-4E4D64730203}", u"", nullptr,
           u"{D1465CA9-77C6-49DF-929C-4E4D64730201} "}) {
    EXPECT_EQ(TVarcolin::Instance(text), nullptr);
  }
  int words[2] = {};
  const TEventHandler set{&words[0], &words[1]};
  manager.SetHostEvent(&set);
  TEventHandler got;
  manager.GetHostEvent(&got);
  EXPECT_EQ(got.Code, set.Code);
  EXPECT_EQ(got.Object, set.Object);
  EXPECT_EQ(manager.GetState(), TVRCState::vrcsListLoading);
  manager.Stop();
}

}  // namespace
}  // namespace varcolin::testing
