// The pure text rules of the sibling libraries: command lines, paths, icon locations, rating lists.
#include <gtest/gtest.h>

#include <set>

#include "siblings/CommandLine.h"
#include "siblings/PathText.h"
#include "siblings/RatingList.h"
#include "support/uText.h"

namespace varcolin {
namespace {

TEST(ProgramPart, Forms) {
  const std::set<std::u16string, TTextLess> files{u"C:\\Tools\\My Setup\\remove it", u"D:\\a b.bin",
                                                  u"C:\\Apps, old\\x"};
  const TIsProgramFile isFile = [&](std::u16string_view AName) { return files.contains(std::u16string(AName)); };
  struct TCase {
    std::u16string_view Command;
    std::u16string_view Program;
  };
  const TCase cases[] = {
      {u"", u""},
      {u"  \t ", u""},
      {u"\"", u""},
      {u"\"\" /S", u""},
      {u"\"C:\\Program Files\\Foo\\unins000.exe\" /SILENT", u"C:\\Program Files\\Foo\\unins000.exe"},
      {u"  \"C:\\Foo\\setup\"", u"C:\\Foo\\setup"},
      {u"\"C:\\Foo\\setup.exe\"/S", u"C:\\Foo\\setup.exe"},
      {u"\"\"C:\\Foo Bar\\setup.exe\" /S\"", u"C:\\Foo Bar\\setup.exe"},
      {u"\"C:\\Foo Bar\\setup.exe /S", u"C:\\Foo Bar\\setup.exe"},
      {u"\"C:\\Foo Bar\\setup 1.0.exe /S\"", u"C:\\Foo Bar\\setup 1.0.exe"},
      {u"C:\\Foo Bar\\setup.exe\" /S", u"C:\\Foo Bar\\setup.exe"},
      {u"C:\\Program Files\\Foo\\Uninstall.EXE /S _?=C:\\Program Files\\Foo", u"C:\\Program Files\\Foo\\Uninstall.EXE"},
      {u"C:\\Program Files\\Foo - Pro\\un inst.cmd", u"C:\\Program Files\\Foo - Pro\\un inst.cmd"},
      {u"C:\\Foo.exe files\\setup.bat x", u"C:\\Foo.exe"},
      {u"C:\\Foo Bar\\setup.exe, /S", u"C:\\Foo Bar\\setup.exe"},
      {u"C:\\Apps, new\\setup.exe /S", u"C:\\Apps, new\\setup.exe"},
      {u"C:\\Foo Bar\\setup.exe/S", u"C:\\Foo Bar\\setup.exe"},
      {u"C:/foo.com/my app/setup.exe /S", u"C:/foo.com/my app/setup.exe"},
      {u"%ProgramFiles%\\Foo Bar\\un.exe -x", u"%ProgramFiles%\\Foo Bar\\un.exe"},
      {u"C:\\Tools\\My Setup\\remove it /all", u"C:\\Tools\\My Setup\\remove it"},
      {u"D:\\a b.bin c.exe", u"D:\\a b.bin"},
      {u"C:\\Apps, old\\x", u"C:\\Apps, old\\x"},
      {u"C:\\Foo Bar\\setup /S", u"C:\\Foo"},
      {u"MsiExec.exe /X{0F1E2D3C-0000-4000-8000-0123456789AB}", u"MsiExec.exe"},
      {u"msiexec /i C:\\packages\\foo.exe", u"msiexec"},
      {u"MsiExec.exe/X{0F1E2D3C-0000-4000-8000-0123456789AB}", u"MsiExec.exe"},
      {u"\"C:\\Windows\\system32\\rundll32.exe\" foo.dll,Remove", u"C:\\Windows\\system32\\rundll32.exe"},
      {u"rundll32.exe foo.dll,Remove C:\\inf\\a.inf", u"rundll32.exe"},
      {u"RunDll32 C:\\PROGRA~1\\Foo\\foo.dll,Launch \"C:\\Foo Bar\\setup.exe\" -l0x9", u"RunDll32"},
      {u"cmd /c \"C:\\foo.bat\"", u"cmd"},
      {u"cmd\"/c\"", u"cmd"},
      {u"*token *flags", u"*token"},
      {u"setup", u"setup"},
  };
  for (const TCase& test : cases) {
    EXPECT_EQ(ProgramPart(test.Command, isFile), test.Program) << std::string(test.Command.begin(), test.Command.end());
  }
}

/// A registry text of any length costs a bounded number of questions to the disk.
TEST(ProgramPart, LongTextAsksTheDiskAFewTimes) {
  std::u16string command;
  for (int i = 0; i < 100000; ++i) command += u"a ";
  std::size_t asked = 0;
  EXPECT_EQ(ProgramPart(command, [&](std::u16string_view) { return ++asked == 0; }), u"a");
  EXPECT_LE(asked, 600U);
}

TEST(NormalizePathText, Forms) {
  const std::pair<std::u16string_view, std::u16string_view> cases[] = {
      {u"", u""},
      {u" \t", u""},
      {u"  C:/Program Files//Foo\\\\bar.exe ", u"C:\\Program Files\\Foo\\bar.exe"},
      {u"C:\\a\\.\\b\\..\\c", u"C:\\a\\c"},
      {u"C:\\a\\b\\", u"C:\\a\\b\\"},
      {u"C:\\a\\..\\..\\..\\b", u"C:\\b"},
      {u"C:\\..", u"C:\\"},
      {u"C:", u"C:"},
      {u"C:a\\..\\..\\b", u"C:..\\b"},
      {u"..\\a\\..\\..\\b", u"..\\..\\b"},
      {u"a\\..", u"."},
      {u"\\a\\..\\..\\b", u"\\b"},
      {u"\\\\server\\share\\..\\a", u"\\\\server\\share\\a"},
      {u"//server//share/a/../b", u"\\\\server\\share\\b"},
      {u"\\\\server", u"\\\\server"},
      {u"\\\\\\\\", u"\\\\"},
      {u"\\\\?\\C:\\a\\..\\b", u"\\\\?\\C:\\a\\..\\b"},
      {u"C:\\a...\\ b", u"C:\\a...\\ b"},
  };
  for (const auto& [path, expected] : cases) {
    EXPECT_EQ(NormalizePathText(path), expected) << std::string(path.begin(), path.end());
  }
}

TEST(SplitIconLocation, Forms) {
  struct TCase {
    std::u16string_view Text;
    std::u16string_view File;
    std::int32_t Index;
  };
  const TCase cases[] = {
      {u"", u"", 0},
      {u",5", u"", 5},
      {u"C:\\a.exe", u"C:\\a.exe", 0},
      {u"C:\\a.exe,3", u"C:\\a.exe", 3},
      {u" C:\\a.dll , -101 ", u"C:\\a.dll", -101},
      {u"\"C:\\a, b\\c.exe\",0", u"\"C:\\a, b\\c.exe\"", 0},
      {u"\"C:\\a, b\\c.exe,-7\"", u"C:\\a, b\\c.exe", -7},
      {u"\"C:\\a.exe\"", u"\"C:\\a.exe\"", 0},
      {u"C:\\a, b\\c.exe", u"C:\\a, b\\c.exe", 0},
      {u"C:\\a.exe,", u"C:\\a.exe,", 0},
      {u"C:\\a.exe,-", u"C:\\a.exe,-", 0},
      {u"C:\\a.exe,1x", u"C:\\a.exe,1x", 0},
      {u"C:\\a.exe,+2147483647", u"C:\\a.exe", 2147483647},
      {u"C:\\a.exe,-2147483648", u"C:\\a.exe", -2147483647 - 1},
      {u"C:\\a.exe,2147483648", u"C:\\a.exe,2147483648", 0},
      {u"C:\\a.exe,99999999999999999999999999", u"C:\\a.exe,99999999999999999999999999", 0},
  };
  for (const TCase& test : cases) {
    const TIconLocation found = SplitIconLocation(test.Text);
    EXPECT_EQ(found.File, test.File);
    EXPECT_EQ(found.Index, test.Index) << std::string(test.Text.begin(), test.Text.end());
  }
}

TEST(RatingList, Lines) {
  const TRatingList list(
      "\xEF\xBB\xBFtrustworthy publisher  Example  Software \r\n"
      "# risky publisher Remark\n"
      "\n"
      "risky\n"
      "risky publisher\n"
      "harmless publisher Typo\n"
      "risky owner Typo\n"
      "\xFF\xFE\x80 risky file broken.exe\n"
      "risky publisher example  software\n"
      "RISKY\tFile\tToolbar.exe\n"
      "trustworthy file C:/Program Files/Example/toolbar.exe\n"
      "risky publisher M\xC3\xBCller\n"
      "risky file last.exe");
  struct TCase {
    bool IsFile;
    std::u16string_view Name;
    TSoftwareRating Rating;
  };
  const TCase cases[] = {
      {false, u" EXAMPLE  software", TSoftwareRating::stTrustWorthy},
      {false, u"m\u00FCLLER", TSoftwareRating::stRisky},
      {false, u"Remark", TSoftwareRating::stUnknown},
      {false, u"Typo", TSoftwareRating::stUnknown},
      {false, u"", TSoftwareRating::stUnknown},
      {true, u"D:\\x\\TOOLBAR.EXE", TSoftwareRating::stRisky},
      {true, u"toolbar.exe", TSoftwareRating::stRisky},
      {true, u"c:\\program files\\example\\Toolbar.exe", TSoftwareRating::stTrustWorthy},
      {true, u"C:\\broken.exe", TSoftwareRating::stUnknown},
      {true, u"C:\\last.exe", TSoftwareRating::stRisky},
      {true, u"", TSoftwareRating::stUnknown},
  };
  for (const TCase& test : cases) {
    EXPECT_EQ(test.IsFile ? list.FileRating(test.Name) : list.PublisherRating(test.Name), test.Rating)
        << std::string(test.Name.begin(), test.Name.end());
  }
}

}  // namespace
}  // namespace varcolin
