// What every implementation of the modules and the icons has to do.
#include <gtest/gtest.h>

#include <algorithm>

#include "common/PeBuilder.h"
#include "contract/TempFolder.h"
#include "platform/Icons.h"
#include "platform/Modules.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using testing::TBytes;

class ModulesContract : public ::testing::Test {
 protected:
  IModules& Modules = testing::MachineUnderTest().Modules;
  IIcons& Icons = testing::MachineUnderTest().Icons;
  testing::TTempFolder Temp;
};

TEST_F(ModulesContract, LoadsLibrariesByName) {
  for (const std::u16string_view name : {u"shell32.dll", u"SHELL32.DLL", u"shell32"}) {
    TModule module;
    EXPECT_EQ(Modules.LoadModule(name, module), WinError::Success) << ToUtf8(name);
    TProcedure procedure = nullptr;
    EXPECT_EQ(Modules.FindExport(module, "GetInstance", procedure), WinError::ProcedureNotFound);
    EXPECT_EQ(procedure, nullptr);
  }
  TModule module;
  EXPECT_EQ(Modules.LoadModule(u"varcolin-none.dll", module), WinError::ModuleNotFound);
  EXPECT_EQ(Modules.LoadModule(Temp / u"none.dll", module), WinError::ModuleNotFound);
  const TBytes text(300, std::byte{'x'});
  EXPECT_EQ(Modules.LoadModule(Temp.Write(u"text.dll", text), module), WinError::BadExecutable);
  EXPECT_FALSE(module);
}

TEST_F(ModulesContract, AsksLibrariesForTheirVersion) {
  TDllVersion version;
  ASSERT_EQ(Modules.QueryDllVersion(u"shlwapi.dll", version), WinError::Success);
  EXPECT_GE(version.Major, 5U);
  ASSERT_EQ(Modules.QueryDllVersion(u"shell32.dll", version), WinError::Success);
  EXPECT_GE(version.Major, 6U);
  ASSERT_EQ(Modules.QueryDllVersion(u"comctl32.dll", version), WinError::Success);
  EXPECT_EQ(version.Major, 5U) << "without a manifest";
  const std::uint32_t build = version.Build;
  EXPECT_EQ(Modules.QueryDllVersion(u"kernel32.dll", version), WinError::ProcedureNotFound);
  EXPECT_EQ(Modules.QueryDllVersion(u"varcolin-none.dll", version), WinError::ModuleNotFound);
  EXPECT_EQ(version.Build, build);
}

TEST_F(ModulesContract, TellsWhereItRuns) {
  std::u16string host, own;
  ASSERT_EQ(Modules.GetHostPath(host), WinError::Success);
  ASSERT_EQ(Modules.GetOwnPath(own), WinError::Success);
  for (const std::u16string& path : {host, own}) {
    EXPECT_EQ(path.substr(1, 2), u":\\") << ToUtf8(path);
    EXPECT_EQ(path.find(u'\0'), std::u16string::npos);
  }
  EXPECT_TRUE(EndsText(u".exe", host));
}

