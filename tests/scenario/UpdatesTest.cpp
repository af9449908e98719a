// Component updates: packages with manifests and keys, and what becomes of them.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <optional>
#include <set>

#include "common/Session.h"
#include "contract/PlainTags.h"
#include "contract/RealFiles.h"
#include "products/uItemUpdate.h"
#include "support/uText.h"

namespace varcolin::testing {
namespace {

using TLines = std::vector<std::string>;

constexpr std::string_view Detected = "Detect changes in location \"ulVistaUpdate\".";
constexpr std::u16string_view Folder = u"C:\\Windows\\Servicing\\Packages\\";
constexpr std::u16string_view Packages =
    u"HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Component Based Servicing\\Packages";

std::u16string KeyOf(std::u16string_view ACode) { return std::u16string(Packages).append(u"\\").append(ACode); }
std::u16string FileOf(std::u16string_view ACode) { return std::u16string(Folder).append(ACode).append(u".mum"); }

/// A manifest in the shape of the real ones. AAssembly and APackage are attributes, AContained identity names.
std::string Manifest(const std::string& AName, const std::string& APackage, const std::string& AAssembly = "",
                     const TLines& AContained = {}) {
  std::string text =
      "\xEF\xBB\xBF<?xml version=\"1.0\" encoding=\"utf-8\"?>\r\n"
      "<assembly xmlns=\"urn:schemas-microsoft-com:asm.v3\" manifestVersion=\"1.0\" " +
      AAssembly + ">\r\n  <assemblyIdentity name=\"" + AName +
      "\" version=\"6.1.1.0\" language=\"neutral\" processorArchitecture=\"amd64\" />\r\n  <package " + APackage +
      " restart=\"possible\">\r\n    <parent disposition=\"detect\"><assemblyIdentity name=\"Parent\" /></parent>\r\n";
  for (const std::string& contained : AContained) {
    text += "    <update name=\"x\"><package integrate=\"hidden\"><assemblyIdentity name=\"" + contained +
            "\" /></package></update>\r\n";
  }
  return text + "  </package>\r\n</assembly>";
}

void AddKeys(TSession& ASession, std::u16string_view ACode, std::uint32_t AState = 0x70,
             std::optional<std::uint32_t> AOwner = 0x70) {
  auto& registry = ASession.Machine().Registry();
  registry.SetDwordAt(KeyOf(ACode), u"CurrentState", AState);
  if (AOwner) registry.SetDwordAt(KeyOf(ACode) + u"\\Owners", ACode, *AOwner);
}

/// An installed package whose identity is its code.
void AddPackage(TSession& ASession, const std::string& ACode,
                const std::string& APackage = "identifier=\"KB1\" releaseType=\"Update\"",
                const std::string& AAssembly = "", const TLines& AContained = {}) {
  AddKeys(ASession, FromUtf8(ACode));
  ASession.Machine().Files().AddFile(FileOf(FromUtf8(ACode)), Manifest(ACode, APackage, AAssembly, AContained));
}

TLines IdsOf(TSession& ASession) {
  TLines ids;
  for (const auto& item : ASession.Updates()) ids.push_back(PropertyOf(*item, TPropertyID::UpdateID));
  return ids;
}

TEST(UpdatesTest, AComponentUpdateShowsWhatItsManifestAndKeySay) {
  TSession session;
  const std::string code = "Package_for_KB976902~31bf3856ad364e35~amd64~~6.1.1.17514";
  AddPackage(session, code, "identifier=\"KB976902\" releaseType=\"Security Update\"",
             "displayName=\"default\" description=\"Fix for KB976902\" company=\"Rookwood &amp; Sons\" "
             "supportInformation=\"http://support.example/?kbid=976902\"");
  const std::u16string key = KeyOf(FromUtf8(code));
  session.Machine().Registry().SetTextAt(key, u"InstallLocation", u"\\\\?\\C:\\Temp\\cab", RegType::ExpandString);
  session.Machine().Registry().SetDwordAt(key, u"InstallTimeHigh", 0x01CD6E9C);
  session.Machine().Registry().SetDwordAt(key, u"InstallTimeLow", 0x4B2F4000);
  session.Discover();
  const auto updates = session.Updates();
  ASSERT_EQ(updates.size(), 1U);
  IProduct& update = *updates[0];
  const std::pair<TPropertyID, const char*> wanted[] = {
      {TPropertyID::DisplayName, "Security Update for Microsoft Windows (KB976902)"},
      {TPropertyID::DisplayVersion, "6.1.1.0"},
      {TPropertyID::Publisher, "Rookwood & Sons"},
      {TPropertyID::InstallLocation, "\\\\?\\C:\\Temp\\cab"},
      {TPropertyID::Comments, "Fix for KB976902"},
      {TPropertyID::HelpLink, "http://support.example/?kbid=976902"},
      {TPropertyID::Language, "neutral"},
      {TPropertyID::ReleaseType, "6"},
      {TPropertyID::ParentDisplayName, "Windows 7"},
      {TPropertyID::InstallDate, "2012-07-30 21:43:01"},
  };
  for (const auto& [id, text] : wanted) EXPECT_EQ(PropertyOf(update, id), text) << static_cast<int>(id);
  EXPECT_EQ(PropertyOf(update, TPropertyID::UpdateID), code);
  EXPECT_EQ(update.GetIconIndex(), 0);
  EXPECT_EQ(ActionsOf(update.GetPossibleActions()), "uninstall");
  EXPECT_TRUE(update.IsChanged());

  const auto item = TItemUpdate::ItemByCode(UpperCase(FromUtf8(code)), TTypeUninstallLocation::ulVistaUpdate);
  ASSERT_TRUE(item);
  EXPECT_FALSE(TItemUpdate::ItemByCode(FromUtf8(code), TTypeUninstallLocation::ulRegistryUninstall));
  EXPECT_EQ(ToUtf8(item->GetActionCommand(TPossibleActions::paUninstall)),
            "C:\\Windows\\Sysnative\\pkgmgr.exe /up:" + code);
  for (const auto action : {TPossibleActions::paUninstallQuiet, TPossibleActions::paModify, TPossibleActions::paRepair,
                            TPossibleActions::paModifyRemove, TPossibleActions::paRemoveFromRegistry}) {
    EXPECT_EQ(item->GetActionCommand(action), u"");
  }
  const TLines log = session.LogLines();
  const auto line = std::find(log.begin(), log.end(), "Add Vista Update: " + code);
  ASSERT_GE(log.end() - line, 3);
  EXPECT_EQ(line[-1], "");
  EXPECT_EQ(line[1], ToUtf8(FileOf(FromUtf8(code))));
  EXPECT_EQ(line[2],
            "(x64)HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Component Based "
            "Servicing\\Packages\\" +
                code + "\\");
}

TEST(UpdatesTest, StatesOfPackageAndOwnerDecideWhatIsListed) {
  struct TRow {
    std::uint32_t State;
    std::optional<std::uint32_t> Owner;
    const char* Actions;  ///< null: not listed
  };
  static constexpr TRow Rows[] = {
      {0x70, 0x70, "uninstall"},
      {7, 7, "uninstall"},
      {0x60, 0x70, "uninstall"},
      {0x70, {}, "uninstall"},
      {0x80, 0x70, ""},
      {0x70, 0x80, ""},
      {0x40, 0x70, ""},
      {0x70, 4, ""},
      {0x65, 0x70, nullptr},
      {0x50, 0x70, nullptr},
      {0x70, 0x65, nullptr},
      {0x70, 0, nullptr},
      {0, 0x70, nullptr},
      {0x71, {}, nullptr},
      {0xFFFFFF70, 7, "uninstall"},
      {0xFFFFFFFF, 0x70, nullptr},
  };
  TSession session;
  TLines wanted;
  for (std::size_t index = 0; index < std::size(Rows); ++index) {
    const std::string code = std::string("P") + static_cast<char>('A' + index);
    AddPackage(session, code);
    session.Machine().Registry().RemoveTree(KeyOf(FromUtf8(code)));
    AddKeys(session, FromUtf8(code), Rows[index].State, Rows[index].Owner);
    if (Rows[index].Actions != nullptr) wanted.push_back(code + " " + Rows[index].Actions);
  }
  session.Discover();
  TLines listed;
  for (const auto& item : session.Updates()) {
    listed.push_back(PropertyOf(*item, TPropertyID::UpdateID) + " " + ActionsOf(item->GetPossibleActions()));
  }
  EXPECT_EQ(listed, wanted);
}

TEST(UpdatesTest, UpdatesNameThemselves) {
  struct TRow {
    const char* Package;
    const char* Assembly;
    const char* Name;
  };
  static constexpr TRow Rows[] = {
      {"identifier='KB1' releaseType='Software Update'", "", "Software Update for Microsoft Windows (KB1)"},
      {"identifier='KB2' releaseType='update'", "displayName='DEFAULT'", "Update for Microsoft Windows (KB2)"},
      {"identifier='KB3' releaseType='Update Rollup'", "displayName=''", "Update Rollup for Microsoft Windows (KB3)"},
      {"identifier='KB4' releaseType='Service Pack'", "displayName='default'",
       "Service Pack for Microsoft Windows (KB4)"},
      {"identifier='KB5' releaseType='Critical Update'", "", "Critical Update for Microsoft Windows (KB5)"},
      {"identifier='KB6' releaseType='SECURITY UPDATE'", "", "Security Update for Microsoft Windows (KB6)"},
      {"identifier='KB7' releaseType='Hotfix'", "displayName='Fonts'", "Fonts"},
      {"identifier='' releaseType='Hotfix'", "displayName='default'", "default"},
      {"identifier='' releaseType='Hotfix'", "", ""},
      {"identifier='%s &lt;' releaseType='Hotfix'", "", "Hotfix for Microsoft Windows (%s <)"},
  };
  TSession session;
  TLines wanted;
  for (std::size_t index = 0; index < std::size(Rows); ++index) {
    AddPackage(session, std::string("P") + static_cast<char>('0' + index), Rows[index].Package, Rows[index].Assembly);
    wanted.emplace_back(Rows[index].Name);
  }
  session.Discover();
  TLines names;
  for (const auto& item : session.Updates()) names.push_back(PropertyOf(*item, TPropertyID::DisplayName));
  EXPECT_EQ(names, wanted);
}

TEST(UpdatesTest, RegistryUpdatesNameThemselvesAfterTheirParent) {
  TSession session;
  session.Reg(
      "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"
      "{12345678-1234-1234-1234-123456789ABC}]\n\"ParentDisplayName\"=\"Office\"\n");
  session.AddProgram("Fix", "\"ReleaseType\"=\"Hotfix\"\n");
  AddPackage(session, "P");
  session.Discover();
  EXPECT_EQ(session.UpdateTitles(),
            (TLines{"Fix  (7) <Windows 7>", "Update for Office {12345678-1234-1234-1234-123456789ABC} (2) <Office>",
                    "Update for Microsoft Windows (KB1) P (2) <Windows 7>"}));
}

TEST(UpdatesTest, PackagesThatAnInstalledUpdateContainsAreNotListed) {
  TSession session;
  AddPackage(session, "Top", "identifier='KB1' releaseType='Update'", "", {"inner", "MISSING"});
  AddPackage(session, "Inner", "identifier='KB1' releaseType='Update'", "", {"Innermost"});
  AddPackage(session, "Innermost");
  AddPackage(session, "Other");
  AddPackage(session, "Gone", "identifier='KB1' releaseType='Update'", "", {"Other"});
  AddKeys(session, u"Gone", 0x50);
  AddPackage(session, "NoUpdate", "identifier='KB1' releaseType='Feature Pack'", "", {"Other"});
  // what an update without a name of its own contains is hidden all the same
  AddPackage(session, "Nameless");
  AddPackage(session, "OfNameless");
  session.Machine().Files().AddFile(
      FileOf(u"Nameless"),
      "<assembly><assemblyIdentity name=''/><package identifier='' releaseType='Update'><UPDATE><package>"
      "<assemblyIdentity name='OfNameless'/></package></UPDATE><update/><update><package/></update>"
      "<update><package><assemblyIdentity/></package></update></package></assembly>");
  session.Discover();
  EXPECT_EQ(IdsOf(session), (TLines{"Other", "Top"}));
}

TEST(UpdatesTest, BrokenPackagesHideNoOther) {
  TSession session;
  auto& files = session.Machine().Files();
  auto& registry = session.Machine().Registry();
  const std::string good = Manifest("Good", "identifier='KB1' releaseType='Update'");
  const std::pair<std::u16string_view, std::string> manifests[] = {
      {u"A empty", ""},
      {u"A cut", good.substr(0, good.size() / 2)},
      {u"A binary", std::string("MZ\x90\0\x03\0\0\0", 8)},
      {u"A bomb", "<!DOCTYPE a [<!ENTITY e 'x'>]>" + good.substr(good.find("<assembly"))},
      {u"A other root", "<package identifier='KB1' releaseType='Update'/>"},
      {u"A no identity", "<assembly><package identifier='KB1' releaseType='Update'/></assembly>"},
      {u"A no name", "<assembly><assemblyIdentity/><package identifier='KB1' releaseType='Update'/></assembly>"},
      {u"A no package", "<assembly><assemblyIdentity name='x'/></assembly>"},
      {u"A no identifier", Manifest("x", "releaseType='Update'")},
      {u"A no type", Manifest("x", "identifier='KB1'")},
      {u"A unknown type", Manifest("x", "identifier='KB1' releaseType='Language Pack'")},
      {u"A type none", Manifest("x", "identifier='KB1' releaseType='none'")},
      {u"A prefixed",
       "<m:assembly xmlns:m='u'><m:assemblyIdentity name='x'/><m:package identifier='KB1' "
       "releaseType='Update'/></m:assembly>"},
      {u"A deep",
       "<assembly><x><assemblyIdentity name='x'/><package identifier='K' releaseType='Update'/></x></assembly>"},
  };
  for (const auto& [code, text] : manifests) {
    AddKeys(session, code);
    files.AddFile(FileOf(code), text);
  }
  for (const std::u16string_view code : {u"A denied", u"A used", u"A folder", u"A vanished"}) AddKeys(session, code);
  files.AddFile(FileOf(u"A denied"), good);
  files.MarkDenied(FileOf(u"A denied"));
  files.AddFile(FileOf(u"A used"), good);
  files.MarkInUse(FileOf(u"A used"));
  files.AddFolder(FileOf(u"A folder"));
  // a key without a manifest, a manifest without a key, keys whose values are not what they should be
  files.AddFile(FileOf(u"B no key"), good);
  for (const std::u16string_view code : {u"B state text", u"B state missing", u"B owner text", u"B owner missing"}) {
    AddPackage(session, ToUtf8(code));
  }
  registry.SetTextAt(KeyOf(u"B state text"), u"CurrentState", u"112");
  registry.RemoveValueAt(KeyOf(u"B state missing"), u"CurrentState");
  registry.SetTextAt(KeyOf(u"B owner text") + u"\\Owners", u"B owner text", u"112");
  registry.RemoveValueAt(KeyOf(u"B owner missing") + u"\\Owners", u"B owner missing");
  registry.SetDwordAt(KeyOf(u"B owner missing") + u"\\Owners", u"Another", 0x70);
  constexpr std::array<std::byte, 3> ThreeBytes = {std::byte{0x70}};
  AddPackage(session, "B short number");
  registry.SetValueAt(KeyOf(u"B short number"), u"CurrentState", RegType::Dword, ThreeBytes);
  files.AddFile(std::u16string(Folder) + u"readme.txt", good);
  // values of the wrong type in a key that counts
  AddPackage(session, "Good");
  registry.SetDwordAt(KeyOf(u"Good"), u"InstallLocation", 1);
  registry.SetTextAt(KeyOf(u"Good"), u"InstallTimeHigh", u"1");
  registry.SetDwordAt(KeyOf(u"Good"), u"InstallTimeLow", 1);
  session.Discover();
  EXPECT_EQ(IdsOf(session), TLines{"Good"});
  EXPECT_EQ(PropertyOf(*session.Updates().at(0), TPropertyID::InstallLocation), "");
  EXPECT_EQ(PropertyOf(*session.Updates().at(0), TPropertyID::InstallDate), "2012-08-09 10:11:12")
      << "the key's last write";
  const TLines log = session.LogLines();
  EXPECT_TRUE(std::none_of(log.begin(), log.end(), [](const std::string& ALine) {
    return ALine.find("A ") == 0 || ALine.find("xception") != std::string::npos;
  }));
}

TEST(UpdatesTest, PackagesComeAndGoWhileTheReaderWatches) {
  TSession session;
  AddPackage(session, "Old");
  AddPackage(session, "Stays");
  session.Discover();
  const auto kept = TItemUpdate::ItemByCode(u"Stays", TTypeUninstallLocation::ulVistaUpdate);
  std::ptrdiff_t seen = 0;
  const auto expectSeen = [&](const TLines& AIds, const char* AWhat) {
    session.LetChangesBeSeen();
    EXPECT_EQ(IdsOf(session), AIds) << AWhat;
    EXPECT_EQ(session.LogCount(Detected), ++seen) << AWhat;
  };
  AddPackage(session, "New");
  expectSeen({"Old", "Stays", "New"}, "a new package");
  session.Machine().Registry().SetDwordAt(KeyOf(u"Old"), u"CurrentState", 0x50);
  expectSeen({"Stays", "New"}, "a key");
  session.Machine().Files().RemoveAt(FileOf(u"New"));
  expectSeen({"Stays"}, "a manifest that vanishes");
  session.Machine().Registry().SetDwordAt(KeyOf(u"Stays") + u"\\Owners", u"Stays", 0x80);
  expectSeen({"Stays"}, "a change that takes nothing away");
  session.LetChangesBeSeen();
  session.LetChangesBeSeen();
  EXPECT_EQ(session.LogCount(Detected), seen) << "arming the watch anew is no change";
  EXPECT_EQ(session.LogCount("Delete Vista Update: Old"), 1);
  EXPECT_EQ(session.LogCount("Delete Vista Update: New"), 1);
  EXPECT_EQ(TItemUpdate::ItemByCode(u"Stays", TTypeUninstallLocation::ulVistaUpdate), kept);
  EXPECT_EQ(ActionsOf(kept->FPossibleActions), "uninstall") << "an update that is found again stays as it is";
}

TEST(UpdatesTest, AServicingFolderThatComesLaterIsWatchedFromTheNextChangeOn) {
  TSession session;
  session.Machine().Registry().AddKey(Packages);
  session.Discover();
  session.Machine().Files().AddFile(FileOf(u"P"), Manifest("P", "identifier='KB1' releaseType='Update'"));
  session.LetChangesBeSeen();
  EXPECT_EQ(IdsOf(session), TLines{}) << "nothing was there to watch";
  AddKeys(session, u"P");
  session.LetChangesBeSeen();
  EXPECT_EQ(IdsOf(session), TLines{"P"});
  session.Machine().Files().RemoveAt(FileOf(u"P"));
  session.LetChangesBeSeen();
  EXPECT_EQ(IdsOf(session), TLines{});
  // the folder goes: the watch on it gives way to none, and the reader goes on
  session.Machine().Files().RemoveAt(u"C:\\Windows\\Servicing");
  AddPackage(session, "Q");
  session.LetChangesBeSeen();
  EXPECT_EQ(IdsOf(session), TLines{"Q"});
}

TEST(UpdatesTest, BeforeVistaNothingIsListed) {
  TSession session(FactsOfXP());
  AddPackage(session, "P");
  session.Discover();
  AddPackage(session, "Q");
  session.LetChangesBeSeen();
  EXPECT_EQ(session.UpdateTitles(), TLines{});
  EXPECT_EQ(session.LogCount(Detected), 0);
}

TEST(UpdatesTest, A32BitWindowsHasItsOwnPackageManager) {
  TSession session(FactsOf32BitWindows());
  AddPackage(session, "P");
  session.Discover();
  const auto item = TItemUpdate::ItemByCode(u"p", TTypeUninstallLocation::ulVistaUpdate);
  ASSERT_TRUE(item);
  EXPECT_EQ(item->GetActionCommand(TPossibleActions::paUninstall), u"C:\\Windows\\system32\\pkgmgr.exe /up:P");
  EXPECT_TRUE(item->FRegistryKeys.at(0).starts_with(u"(x32)"));
}

TEST(UpdatesTest, EveryRealUpdateIsListedThatNoOtherOneContains) {
  const auto files = RealFiles("mum", ".mum");
  if (files.empty()) GTEST_SKIP() << "there are no manifests of real machines";
  TSession session;
  int number = 0;
  std::multiset<std::string> names;
  std::set<std::string> contained;
  for (const auto& file : files) {
    const std::string bytes = ReadRealFile(file);
    // the same update for another processor has the same name
    const std::u16string code = FromUtf8(file.stem().string() + "~" + std::to_string(number++));
    AddKeys(session, code);
    session.Machine().Files().AddFile(FileOf(code), bytes);
    const TPlainTags tags(bytes);
    if (tags.Value(tags.First("package"), "releaseType") == "Feature Pack") continue;
    names.insert(tags.Value(tags.First("assemblyIdentity"), "name"));
    for (const std::string& name : tags.ContainedNames()) contained.insert(name);
  }
  std::erase_if(names, [&](const std::string& AName) { return contained.contains(AName); });
  session.Discover();
  const TLines ids = IdsOf(session);
  EXPECT_EQ(std::multiset<std::string>(ids.begin(), ids.end()), names);
  EXPECT_GE(ids.size(), 10U);
  for (const auto& item : session.Updates()) {
    const std::string name = PropertyOf(*item, TPropertyID::DisplayName);
    EXPECT_NE(name.find(" for Microsoft Windows (KB"), std::string::npos) << name;
  }
}

}  // namespace
}  // namespace varcolin::testing
