// What every implementation of the files has to do.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "common/PeBuilder.h"
#include "common/VersionBytes.h"
#include "contract/TempFolder.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using testing::TBytes;

TBytes BytesOf(std::string_view AText) {
  const std::span<const std::byte> bytes = std::as_bytes(std::span(AText));
  return {bytes.begin(), bytes.end()};
}

class FilesContract : public ::testing::Test {
 protected:
  IWritableFiles& Files = testing::MachineUnderTest().Files;
  testing::TTempFolder Temp;

  TWinError FactsError(std::u16string_view APath) {
    TFileFacts facts;
    return Files.GetFacts(APath, facts);
  }
  std::string Matches(std::u16string_view APattern) {
    std::string names;
    TFindHandle walk;
    TFoundFile entry;
    TWinError error = Files.FindFirst(Temp / APattern, walk, entry);
    if (error != WinError::Success) return "error " + std::to_string(error);
    for (; error == WinError::Success; error = Files.FindNext(walk, entry)) names += ToUtf8(entry.Name) + " ";
    EXPECT_EQ(error, WinError::NoMoreFiles);
    return names;
  }
};

TEST_F(FilesContract, WritesReadsReplacesAndRemoves) {
  const std::u16string path = Temp / u"note.txt";
  TBytes data = BytesOf("untouched");
  EXPECT_EQ(Files.ReadWhole(path, 100, data), WinError::FileNotFound);
  EXPECT_EQ(data, BytesOf("untouched"));

  ASSERT_EQ(Files.WriteWhole(path, BytesOf("first text")), WinError::Success);
  ASSERT_EQ(Files.WriteWhole(path, BytesOf("second")), WinError::Success);
  ASSERT_EQ(Files.ReadWhole(path, 6, data), WinError::Success);
  EXPECT_EQ(data, BytesOf("second"));
  EXPECT_EQ(Files.ReadWhole(path, 5, data), WinError::NotEnoughMemory);
  EXPECT_EQ(data, BytesOf("second"));

  ASSERT_EQ(Files.WriteWhole(path, {}), WinError::Success);
  ASSERT_EQ(Files.ReadWhole(path, 0, data), WinError::Success);
  EXPECT_TRUE(data.empty());

  ASSERT_EQ(Files.RemoveFile(path), WinError::Success);
  EXPECT_EQ(Files.RemoveFile(path), WinError::FileNotFound);
  EXPECT_EQ(FactsError(path), WinError::FileNotFound);
}

TEST_F(FilesContract, ReadsAFileThatNobodyMayWriteToMeanwhile) {
  const std::u16string path = Temp.Write(u"note.txt", BytesOf("text"));
  TBytes data = BytesOf("untouched");
  EXPECT_EQ(Files.ReadWholeDenyWrite(path, 3, data), WinError::FileTooLarge);
  EXPECT_EQ(Files.ReadWholeDenyWrite(Temp / u"missing", 3, data), WinError::FileNotFound);
  EXPECT_EQ(Files.ReadWholeDenyWrite(Temp.Path(), 3, data), WinError::AccessDenied);
  EXPECT_EQ(data, BytesOf("untouched"));
  EXPECT_EQ(Files.ReadWholeDenyWrite(path, 4, data), WinError::Success);
  EXPECT_EQ(data, BytesOf("text"));
}

TEST_F(FilesContract, Appends) {
  const std::u16string path = Temp / u"log.txt";
  TBytes data;
  for (const std::string_view line : {"one\n", "", "two\n", "three"}) {
    ASSERT_EQ(Files.AppendBytes(path, BytesOf(line)), WinError::Success);
    ASSERT_EQ(Files.ReadWhole(path, 100, data), WinError::Success);
  }
  EXPECT_EQ(data, BytesOf("one\ntwo\nthree"));
  ASSERT_EQ(Files.WriteWhole(path, BytesOf("new")), WinError::Success);
  ASSERT_EQ(Files.AppendBytes(path, BytesOf(" text")), WinError::Success);
  ASSERT_EQ(Files.AppendBytes(path, BytesOf(" more")), WinError::Success);
  TFileFacts facts;
  ASSERT_EQ(Files.GetFacts(path, facts), WinError::Success);
  EXPECT_EQ(facts.Size, 13U);
  ASSERT_EQ(Files.ReadWhole(path, 13, data), WinError::Success);
  EXPECT_EQ(data, BytesOf("new text more"));
  EXPECT_EQ(Files.AppendBytes(Temp / u"x\\y", {}), WinError::PathNotFound);
  EXPECT_EQ(Files.AppendBytes(Temp.Path(), {}), WinError::AccessDenied);
}