TEST_F(ModulesContract, ReadsStringResources) {
  testing::TPeBuilder builder;
  builder.AddStrings(16, std::to_array<std::u16string_view>({u"sixteen", u"", u"a longer text"}));
  builder.AddStrings(65520, std::to_array<std::u16string_view>({u"far"}));
  for (const bool is64 : {false, true}) {
    TModule module;
    ASSERT_EQ(Modules.LoadAsResource(Temp.Write(u"texts.dll", builder.Build(is64)), module), WinError::Success);
    std::u16string text = u"untouched";
    EXPECT_NE(Modules.LoadStringResource(module, 17, 260, text), WinError::Success) << "empty counts as none";
    EXPECT_NE(Modules.LoadStringResource(module, 99, 260, text), WinError::Success);
    EXPECT_NE(Modules.LoadStringResource(module, 5000, 260, text), WinError::Success);
    EXPECT_EQ(text, u"untouched");
    EXPECT_EQ(Modules.LoadStringResource(module, 16, 260, text), WinError::Success);
    EXPECT_EQ(text, u"sixteen");
    EXPECT_EQ(Modules.LoadStringResource(module, 18, 5, text), WinError::Success);
    EXPECT_EQ(text, u"a lo");
    EXPECT_EQ(Modules.LoadStringResource(module, 65520, 260, text), WinError::Success);
    EXPECT_EQ(text, u"far");
    module.Close();
    EXPECT_EQ(testing::MachineUnderTest().Files.RemoveFile(Temp / u"texts.dll"), WinError::Success);
  }
  TModule module;
  EXPECT_EQ(Modules.LoadAsResource(Temp / u"none.dll", module), WinError::FileNotFound);
  const TBytes text(300, std::byte{'x'});
  EXPECT_EQ(Modules.LoadAsResource(Temp.Write(u"text.dll", text), module), WinError::BadExecutable);
  EXPECT_FALSE(module);
}

class IconsContract : public ModulesContract {};

TEST_F(IconsContract, KeepsImagesInLists) {
  TIcon large, small;
  const std::uint8_t sides[] = {16, 32};
  ASSERT_EQ(Icons.ExtractIcons(Temp.Write(u"one.ico", testing::MakeIconFile(sides)), 0, large, small),
            WinError::Success);
  TImageList list;
  ASSERT_EQ(Icons.MakeImageList(32, 32, 4, 4, list), WinError::Success);
  EXPECT_EQ(Icons.ImageCount(list), 0);
  std::int32_t index = -1;
  for (std::int32_t i = 0; i < 10; ++i) {
    ASSERT_EQ(Icons.AppendIcon(list, large, index), WinError::Success);
    EXPECT_EQ(index, i);
  }
  EXPECT_EQ(Icons.ImageCount(list), 10);
  TIcon copy;
  ASSERT_EQ(Icons.CopyImage(list, 9, copy), WinError::Success);
  ASSERT_EQ(Icons.AppendIcon(list, copy, index), WinError::Success);
  EXPECT_EQ(index, 10);
  TIcon none;
  EXPECT_NE(Icons.CopyImage(list, 11, none), WinError::Success);
  EXPECT_NE(Icons.CopyImage(list, -1, none), WinError::Success);
  EXPECT_NE(Icons.AppendIcon(list, none, index), WinError::Success);
  EXPECT_FALSE(none);
  EXPECT_EQ(index, 10);
}

TEST_F(IconsContract, ExtractsIcons) {
  testing::TPeBuilder builder;
  const std::uint8_t both[] = {16, 32};
  const std::uint8_t onlySmall[] = {16};
  builder.AddIcon(5, both);
  builder.AddIcon(101, onlySmall);
  const std::u16string path = Temp.Write(u"icons.exe", builder.Build());
  for (const std::int32_t index : {0, 1}) {
    TIcon large, small;
    EXPECT_EQ(Icons.ExtractIcons(path, index, large, small), WinError::Success) << index;
    EXPECT_TRUE(large || small) << index;
  }
  TIcon large, small;
  EXPECT_EQ(Icons.ExtractIcons(path, 2, large, small), WinError::ResourceNameNotFound);
  EXPECT_EQ(Icons.ExtractIcons(Temp.Write(u"bare.exe", testing::TPeBuilder().Build()), 0, large, small),
            WinError::ResourceNameNotFound);
  const TBytes text(300, std::byte{'x'});
  EXPECT_EQ(Icons.ExtractIcons(Temp.Write(u"text.txt", text), 0, large, small), WinError::ResourceNameNotFound);
  EXPECT_EQ(Icons.ExtractIcons(Temp / u"none.exe", 0, large, small), WinError::FileNotFound);
  EXPECT_FALSE(large);
  EXPECT_FALSE(small);
}

}  // namespace
}  // namespace varcolin
