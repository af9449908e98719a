// Real file names from the paths and command lines of the registry.
#include "common/Services.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using testing::TServices;

class FileNames : public TServices {
 protected:
  using TServices::TServices;

  std::u16string Found(std::u16string_view AName) {
    std::u16string path = u"old";
    const bool found = FileUtils::SearchPath(AName, path);
    EXPECT_EQ(found, !path.empty());
    return path;
  }
  void AddFile(std::u16string_view APath) { Machine.Files().AddFile(APath, ""); }
};

class FileNames32 : public FileNames {
 protected:
  FileNames32() : FileNames(testing::FactsOf32BitWindows()) {}
};

TEST_F(FileNames32, ThereIsOneView) {
  AddFile(u"C:\\Program Files\\A\\a.exe");
  Load();
  EXPECT_EQ(FileUtils::WinSystemX64(), FileUtils::WinSystemX32());
  EXPECT_EQ(FileUtils::ProgramFilesX32(), u"C:\\Program Files\\");
  EXPECT_EQ(FileUtils::ProgramFilesX64(), u"C:\\Program Files\\");
  EXPECT_EQ(FileUtils::CheckFileX64(u"C:\\Program Files (x86)\\A\\a.exe"), u"C:\\Program Files (x86)\\A\\a.exe");
}

TEST_F(FileNames, QuotesAndVariablesAreResolved) {
  Load();
  const std::pair<const char16_t*, const char16_t*> rows[] = {
      {u"", u""},
      {u"\"\"", u""},
      {u"\"%windir%\\a b.exe\" /x", u"C:\\Windows\\a b.exe"},
      {u"\"C:\\a\"\"b\"", u"C:\\a\"b"},
      {u"\"C:\\a\"\"\" x", u"C:\\a\""},
      {u"\"C:\\open", u"\"C:\\open"},
      {u"C:\\\"a\"", u"C:\\\"a\""},
      {u"%absent%\\a", u"%absent%\\a"},
      {u"C:/a//b/../c", u"C:\\a\\c"},
  };
  for (const auto& [path, name] : rows) EXPECT_EQ(FileUtils::PrepareFileName(path), name);
  EXPECT_EQ(FileUtils::PreparePathName(u"\"C:\\a b\""), u"C:\\a b\\");
  EXPECT_EQ(FileUtils::PreparePathName(u""), u"");
  EXPECT_EQ(FileUtils::PrepareCmdFileName(u"\"%ProgramFiles%\\A\\u.exe\" /S"), u"C:\\Program Files (x86)\\A\\u.exe");
}

TEST_F(FileNames, TheOtherViewIsTried) {
  AddFile(u"C:\\Windows\\System32\\native.exe");
  AddFile(u"C:\\Windows\\SysWOW64\\narrow.exe");
  AddFile(u"C:\\Program Files\\A\\wide.exe");
  Machine.Files().AddFolder(u"C:\\Program Files (x86)\\B\\Program Files");
  Load();
  const std::pair<const char16_t*, const char16_t*> rows[] = {
      {u"c:\\windows\\SYSTEM32\\native.exe", u"C:\\Windows\\Sysnative\\native.exe"},
      {u"C:\\Windows\\Sysnative\\narrow.exe", u"C:\\Windows\\system32\\narrow.exe"},
      {u"C:\\Windows\\system32\\narrow.exe", u"C:\\Windows\\system32\\narrow.exe"},
      {u"C:\\PROGRAM FILES (X86)\\A\\wide.exe", u"C:\\Program Files\\A\\wide.exe"},
      {u"C:\\Program Files (x86)\\A\\absent.exe", u"C:\\Program Files (x86)\\A\\absent.exe"},
      {u"C:\\Windows\\system32", u"C:\\Windows\\system32"},
      {u"", u""},
  };
  for (const auto& [path, name] : rows) {
    EXPECT_TRUE(SameText(FileUtils::CheckFileX64(path), name));
  }
  EXPECT_EQ(FileUtils::CheckFileX64(rows[0].first), u"C:\\Windows\\Sysnative\\native.exe");
  EXPECT_EQ(FileUtils::CheckFolderX64(u"C:\\Program Files\\B"), u"C:\\Program Files (x86)\\B");
  EXPECT_EQ(FileUtils::CheckFileX64(u"C:\\Program Files\\B"), u"C:\\Program Files\\B") << "a folder is no file";
  EXPECT_EQ(FileUtils::WinSystemX16(), u"C:\\Windows\\system\\");
  EXPECT_TRUE(FileUtils::FolderExists(u"C:\\Program Files\\A") && !FileUtils::FileExists(u"C:\\Program Files\\A"));
}