TEST_F(FilesContract, TellsFacts) {
  const std::u16string path = Temp.Write(u"Facts.bin", BytesOf("12345"));
  const TFileTime now = testing::MachineUnderTest().System.UniversalTime();
  TFileFacts facts;
  ASSERT_EQ(Files.GetFacts(path, facts), WinError::Success);
  EXPECT_EQ(facts.Size, 5U);
  EXPECT_EQ(facts.Attributes, FileAttribute::Archive);
  constexpr std::uint64_t Minute = 600'000'000;
  EXPECT_LT(facts.LastWriteTime.Ticks, now.Ticks + Minute);
  EXPECT_GT(facts.LastWriteTime.Ticks + Minute, now.Ticks);
  EXPECT_GT(facts.CreationTime.Ticks + Minute, now.Ticks);

  ASSERT_EQ(Files.GetFacts(Temp.Path(), facts), WinError::Success);
  EXPECT_TRUE(facts.IsFolder());
  EXPECT_EQ(facts.Size, 0U);
}

TEST_F(FilesContract, AcceptsEverySpellingOfAPath) {
  Temp.Write(u"Name.txt", BytesOf("x"));
  ASSERT_EQ(Files.MakeFolder(Temp / u"Sub"), WinError::Success);
  std::u16string slashes = Temp / u"name.TXT";
  std::ranges::replace(slashes, u'\\', u'/');
  for (const std::u16string& path :
       {Temp / u"NAME.TXT", slashes, Temp / u"\\Name.txt", Temp / u".\\Name.txt", Temp / u"Sub\\..\\Name.txt",
        Temp / u"Name.txt.", Temp / u"Name.txt .. ", u"\\\\?\\" + (Temp / u"Name.txt"), Temp / u"Sub\\",
        Temp / u"Sub\\.", Temp / u"missing\\..\\Name.txt"}) {
    EXPECT_EQ(FactsError(path), WinError::Success) << ToUtf8(path);
  }
}

TEST_F(FilesContract, NamesTheErrorOfAPath) {
  Temp.Write(u"file", BytesOf("x"));
  const struct {
    std::u16string Path;
    TWinError Error;
  } cases[] = {
      {Temp / u"missing", WinError::FileNotFound},
      {Temp / u"missing\\file", WinError::PathNotFound},
      {Temp / u"file\\below", WinError::PathNotFound},
      {u"", WinError::PathNotFound},
      {Temp / u"a*", WinError::InvalidName},
      {Temp / u"a?", WinError::InvalidName},
      {Temp / u"a<b", WinError::InvalidName},
      {Temp / u"a|b", WinError::InvalidName},
      {(Temp / u"file") + u'\0' + u"x", WinError::InvalidName},
      {Temp / u"a\"b", WinError::InvalidName},
  };
  for (const auto& [path, error] : cases) EXPECT_EQ(FactsError(path), error) << ToUtf8(path);
  // which error these get differs from system to system
  EXPECT_NE(FactsError(Temp / std::u16string(300, u'n')), WinError::Success);
  EXPECT_NE(FactsError(Temp / std::u16string(40000, u'n')), WinError::Success);
  EXPECT_NE(FactsError(u"\\\\?\\"), WinError::Success);
  EXPECT_NE(FactsError(u":\\"), WinError::Success);
}

