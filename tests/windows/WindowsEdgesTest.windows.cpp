// What the real implementation has to get right beyond the contract that it shares with the simulated one.
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "contract/MachineUnderTest.h"
#include "platform/Files.h"
#include "platform/Modules.h"
#include "platform/Processes.h"
#include "platform/Registry.h"
#include "platform/Shell.h"
#include "platform/windows/WindowsApi.h"

namespace varcolin {
namespace {

using namespace std::string_view_literals;

class WindowsEdges : public ::testing::Test {
 protected:
  TMachine& Machine = testing::MachineUnderTest();
};

TEST_F(WindowsEdges, ValuesOfAnySizeArriveWhole) {
  constexpr std::u16string_view path = u"Software\\VarcolinEdges";
  IWritableRegistry& registry = Machine.Registry;
  TRegistryKey key;
  bool created = false;
  ASSERT_EQ(registry.CreateKeyPath(ERegistryRoot::CurrentUser, path, KeyAccess::AllAccess, key, created),
            WinError::Success);
  TRegistryValue value;
  value.Data.assign(10, std::byte{1});
  for (const std::size_t size : {0u, 1u, 4095u, 4096u, 4097u, 8193u, 1u << 20, 3u}) {
    std::vector<std::byte> data(size);
    for (std::size_t index = 0; index < size; ++index) data[index] = static_cast<std::byte>(index * 7);
    ASSERT_EQ(registry.SetValue(key, u"Value", RegType::Binary, data.data(), size), WinError::Success);
    ASSERT_EQ(registry.EnumValue(key, 0, value), WinError::Success) << size;
    EXPECT_TRUE(value.Name == u"Value" && value.Type == RegType::Binary && value.Data == data) << size;
    value.Data.clear();
    ASSERT_EQ(registry.QueryValue(key, value.Name, value), WinError::Success) << size;  // the name lies in the result
    EXPECT_TRUE(value.Name == u"Value" && value.Data == data) << size;
  }

  // A name with a NUL would reach the value or key whose name ends there.
  EXPECT_NE(registry.RemoveValue(key, u"Value\0x"sv), WinError::Success);
  EXPECT_NE(registry.RemoveKey(ERegistryRoot::CurrentUser, u"Software\\VarcolinEdges\0x"sv, 0), WinError::Success);
  EXPECT_NE(registry.SetValue(key, u"Value\0x"sv, RegType::Binary, nullptr, 0), WinError::Success);
  ASSERT_EQ(registry.QueryValue(key, u"Value", value), WinError::Success);
  EXPECT_EQ(value.Data.size(), 3u);

  EXPECT_EQ(registry.RemoveKey(ERegistryRoot::CurrentUser, path, 0), WinError::Success);
}

TEST_F(WindowsEdges, DevicesAreNotReadAsFiles) {
  std::vector<std::byte> data(3);
  for (const std::u16string_view name : {u"NUL"sv, u"CON"sv, u"C:\\NUL"sv, u"\\\\.\\pipe\\"sv, u"\\\\.\\C:"sv}) {
    EXPECT_NE(Machine.Files.ReadWhole(name, 1000, data), WinError::Success);
    EXPECT_EQ(data.size(), 3u);
  }
}

TEST_F(WindowsEdges, LoadingKeepsTheProcessesErrorMode) {
  const UINT before = SetErrorMode(SEM_NOOPENFILEERRORBOX);
  TModule module;
  EXPECT_NE(Machine.Modules.LoadModule(u"C:\\VarcolinNone.dll", module), WinError::Success);
  EXPECT_EQ(Machine.Modules.LoadModule(u"version", module), WinError::Success);
  EXPECT_EQ(SetErrorMode(before), static_cast<UINT>(SEM_NOOPENFILEERRORBOX));
}

TEST_F(WindowsEdges, EveryProcessAnswersOrFails) {
  std::u16string own;
  ASSERT_EQ(Machine.Modules.GetHostPath(own), WinError::Success);
  std::vector<TProcessEntry> entries;
  ASSERT_EQ(Machine.Processes.EnumProcesses(entries), WinError::Success);
  int found = 0;
  for (const TProcessEntry& entry : entries) {
    std::u16string path = u"untouched";
    const TWinError error = Machine.Processes.GetProcessPath(entry.Id, path);
    EXPECT_EQ(error != WinError::Success, path == u"untouched") << entry.Id;
    if (entry.Id != Machine.Processes.CurrentProcessId()) continue;
    ++found;
    EXPECT_EQ(error, WinError::Success);
    EXPECT_TRUE(path == own);
  }
  EXPECT_EQ(found, 1);
}

TEST_F(WindowsEdges, AskingForAFolderNeverMakesIt) {
  std::u16string path = u"untouched";
  EXPECT_EQ(Machine.Shell.GetSpecialFolder(CSIDL_MYMUSIC | CSIDL_FLAG_CREATE, path), WinError::FileNotFound);
  EXPECT_EQ(Machine.Shell.GetSpecialFolder(-1, path), WinError::FileNotFound);
  EXPECT_TRUE(path == u"untouched");
}

}  // namespace
}  // namespace varcolin