TEST_F(FileNames, BareNamesAreSearchedInFoldersInOrder) {
  Machine.System().SetVariable(u"PATH", u"\"C:\\First One\";;%windir%;C:\\Windows\\System32;C:\\Second");
  Machine.System().SetVariable(u"PATHEXT", u"JS;.EXE");
  AddFile(u"C:\\First One\\tool.cmd");
  AddFile(u"C:\\Second\\tool.exe");
  AddFile(u"C:\\Second\\both.js");
  AddFile(u"C:\\Second\\both.exe");
  AddFile(u"C:\\Second\\both.com");
  AddFile(u"C:\\Windows\\both.tar.gz");
  AddFile(u"C:\\Windows\\here.exe");
  AddFile(u"C:\\Second\\here.exe");
  AddFile(u"C:\\Windows\\System32\\native.exe");
  AddFile(u"C:\\Current\\near.exe");
  Machine.Files().SetCurrentFolder(u"C:\\Current");
  Load();
  EXPECT_EQ(Found(u"tool"), u"C:\\First One\\tool.cmd");
  EXPECT_EQ(Found(u"tool.exe"), u"C:\\Second\\tool.exe");
  EXPECT_EQ(Found(u"both"), u"C:\\Second\\both.JS") << "the extension is the list's";
  EXPECT_EQ(Found(u"both.tar.gz"), u"C:\\Windows\\both.tar.gz");
  EXPECT_EQ(Found(u"here"), u"C:\\Windows\\here.EXE");
  EXPECT_EQ(Found(u"native.exe"), u"C:\\Windows\\Sysnative\\native.exe");
  EXPECT_EQ(Found(u"near.exe"), u"near.exe") << "the empty entry of the path";
  for (const char16_t* none : {u"", u"absent", u"Second\\tool.exe", u"C:\\Second\\tool.exe", u"C:tool.exe", u"*"}) {
    EXPECT_EQ(Found(none), u"");
  }
}

TEST_F(FileNames, BareNamesAreSearchedInTheRegistry) {
  TSimulatedRegistry& registry = Machine.Registry();
  const std::u16string appPaths = u"HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\";
  const std::u16string sharedDlls = u"HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";
  const std::u16string sharedDlls32 =
      u"HKEY_LOCAL_MACHINE\\Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\SharedDLLs";
  for (const char16_t* file : {u"C:\\Program Files\\T\\plain.exe", u"C:\\T\\byfolder.exe", u"C:\\T\\other.exe",
                               u"C:\\T\\shared.dll", u"C:\\T\\narrow.dll", u"C:\\T\\app.bat", u"C:\\T\\app.exe"}) {
    AddFile(file);
  }
  registry.SetTextAt(appPaths + u"plain.exe", u"", u"\"%ProgramFiles%\\T\\plain.exe\"", RegType::ExpandString);
  registry.SetTextAt(appPaths + u"byfolder.exe", u"", u"byfolder.exe");
  registry.SetTextAt(appPaths + u"byfolder.exe", u"Path", u"\"C:\\T\"");
  registry.SetTextAt(appPaths + u"bare.exe", u"", u"bare.exe");
  registry.SetTextAt(appPaths + u"gone.exe", u"", u"C:\\gone\\gone.exe");
  registry.SetTextAt(appPaths + u"gone.exe", u"Path", u"C:\\T");
  registry.SetDwordAt(appPaths + u"wrong.exe", u"", 1);
  registry.SetTextAt(sharedDlls, u"C:\\T\\SHARED.dll", u"");
  registry.SetDwordAt(sharedDlls32, u"C:\\T\\narrow.dll", 1);
  registry.SetDwordAt(sharedDlls32, u"C:\\T\\app.bat", 1);
  registry.SetDwordAt(sharedDlls32, u"C:\\T\\app.exe", 1);
  registry.SetDwordAt(sharedDlls32, u"C:\\gone\\twice.dll", 1);
  registry.SetDwordAt(sharedDlls32, u"C:\\T\\twice.dll", 1);
  AddFile(u"C:\\T\\twice.dll");
  Load();
  EXPECT_EQ(Found(u"plain.exe"), u"C:\\Program Files\\T\\plain.exe") << "found under its name in the other view";
  EXPECT_EQ(Found(u"byfolder"), u"C:\\T\\byfolder.EXE");
  EXPECT_EQ(Found(u"bare"), u"");
  EXPECT_EQ(Found(u"gone"), u"");
  EXPECT_EQ(Found(u"wrong.exe"), u"");
  EXPECT_EQ(Found(u"shared.dll"), u"C:\\T\\SHARED.dll") << "only in the 64-bit view";
  EXPECT_EQ(Found(u"narrow.dll"), u"C:\\T\\narrow.dll");
  EXPECT_EQ(Found(u"app"), u"C:\\T\\app.exe") << "the earliest extension";
  EXPECT_EQ(Found(u"twice.dll"), u"") << "the first entry of that name is the candidate";
}

TEST_F(FileNames, CommandLinesAreSplitAndBuilt) {
  Load();
  const struct {
    const char16_t *Command, *File, *Params;
  } rows[] = {
      {u"\"C:\\A b\\u.exe\" /S", u"C:\\A b\\u.exe", u"/S"},
      {u"C:\\A\\u.exe", u"C:\\A\\u.exe", u""},
      {u"  C:\\A\\u.exe   /x \"y z\"  ", u"C:\\A\\u.exe", u"/x \"y z\""},
      {u"\"C:\\A\\u.exe\" \"C:\\a b\"", u"C:\\A\\u.exe", u"C:\\a b\""},
      {u"a.exe /run A.EXE", u"a.exe", u"/run"},
      {u"", u"", u""},
  };
  for (const auto& row : rows) {
    std::u16string file = row.Command;  // reading from an output is allowed
    std::u16string params;
    FileUtils::ParseCommand(file, file, params);
    EXPECT_EQ(file, row.File);
    EXPECT_EQ(params, row.Params);
  }
  EXPECT_EQ(FileUtils::MakeCommand(u" C:\\A b\\u.exe ", u" "), u"\"C:\\A b\\u.exe\"");
  EXPECT_EQ(FileUtils::MakeCommand(u"C:\\A\\u.exe", u" /S "), u"C:\\A\\u.exe /S");
  EXPECT_EQ(FileUtils::MakeCommand(u"a \"b\"", u""), u"\"a \"\"b\"\"\"");
}

}  // namespace
}  // namespace varcolin