TEST_F(FilesContract, WalksAFolder) {
  for (const std::u16string_view name : {u"b.txt", u"A.TXT", u"c", u"d.text", u"e.f.txt"}) Temp.Write(name, {});
  const struct {
    std::u16string_view Pattern;
    std::string_view Names;
  } cases[] = {
      {u"*", ". .. A.TXT b.txt c d.text e.f.txt "},
      {u"*.*", ". .. A.TXT b.txt c d.text e.f.txt "},
      {u"?.txt", "A.TXT b.txt "},
      {u"*.TXT", "A.TXT b.txt e.f.txt "},
      {u"*.t?xt", "d.text "},
      {u"*.f.*", "e.f.txt "},
      {u"B.txt", "b.txt "},
      {u"c", "c "},
      {u"c.*", "c "},
      {u"c?", "c "},
      {u"*z*", "error 2"},
      {u"missing", "error 2"},
      {u"", "error 2"},
      {u"missing\\*", "error 3"},
      {u"a*\\b", "error 123"},
      {u"c\\*", "error 267"},
  };
  for (const auto& [pattern, names] : cases) {
    // Wine takes a question mark for exactly one character, and has another error for a file where a folder must be
    if ((pattern == u"c?" || pattern == u"c\\*") && testing::IsWine()) continue;
    EXPECT_EQ(Matches(pattern), names) << ToUtf8(pattern);
  }
}

TEST_F(FilesContract, WalkSeesFactsAndTakesEmptyFolders) {
  ASSERT_EQ(Files.MakeFolder(Temp / u"Empty"), WinError::Success);
  EXPECT_EQ(Matches(u"Empty\\*"), ". .. ");
  EXPECT_EQ(Matches(u"Empty\\*.txt"), "error 2");
  TFindHandle walk;
  TFoundFile entry;
  ASSERT_EQ(Files.FindFirst(Temp / u"empty", walk, entry), WinError::Success);
  EXPECT_EQ(entry.Name, u"Empty");
  EXPECT_TRUE(entry.Facts.IsFolder());
  EXPECT_EQ(Files.FindNext(walk, entry), WinError::NoMoreFiles);
  EXPECT_EQ(entry.Name, u"Empty");
}

TEST_F(FilesContract, MakesAndRemovesFolders) {
  const std::u16string folder = Temp / u"Folder";
  ASSERT_EQ(Files.MakeFolder(folder), WinError::Success);
  EXPECT_EQ(Files.MakeFolder(Temp / u"FOLDER"), WinError::AlreadyExists);
  EXPECT_EQ(Files.MakeFolder(Temp / u"x\\y"), WinError::PathNotFound);
  const std::u16string file = Temp.Write(u"Folder\\file", BytesOf("x"));
  EXPECT_EQ(Files.MakeFolder(file), WinError::AlreadyExists);
  EXPECT_EQ(Files.RemoveFolder(folder), WinError::FolderNotEmpty);
  EXPECT_EQ(Files.RemoveFolder(file), WinError::InvalidFolderName);
  EXPECT_EQ(Files.RemoveFile(folder), WinError::AccessDenied);
  EXPECT_EQ(Files.WriteWhole(folder, {}), WinError::AccessDenied);
  EXPECT_EQ(Files.WriteWhole(Temp / u"x\\y", {}), WinError::PathNotFound);
  TBytes data;
  EXPECT_EQ(Files.ReadWhole(folder, 10, data), WinError::AccessDenied);
  ASSERT_EQ(Files.RemoveFile(file), WinError::Success);
  EXPECT_EQ(Files.RemoveFolder(folder), WinError::Success);
  EXPECT_EQ(Files.RemoveFolder(folder), WinError::FileNotFound);
}

TEST_F(FilesContract, HeedsTheReadOnlyAttribute) {
  const std::u16string path = Temp.Write(u"fixed", BytesOf("x"));
  ASSERT_EQ(Files.SetAttributes(path, FileAttribute::ReadOnly | FileAttribute::Hidden), WinError::Success);
  TFileFacts facts;
  ASSERT_EQ(Files.GetFacts(path, facts), WinError::Success);
  EXPECT_NE(facts.Attributes & FileAttribute::ReadOnly, 0U);
  EXPECT_EQ(Files.RemoveFile(path), WinError::AccessDenied);
  if (!testing::IsWine()) {
    // Wine keeps the archive bit, and writes what the user of the computer may write
    EXPECT_EQ(facts.Attributes, FileAttribute::ReadOnly | FileAttribute::Hidden);
    EXPECT_EQ(Files.WriteWhole(path, {}), WinError::AccessDenied);
    EXPECT_EQ(Files.AppendBytes(path, {}), WinError::AccessDenied);
  }
  ASSERT_EQ(Files.SetAttributes(path, FileAttribute::Normal), WinError::Success);
  EXPECT_EQ(Files.RemoveFile(path), WinError::Success);
  EXPECT_EQ(Files.SetAttributes(path, FileAttribute::Normal), WinError::FileNotFound);
}

