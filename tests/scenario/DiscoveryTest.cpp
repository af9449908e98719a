// What discovery makes of a registry: whole lists from whole machines, through the library's boundary.
#include <gtest/gtest.h>

#include <algorithm>

#include "common/Session.h"

namespace varcolin::testing {
namespace {

using TLines = std::vector<std::string>;

struct TCase {
  const char* Name;
  const char* Registry;
  TLines Programs;
  TLines Updates = {};
};

#define UNINSTALL "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"
#define UNINSTALL32 "HKEY_LOCAL_MACHINE\\SOFTWARE\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"
#define USER_UNINSTALL "HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\"
#define USER_DATA \
  "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\S-1-5-18\\Products\\"
#define HOTFIX "HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Windows NT\\CurrentVersion\\HotFix\\"
#define GUID_A "{12345678-1234-1234-1234-123456789ABC}"
#define PACKED_A "8765432143214321214321436587A9CB"

const TCase Cases[] = {
    {"both views and the user, in order",
     "[" UNINSTALL "Native]\n\"DisplayName\"=\"Native\"\n"
     "[" UNINSTALL32 "Narrow]\n\"DisplayName\"=\"Narrow\"\n"
     "[" USER_UNINSTALL "Mine]\n\"DisplayName\"=\"Mine\"\n",
     {"Native", "Mine", "Narrow"}},
    {"names enumerate by their upper-cased text",
     "[" UNINSTALL "b]\n\"DisplayName\"=\"b\"\n[" UNINSTALL "_]\n\"DisplayName\"=\"_\"\n"
     "[" UNINSTALL "A]\n\"DisplayName\"=\"A\"\n",
     {"A", "b", "_"}},
    {"one GUID in two views is one program",
     "[" UNINSTALL GUID_A "]\n\"DisplayName\"=\"Twice\"\n[" UNINSTALL32 GUID_A "]\n\"DisplayName\"=\"Other name\"\n",
     {"Twice " GUID_A}},
    {"one name in two views is one program",
     "[" UNINSTALL "Tool]\n\"DisplayName\"=\"Tool\"\n[" UNINSTALL32 "Tool2]\n\"DisplayName\"=\"TOOL\"\n",
     {"Tool"}},
    {"keys without values are hidden, whatever lies below",
     "[" UNINSTALL "Empty]\n[" UNINSTALL "Empty\\Sub]\n\"DisplayName\"=\"Sub\"\n",
     {}},
    {"ProductID names the GUID before the key does",
     "[" UNINSTALL "{00000000-0000-0000-0000-000000000001}]\n\"DisplayName\"=\"A\"\n"
     "\"ProductID\"=\"12345678-1234-1234-1234-123456789abc\"\n"
     "[" UNINSTALL "{00000000-0000-0000-0000-000000000002}]\n\"DisplayName\"=\"B\"\n\"ProductID\"=\"none\"\n",
     {"A {12345678-1234-1234-1234-123456789abc}", "B {00000000-0000-0000-0000-000000000002}"}},
    {"an expandable display name is none, the next name counts",
     "[" UNINSTALL "K]\n\"DisplayName\"=hex(2):41,00,00,00\n\"ProductName\"=\"Product\"\n",
     {"Product"}},
    {"an empty display name is present: the next is not asked, and nothing is shown",
     "[" UNINSTALL GUID_A "]\n\"DisplayName\"=\"\"\n\"ProductName\"=\"Product\"\n",
     {}},
    {"a system component lends its key and its GUID and does not appear",
     "[" UNINSTALL "Tool]\n\"DisplayName\"=\"Tool\"\n"
     "[" UNINSTALL "Hidden]\n\"DisplayName\"=\"Tool\"\n\"ProductID\"=\"" GUID_A "\"\n\"SystemComponent\"=dword:1\n",
     {"Tool " GUID_A}},
    {"a system component without a program hides the installer product",
     "[" UNINSTALL GUID_A "]\n\"DisplayName\"=\"Hidden\"\n\"SystemComponent\"=dword:1\n"
     "[" USER_DATA PACKED_A "\\InstallProperties]\n\"DisplayName\"=\"Hidden too\"\n",
     {}},
    {"SystemComponent as text hides nothing",
     "[" UNINSTALL "Tool]\n\"DisplayName\"=\"Tool\"\n\"SystemComponent\"=\"1\"\n",
     {"Tool"}},
    {"an installer product without an uninstall key is a program",
     "[" USER_DATA PACKED_A "\\InstallProperties]\n\"DisplayName\"=\"Packed\"\n",
     {"Packed " GUID_A}},
    {"a packed name decodes in any letter case; a name that does not is passed over",
     "[" USER_DATA "8765432143214321214321436587a9cb]\n\"ProductName\"=\"Packed\"\n"
     "[" USER_DATA "8765432143214321214321436587A9CX]\n\"ProductName\"=\"No GUID\"\n",
     {"Packed " GUID_A}},
    {"ProductCodes lead installer products to their program",
     "[" UNINSTALL "Suite]\n\"DisplayName\"=\"Suite\"\n\"ProductCodes\"=hex(7):"
     "7b,00,31,00,32,00,33,00,34,00,35,00,36,00,37,00,38,00,2d,00,31,00,32,00,33,00,34,00,2d,00,31,00,32,00,33,00,34,"
     "00,"
     "2d,00,31,00,32,00,33,00,34,00,2d,00,31,00,32,00,33,00,34,00,35,00,36,00,37,00,38,00,39,00,41,00,42,00,43,00,7d,"
     "00,"
     "00,00,00,00\n"
     "[" USER_DATA PACKED_A "\\InstallProperties]\n\"DisplayName\"=\"Part of it\"\n",
     {"Suite " GUID_A}},
    {"release types by name, by number and by parent",
     "[" UNINSTALL "a]\n\"DisplayName\"=\"a\"\n\"ReleaseType\"=\"security UPDATE\"\n"
     "[" UNINSTALL "b]\n\"DisplayName\"=\"b\"\n\"Type\"=\"Hotfix\"\n"
     "[" UNINSTALL "c]\n\"DisplayName\"=\"c\"\n\"PatchType\"=dword:5\n"
     "[" UNINSTALL "d]\n\"DisplayName\"=\"d\"\n\"PatchType\"=dword:1\n"
     "[" UNINSTALL "e]\n\"DisplayName\"=\"e\"\n\"PatchType\"=dword:9\n"
     "[" UNINSTALL "f]\n\"DisplayName\"=\"f\"\n\"ParentKeyName\"=\"a\"\n\"ParentDisplayName\"=\"Parent\"\n"
     "[" UNINSTALL "g]\n\"DisplayName\"=\"g\"\n\"ReleaseType\"=\"Update\"\n\"PatchType\"=dword:8\n"
     "[" UNINSTALL "h]\n\"DisplayName\"=\"h\"\n\"ReleaseType\"=\"Service Pack\"\n\"PatchType\"=dword:8\n",
     {"d", "e"},
     {"a  (6) <Windows 7>", "b  (7) <Windows 7>", "c  (4) <Windows 7>", "f  (2) <Parent>", "g  (7) <Windows 7>",
      "h  (4) <Windows 7>"}},
    {"an update without a name takes its parent's",
     "[" UNINSTALL GUID_A "]\n\"ParentDisplayName\"=\"Suite\"\n",
     {},
     {"Update for Suite " GUID_A " (2) <Suite>"}},
    {"applied patches become updates of their product, others do not",
     "[" USER_DATA PACKED_A "\\InstallProperties]\n\"DisplayName\"=\"Suite\"\n"
     "[" USER_DATA PACKED_A
     "\\Patches\\00000000000000000000000000000010]\n\"DisplayName\"=\"Fix 1\"\n\"State\"=dword:1\n"
     "[" USER_DATA PACKED_A
     "\\Patches\\00000000000000000000000000000020]\n\"DisplayName\"=\"Fix 2\"\n\"State\"=dword:2\n"
     "[" USER_DATA PACKED_A "\\Patches\\00000000000000000000000000000030]\n\"DisplayName\"=\"Fix 3\"\n",
     {"Suite " GUID_A},
     {"Fix 1 {00000000-0000-0000-0000-000000000001} (2) <Suite>",
      "Fix 3 {00000000-0000-0000-0000-000000000003} (2) <Suite>"}},
    {"a hotfix key makes an update of the program that its link names",
     "[" UNINSTALL "KB123]\n\"DisplayName\"=\"Fix\"\n[" UNINSTALL "AKB123]\n\"DisplayName\"=\"Another\"\n"
     "[HKEY_LOCAL_MACHINE\\SOFTWARE\\Microsoft\\Updates\\Suite\\SP1\\KB123]\n"
     "\"ARPLink\"=\"software\\\\microsoft\\\\windows\\\\currentversion\\\\uninstall\\\\kb123\"\n",
     {"Another"},
     {"Fix  (2) <Windows 7>"}},
    {"a hotfix key makes an update of the program that bears its number; three digits are too few",
     "[" UNINSTALL "A]\n\"DisplayName\"=\"Fix for Suite (KB815021)\"\n[" UNINSTALL "B]\n\"DisplayName\"=\"Fix 123\"\n"
     "[" HOTFIX "Q815021-v2]\n\"Installed\"=dword:1\n[" HOTFIX "KB123]\n\"Installed\"=dword:1\n",
     {"Fix 123"},
     {"Fix for Suite (KB815021)  (2) <Windows 7>"}},
    {"an update swallows the program with its name and GUID",
     "[" UNINSTALL "Other]\n\"DisplayName\"=\"Other\"\n"
     "[" USER_DATA PACKED_A "\\InstallProperties]\n\"DisplayName\"=\"Suite\"\n"
     "[" USER_DATA PACKED_A "\\Patches\\00000000000000000000000000000010]\n\"DisplayName\"=\"Fix\"\n"
     "[" USER_DATA "00000000000000000000000000000010]\n\"ProductName\"=\"FIX\"\n",
     {"Other", "Suite " GUID_A},
     {"Fix {00000000-0000-0000-0000-000000000001} (2) <Suite>"}},
    {"an entry called by another path, a format or a device is read like any other",
     "[" UNINSTALL "%s%n%d]\n\"DisplayName\"=\"100%s %n\"\n[" UNINSTALL "..]\n\"DisplayName\"=\"..\\\\..\\\\x\"\n"
     "[" UNINSTALL "CON]\n\"DisplayName\"=\"CON\"\n",
     {"100%s %n", "..\\..\\x", "CON"}},
};

TEST(DiscoveryTest, ListsProgramsAndUpdates) {
  for (const TCase& row : Cases) {
    TSession session;
    session.Reg(row.Registry);
    for (const char* reading : {"first reading", "a second reading finds the same products and adds none"}) {
      SCOPED_TRACE(std::string(row.Name) + ": " + reading);
      session.Discover();
      EXPECT_EQ(session.ProgramTitles(), row.Programs);
      EXPECT_EQ(session.UpdateTitles(), row.Updates);
    }
    session.Unload();
    EXPECT_EQ(session.Machine().OpenHandleCount(), 0U) << row.Name;
  }
}

TEST(DiscoveryLogTest, NamesTheKeysOfEveryProductInTheOrderFoundAndBeginsAnew) {
  TSession session;
  session.Reg("[" UNINSTALL GUID_A
              "]\n\"DisplayName\"=\"Tool\"\n"
              "[" UNINSTALL
              "Hidden]\n\"DisplayName\"=\"Tool\"\n\"SystemComponent\"=dword:1\n"
              "[" USER_DATA PACKED_A "\\InstallProperties]\n\"DisplayName\"=\"Tool\"\n");
  session.Discover();
  const std::string machine = "(x64)HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\";
  const TLines expected = {
      "",
      "Add Program: Tool (" GUID_A ")",
      machine + "Uninstall\\" GUID_A "\\",
      machine + "Uninstall\\Hidden\\",
      machine + "Installer\\UserData\\S-1-5-18\\Products\\" PACKED_A "\\",
  };
  const TLines log = session.LogLines();
  EXPECT_NE(std::ranges::search(log, expected).begin(), log.end());
  EXPECT_EQ(session.LogCount("SystemComponent (REG_DWORD) = \"1\""), 1) << "the dump of the uninstall keys";
  session.Discover();
  EXPECT_EQ(session.LogCount(expected[1]), 0) << "it was found before";
  EXPECT_EQ(session.LogCount("SystemComponent (REG_DWORD) = \"1\""), 1);
}

}  // namespace
}  // namespace varcolin::testing
