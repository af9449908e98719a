// Links that the shell itself writes say in the library's parser what they say in the shell.
#include <gtest/gtest.h>

#include <functional>
#include <memory>

#include "contract/TempFolder.h"
#include "platform/Com.h"
#include "platform/windows/WindowsApi.h"
#include "support/uShellLinkInfo.h"
#include "support/uText.h"

namespace varcolin {
namespace {

struct TRelease {
  void operator()(IUnknown* AObject) const noexcept { AObject->Release(); }
};
template <class I>
using TComRef = std::unique_ptr<I, TRelease>;

/// A link of the shell's own.
class TShellsLink {
 public:
  TShellsLink() {
    IShellLinkW* link = nullptr;
    if (SUCCEEDED(CoCreateInstance(CLSID_ShellLink, nullptr, CLSCTX_INPROC_SERVER, IID_IShellLinkW,
                                   reinterpret_cast<void**>(&link)))) {
      FLink.reset(link);
      IPersistFile* file = nullptr;
      if (SUCCEEDED(link->QueryInterface(IID_IPersistFile, reinterpret_cast<void**>(&file)))) FFile.reset(file);
    }
  }

  [[nodiscard]] bool IsThere() const noexcept { return FLink && FFile; }
  IShellLinkW* operator->() const noexcept { return FLink.get(); }
  [[nodiscard]] bool Save(const std::u16string& APath) const {
    return SUCCEEDED(FFile->Save(AsWide(APath.c_str()), TRUE));
  }
  [[nodiscard]] bool Load(const std::u16string& APath) const {
    return SUCCEEDED(FFile->Load(AsWide(APath.c_str()), STGM_READ));
  }
  /// The target: Wine knows only the ANSI form of a path that is not kept as an item ID list too.
  [[nodiscard]] std::u16string Path() const {
    LPITEMIDLIST list = nullptr;
    std::u16string path(MAX_PATH, u'\0');
    const bool isThere = SUCCEEDED(FLink->GetIDList(&list)) && SHGetPathFromIDListW(list, AsWide(path.data()));
    CoTaskMemFree(list);
    if (isThere) return path.c_str();
    return Answer([&](auto* AText, int ASize) { return FLink->GetPath(AText, ASize, nullptr, 0); });
  }
  /// What one of the link's questions for a text answers.
  template <class TGet>
  [[nodiscard]] static std::u16string Answer(TGet AGet) {
    std::u16string buffer(1024, u'\0');
    if (FAILED(AGet(AsWide(buffer.data()), static_cast<int>(buffer.size())))) return u"no answer";
    return buffer.c_str();
  }

 private:
  TComRef<IShellLinkW> FLink;
  TComRef<IPersistFile> FFile;
};

class ShellsLinks : public ::testing::Test {
 protected:
  ShellsLinks() {
    TShellLinkInfo::Load(Machine.Files, Machine.Shell, Machine.System,
                         [](std::u16string_view AText) { return std::u16string(AText); });
  }
  ~ShellsLinks() override { TShellLinkInfo::Unload(); }

  TMachine& Machine = testing::MachineUnderTest();
  TComScope Com{Machine.Com, ECom::Apartment};
};

TEST_F(ShellsLinks, SayWhatTheShellSays) {
  testing::TTempFolder folder;
  std::u16string windows;
  ASSERT_EQ(Machine.System.GetWindowsFolder(windows), WinError::Success);
  const std::u16string targets[] = {windows,
                                    folder.Write(u"b\u00FCcher \u0416.exe", {}),
                                    folder.Write(u"plain.txt", {}),
                                    u"C:\\nowhere\\gone.exe",
                                    u"\\\\server\\share\\tool.exe",
                                    u"Z:\\"};
  int number = 0;
  for (const std::u16string& target : targets) {
    const std::u16string path = folder / (u"link" + IntToStr(++number) + u".lnk");
    {
      const TShellsLink made;
      ASSERT_TRUE(made.IsThere());
      if (FAILED(made->SetPath(AsWide(target.c_str())))) continue;
      made->SetArguments(L"/run \"a b\"");
      made->SetWorkingDirectory(L"C:\\Work \u017Cone");
      made->SetDescription(L"What it is for");
      made->SetIconLocation(L"%SystemRoot%\\shell32.dll", -7);
      made->SetShowCmd(SW_SHOWMAXIMIZED);
      made->SetHotkey(0x0641);
      ASSERT_TRUE(made.Save(path)) << ToUtf8(target);
    }
    const TShellsLink shells;
    ASSERT_TRUE(shells.IsThere() && shells.Load(path));
    const TShellLinkInfo own(path);
    const auto text = [](auto AGet) { return ToUtf8(TShellsLink::Answer(AGet)); };
    std::u16string expanded;
    ASSERT_EQ(Machine.System.ExpandVariables(own.PathName(), expanded), WinError::Success);
    EXPECT_EQ(ToUtf8(expanded), ToUtf8(shells.Path()));
    EXPECT_EQ(ToUtf8(own.Arguments()),
              text([&](auto* AText, int ASize) { return shells->GetArguments(AText, ASize); }));
    EXPECT_EQ(ToUtf8(own.WorkingDirectory()),
              text([&](auto* AText, int ASize) { return shells->GetWorkingDirectory(AText, ASize); }));
    EXPECT_EQ(ToUtf8(own.Description()),
              text([&](auto* AText, int ASize) { return shells->GetDescription(AText, ASize); }));
    int index = 0;
    EXPECT_EQ(ToUtf8(own.IconLocation()),
              text([&](auto* AText, int ASize) { return shells->GetIconLocation(AText, ASize, &index); }));
    EXPECT_EQ(own.IconIndex(), index);
    WORD key = 0;
    EXPECT_TRUE(SUCCEEDED(shells->GetHotkey(&key)));
    EXPECT_EQ(own.HotKey(), key);
    EXPECT_EQ(own.ShowCmd(), static_cast<std::uint32_t>(SW_SHOWMAXIMIZED));  // Wine writes but does not read it
  }
  EXPECT_EQ(number, 6);
}

}  // namespace
}  // namespace varcolin
