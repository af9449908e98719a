// A folder of its own for each contract test that needs files, below the temporary folder of the machine under test.
#pragma once

#include <gtest/gtest.h>

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "contract/MachineUnderTest.h"
#include "platform/Files.h"
#include "platform/SystemFacts.h"

namespace varcolin::testing {

class TTempFolder {
 public:
  TTempFolder() : FFiles(MachineUnderTest().Files) {
    EXPECT_EQ(MachineUnderTest().System.GetVariable(u"TEMP", FPath), WinError::Success);
    FPath += u"\\VarcolinContract";
    RemoveTree(FPath);
    EXPECT_EQ(FFiles.MakeFolder(FPath), WinError::Success);
  }
  TTempFolder(const TTempFolder&) = delete;
  TTempFolder& operator=(const TTempFolder&) = delete;
  ~TTempFolder() { RemoveTree(FPath); }

  [[nodiscard]] const std::u16string& Path() const noexcept { return FPath; }
  [[nodiscard]] std::u16string operator/(std::u16string_view AName) const {
    return std::u16string(FPath).append(u"\\").append(AName);
  }
  /// Writes a file and gives its path.
  std::u16string Write(std::u16string_view AName, std::span<const std::byte> AData) {
    std::u16string path = *this / AName;
    EXPECT_EQ(FFiles.WriteWhole(path, AData), WinError::Success);
    return path;
  }

 private:
  void RemoveTree(const std::u16string& AFolder) {
    std::vector<TFoundFile> entries;
    TFindHandle walk;
    TFoundFile entry;
    for (TWinError error = FFiles.FindFirst(AFolder + u"\\*", walk, entry); error == WinError::Success;
         error = FFiles.FindNext(walk, entry)) {
      entries.push_back(entry);
    }
    walk.Close();
    for (const TFoundFile& found : entries) {
      if (found.Name == u"." || found.Name == u"..") continue;
      const std::u16string path = AFolder + u"\\" + found.Name;
      static_cast<void>(FFiles.SetAttributes(path, FileAttribute::Normal));
      if (found.Facts.IsFolder()) {
        RemoveTree(path);
      } else {
        static_cast<void>(FFiles.RemoveFile(path));
      }
    }
    static_cast<void>(FFiles.RemoveFolder(AFolder));
  }

  IWritableFiles& FFiles;
  std::u16string FPath;
};

}  // namespace varcolin::testing