TEST_F(FilesContract, RedirectsTheSystemFolder) {
  std::u16string windows;
  ASSERT_EQ(testing::MachineUnderTest().System.GetWindowsFolder(windows), WinError::Success);
  const auto path = [&](std::u16string_view AFolder) { return windows + u"\\" + std::u16string(AFolder); };
  const TBytes text = BytesOf("x");
  ASSERT_EQ(Files.WriteWhole(path(u"SysWOW64\\varcolin32.tmp"), text), WinError::Success);
  ASSERT_EQ(Files.WriteWhole(path(u"Sysnative\\varcolin64.tmp"), text), WinError::Success);
  EXPECT_EQ(FactsError(path(u"System32\\varcolin32.tmp")), WinError::Success);
  EXPECT_EQ(FactsError(path(u"System32\\varcolin64.tmp")), WinError::FileNotFound);
  TFindHandle walk;
  TFoundFile entry;
  EXPECT_EQ(Files.FindFirst(path(u"system32\\varcolin*.tmp"), walk, entry), WinError::Success);
  EXPECT_EQ(entry.Name, u"varcolin32.tmp");
  EXPECT_EQ(Files.FindNext(walk, entry), WinError::NoMoreFiles);

  std::uintptr_t first = 7, second = 7;
  ASSERT_EQ(Files.DisableRedirection(first), WinError::Success);
  EXPECT_EQ(FactsError(path(u"System32\\varcolin32.tmp")), WinError::FileNotFound);
  EXPECT_EQ(FactsError(path(u"System32\\varcolin64.tmp")), WinError::Success);
  std::thread([&] {
    EXPECT_EQ(FactsError(path(u"System32\\varcolin32.tmp")), WinError::Success) << "other threads stay redirected";
  }).join();
  ASSERT_EQ(Files.DisableRedirection(second), WinError::Success);
  ASSERT_EQ(Files.RevertRedirection(second), WinError::Success);
  EXPECT_EQ(FactsError(path(u"System32\\varcolin64.tmp")), WinError::Success) << "still off as before";
  ASSERT_EQ(Files.RevertRedirection(first), WinError::Success);
  EXPECT_EQ(FactsError(path(u"System32\\varcolin32.tmp")), WinError::Success);

  EXPECT_EQ(Files.RemoveFile(path(u"SysWOW64\\varcolin32.tmp")), WinError::Success);
  EXPECT_EQ(Files.RemoveFile(path(u"Sysnative\\varcolin64.tmp")), WinError::Success);
}

TEST_F(FilesContract, ReadsVersionResources) {
  const TBytes version = testing::MakeVersion(3, 7);
  for (const bool is64 : {false, true}) {
    testing::TPeBuilder builder;
    builder.Add(16, 1, version);
    const std::u16string path = Temp.Write(u"product.dll", builder.Build(is64));
    TBytes data;
    ASSERT_EQ(Files.ReadVersionResource(path, data), WinError::Success);
    ASSERT_GE(data.size(), version.size());  // Windows may give room behind it
    EXPECT_TRUE(std::equal(version.begin(), version.end(), data.begin()));
  }
  TBytes untouched = BytesOf("untouched");
  testing::TPeBuilder builder;
  builder.AddStrings(0, {});
  // Wine does not tell a missing resource type from missing resources
  EXPECT_EQ(Files.ReadVersionResource(Temp.Write(u"none.dll", builder.Build()), untouched),
            testing::IsWine() ? WinError::ResourceDataNotFound : WinError::ResourceTypeNotFound);
  EXPECT_NE(Files.ReadVersionResource(Temp.Write(u"bare.dll", testing::TPeBuilder().Build()), untouched),
            WinError::Success);
  EXPECT_NE(Files.ReadVersionResource(Temp.Write(u"text.dll", BytesOf("no executable")), untouched), WinError::Success);
  EXPECT_EQ(Files.ReadVersionResource(Temp / u"missing.dll", untouched), WinError::FileNotFound);
  EXPECT_EQ(untouched, BytesOf("untouched"));
}

}  // namespace
}  // namespace varcolin
