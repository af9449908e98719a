// What every implementation of the registry has to do, for a 32-bit process on 64-bit Windows.
#include <gtest/gtest.h>

#include <algorithm>
#include <string>

#include "contract/MachineUnderTest.h"
#include "platform/Registry.h"

namespace varcolin {
namespace {

constexpr ERegistryRoot User = ERegistryRoot::CurrentUser;
constexpr ERegistryRoot Machine = ERegistryRoot::LocalMachine;
constexpr std::uint32_t Bits64 = KeyAccess::Wow64_64Key;
constexpr std::uint32_t Bits32 = KeyAccess::Wow64_32Key;
constexpr std::uint32_t All = KeyAccess::AllAccess;
constexpr std::u16string_view Base = u"Software\\VarcolinContract";
// Enough for the system to tell of a change; reached only when it does not.
constexpr std::uint32_t Soon = 5000;

// The paths of this file are ASCII.
std::string Narrow(std::u16string_view APath) { return {APath.begin(), APath.end()}; }

std::u16string Below(std::u16string_view APath) { return std::u16string(Base).append(u"\\").append(APath); }

class RegistryContract : public ::testing::Test {
 protected:
  RegistryContract() { CleanUp(); }
  ~RegistryContract() override { CleanUp(); }

  TWinError Open(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess = KeyAccess::Read) {
    TRegistryKey key;
    return Registry.OpenKey(ABase, APath, AAccess, key);
  }
  TRegistryKey Create(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AView = 0) {
    TRegistryKey key;
    bool created = false;
    EXPECT_EQ(Registry.CreateKeyPath(ABase, APath, All | AView, key, created), WinError::Success);
    return key;
  }
  TWinError Set(const TRegistryKey& AKey, std::u16string_view AName, std::uint32_t AType, std::string_view ABytes) {
    return Registry.SetValue(AKey, AName, AType, ABytes.data(), ABytes.size());
  }
  std::vector<std::u16string> KeysOf(const TRegistryKey& AKey) {
    std::vector<std::u16string> names;
    std::u16string name;
    TWinError error = WinError::Success;
    while ((error = Registry.EnumKey(AKey, static_cast<std::uint32_t>(names.size()), name)) == WinError::Success) {
      names.push_back(name);
    }
    EXPECT_EQ(error, WinError::NoMoreItems);
    return names;
  }
  void RemoveTree(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AView = 0) {
    TRegistryKey key;
    if (Registry.OpenKey(ABase, APath, KeyAccess::Read | AView, key) != WinError::Success) return;
    for (const std::u16string& name : KeysOf(key)) RemoveTree(key, name, AView);
    static_cast<void>(Registry.RemoveKey(ABase, APath, AView));
  }
  void CleanUp() {
    RemoveTree(User, Base);
    RemoveTree(Machine, Base, Bits64);
    RemoveTree(Machine, Base, Bits32);
    RemoveTree(User, u"Software\\Classes\\VarcolinContract");
    for (const std::u16string_view path : SharedKeys) RemoveTree(Machine, path, Bits64);
    for (const std::u16string_view path : SeparateKeys) RemoveTree(Machine, path, Bits64);
  }
  TEvent MakeEvent() {
    TEvent event;
    EXPECT_EQ(Sync.MakeEvent(false, event), WinError::Success);
    return event;
  }

  static constexpr std::u16string_view SharedKeys[] = {
      u"Software\\Microsoft\\Windows\\CurrentVersion\\App Paths\\VarcolinContract.exe",
      u"Software\\Microsoft\\Windows\\CurrentVersion\\Policies\\VarcolinContract",
      u"Software\\Policies\\VarcolinContract",
      u"Software\\Microsoft\\Windows NT\\CurrentVersion\\Fonts\\VarcolinContract",
      u"Software\\Classes\\VarcolinContract",
      u"Software\\Classes\\Installer\\VarcolinContract",
      u"Software\\Classes\\TypeLib\\VarcolinContract",
  };
  static constexpr std::u16string_view SeparateKeys[] = {
      u"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\VarcolinContract",
      u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData\\VarcolinContract",
      u"Software\\Microsoft\\Windows NT\\CurrentVersion\\VarcolinContract",
      u"Software\\Classes\\CLSID\\VarcolinContract",
      u"Software\\Classes\\Interface\\VarcolinContract",
  };

  IWritableRegistry& Registry = testing::MachineUnderTest().Registry;
  ISync& Sync = testing::MachineUnderTest().Sync;
};

TEST_F(RegistryContract, SoftwareHasTwoViews) {
  Create(Machine, Below(u"Only64"), Bits64);
  Create(Machine, Below(u"Only32"));
  EXPECT_EQ(Open(Machine, Below(u"Only64")), WinError::FileNotFound);
  EXPECT_EQ(Open(Machine, Below(u"Only32")), WinError::Success);
  EXPECT_EQ(Open(Machine, Below(u"Only32"), KeyAccess::Read | Bits32), WinError::Success);
  EXPECT_EQ(Open(Machine, Below(u"Only32"), KeyAccess::Read | Bits64), WinError::FileNotFound);
  for (const std::uint32_t view : {0u, Bits32, Bits64}) {
    EXPECT_EQ(Open(Machine, u"Software\\Wow6432Node\\VarcolinContract\\Only32", KeyAccess::Read | view),
              WinError::Success);
  }
  // a handle keeps its view, and a flag leads from the 64-bit view into the other
  TRegistryKey key;
  ASSERT_EQ(Registry.OpenKey(Machine, Base, KeyAccess::Read | Bits64, key), WinError::Success);
  EXPECT_EQ(Open(key, u"Only64"), WinError::Success);
  EXPECT_EQ(Open(key, u"Only32"), WinError::FileNotFound);
  EXPECT_EQ(Open(key, u"Only32", KeyAccess::Read | Bits32), WinError::Success);
  // and so does the key that divides the views
  ASSERT_EQ(Registry.OpenKey(Machine, u"Software", KeyAccess::Read, key), WinError::Success);
  EXPECT_EQ(Open(key, u"VarcolinContract\\Only32"), WinError::Success);
  const auto names = KeysOf(key);
  EXPECT_EQ(std::count(names.begin(), names.end(), u"Wow6432Node"), 0);
  EXPECT_EQ(std::count(names.begin(), names.end(), u"VarcolinContract"), 1);

  EXPECT_EQ(Registry.RemoveKey(Machine, Below(u"Only64"), 0), WinError::FileNotFound);
  EXPECT_EQ(Registry.RemoveKey(Machine, Below(u"Only64"), Bits64), WinError::Success);
}

TEST_F(RegistryContract, SharedKeysAreOneInBothViews) {
  for (const std::u16string_view path : SharedKeys) {
    Create(Machine, path, Bits32);
    EXPECT_EQ(Open(Machine, path, KeyAccess::Read | Bits64), WinError::Success) << Narrow(path);
  }
  for (const std::u16string_view path : SeparateKeys) {
    Create(Machine, path, Bits64);
    EXPECT_EQ(Open(Machine, path, KeyAccess::Read | Bits32), WinError::FileNotFound) << Narrow(path);
  }
  EXPECT_EQ(Open(Machine, u"Software\\Wow6432Node\\Policies\\VarcolinContract", KeyAccess::Read | Bits64),
            WinError::Success);
  Create(User, Base, Bits32);
  EXPECT_EQ(Open(User, Base, KeyAccess::Read | Bits64), WinError::Success);
}

TEST_F(RegistryContract, ClassesRootShowsTheUsersClassesOverTheMachines) {
  constexpr std::u16string_view path = u"Software\\Classes\\VarcolinContract";
  const TRegistryKey machine = Create(Machine, path, Bits64);
  Create(machine, u"b");
  Create(machine, u"C");
  ASSERT_EQ(Set(machine, u"both", RegType::Binary, "m"), WinError::Success);
  ASSERT_EQ(Set(machine, u"machine", RegType::Binary, "m"), WinError::Success);
  const TRegistryKey user = Create(User, path);
  Create(user, u"a");
  Create(user, u"B");
  ASSERT_EQ(Set(user, u"both", RegType::Binary, "u"), WinError::Success);

  TRegistryKey merged;
  ASSERT_EQ(Registry.OpenKey(ERegistryRoot::ClassesRoot, u"VarcolinContract", KeyAccess::Read, merged),
            WinError::Success);
  TRegistryValue value;
  EXPECT_EQ(Registry.QueryValue(merged, u"machine", value), WinError::Success);
  EXPECT_EQ(Open(merged, u"C"), WinError::Success);
  if (testing::IsWine()) return;  // shows the machine's classes alone
  EXPECT_EQ(KeysOf(merged), (std::vector<std::u16string>{u"a", u"B", u"C"}));
  EXPECT_EQ(Open(merged, u"a"), WinError::Success);
  ASSERT_EQ(Registry.QueryValue(merged, u"both", value), WinError::Success);
  EXPECT_EQ(value.Data, std::vector{std::byte{'u'}});
  TRegistryKeyInfo info;
  ASSERT_EQ(Registry.QueryKeyInfo(merged, info), WinError::Success);
  EXPECT_EQ(info.SubKeyCount, 3u);
  EXPECT_EQ(info.ValueCount, 2u);
}

TEST_F(RegistryContract, EnumerationIsInTheOrderOfUpperCasedNames) {
  const TRegistryKey key = Create(User, Base);
  for (const std::u16string_view name : {u"b", u"C", u"_", u"\u00E4", u"a", u"1", u"Z"}) Create(key, name);
  std::vector<std::u16string> names = {u"1", u"a", u"b", u"C", u"Z", u"_", u"\u00E4"};
  if (testing::IsWine()) names = {u"1", u"_", u"a", u"b", u"C", u"Z", u"\u00E4"};  // of lower-cased names
  EXPECT_EQ(KeysOf(key), names);
  std::u16string name = u"kept";
  EXPECT_EQ(Registry.EnumKey(key, 7, name), WinError::NoMoreItems);
  EXPECT_EQ(name, u"kept");

  for (const std::u16string_view value : {u"z", u"", u"y"}) {
    ASSERT_EQ(Set(key, value, RegType::Binary, "x"), WinError::Success);
  }
  ASSERT_EQ(Set(key, u"Z", RegType::Binary, "changed"), WinError::Success) << "stays in its place, under its name";
  std::vector<std::u16string> values;
  TRegistryValue value;
  TWinError error = WinError::Success;
  while ((error = Registry.EnumValue(key, static_cast<std::uint32_t>(values.size()), value)) == WinError::Success) {
    values.push_back(value.Name);
  }
  EXPECT_EQ(error, WinError::NoMoreItems);
  std::vector<std::u16string> expected = {u"z", u"", u"y"};
  if (testing::IsWine()) expected = {u"", u"y", u"z"};  // sorted
  EXPECT_EQ(values, expected);
}

TEST_F(RegistryContract, InfoCountsAndMeasures) {
  const TRegistryKey key = Create(User, Base);
  TRegistryKeyInfo info;
  ASSERT_EQ(Registry.QueryKeyInfo(key, info), WinError::Success);
  EXPECT_EQ(info.SubKeyCount + info.MaxSubKeyLength + info.ValueCount + info.MaxValueDataSize, 0u);
  const TFileTime before = info.LastWriteTime;
  EXPECT_GT(before.Ticks, 0u);
  Create(key, u"abc\\not counted");
  Create(key, u"de");
  ASSERT_EQ(Set(key, u"name", RegType::Binary, "12345"), WinError::Success);
  ASSERT_EQ(Set(key, u"", RegType::Dword, "1"), WinError::Success);
  ASSERT_EQ(Registry.QueryKeyInfo(key, info), WinError::Success);
  EXPECT_EQ(info.SubKeyCount, 2u);
  EXPECT_EQ(info.MaxSubKeyLength, 3u);
  EXPECT_EQ(info.ValueCount, 2u);
  EXPECT_EQ(info.MaxValueNameLength, 4u);
  EXPECT_EQ(info.MaxValueDataSize, 5u);
  EXPECT_GE(info.LastWriteTime, before);
}

TEST_F(RegistryContract, DataIsKeptByteForByte) {
  using namespace std::string_view_literals;
  const struct {
    std::uint32_t Type;
    std::string_view Data;
  } cases[] = {
      {RegType::String, ""sv},
      {RegType::String, "a\0b"sv},            // an odd length
      {RegType::String, "a\0b\0"sv},          // no terminator
      {RegType::String, "a\0\0\0b\0\0\0"sv},  // a NUL within
      {RegType::ExpandString, "\0\xD8"sv},    // half a surrogate pair
      {RegType::MultiString, "a\0\0\0"sv},    // no second terminator
      {RegType::Dword, "\x01\x02\x03"sv},
      {RegType::Dword, "\x01\x02\x03\x04\x05"sv},
      {RegType::Qword, ""sv},
      {RegType::None, "x"sv},
      {0xFFFF0007, "a type that nobody knows"sv},
  };
  const TRegistryKey key = Create(User, Base);
  for (const auto& [type, data] : cases) {
    ASSERT_EQ(Set(key, u"Value", type, data), WinError::Success);
    TRegistryValue value;
    ASSERT_EQ(Registry.QueryValue(key, u"vALUE", value), WinError::Success);
    EXPECT_EQ(value.Name, u"vALUE");
    EXPECT_EQ(value.Type, type);
    EXPECT_EQ(std::string_view(reinterpret_cast<const char*>(value.Data.data()), value.Data.size()), data);
    ASSERT_EQ(Registry.EnumValue(key, 0, value), WinError::Success);
    EXPECT_EQ(value.Name, u"Value");
    EXPECT_EQ(value.Data.size(), data.size());
  }
  TRegistryValue value{u"kept", 77, {std::byte{1}}};
  EXPECT_EQ(Registry.QueryValue(key, u"missing", value), WinError::FileNotFound);
  EXPECT_EQ(Registry.QueryValue(key, u"", value), WinError::FileNotFound);
  EXPECT_EQ(Registry.EnumValue(key, 1, value), WinError::NoMoreItems);
  EXPECT_EQ(value.Name, u"kept");
  EXPECT_EQ(value.Type, 77u);
  EXPECT_EQ(value.Data.size(), 1u);

  const std::string large(300'000, 'x');
  ASSERT_EQ(Set(key, u"Value", RegType::Binary, large), WinError::Success);
  ASSERT_EQ(Registry.EnumValue(key, 0, value), WinError::Success);
  EXPECT_EQ(value.Data.size(), large.size());
  EXPECT_EQ(Registry.RemoveValue(key, u"VALUE"), WinError::Success);
  EXPECT_EQ(Registry.RemoveValue(key, u"Value"), WinError::FileNotFound);
}

TEST_F(RegistryContract, PathsAndLongNames) {
  const TRegistryKey key = Create(User, Base);
  Create(key, u"a\\b");
  EXPECT_EQ(Open(key, u"A\\B"), WinError::Success);
  EXPECT_EQ(Open(key, u"a\\b\\"), WinError::Success);
  EXPECT_EQ(Open(key, u""), WinError::Success);
  EXPECT_EQ(Open(key, u"\\a"), WinError::BadRegistryPath);
  EXPECT_EQ(Open(User, u"\\Software"), WinError::BadRegistryPath);
  EXPECT_EQ(Open(key, u"a\\c\\d"), WinError::FileNotFound);
  EXPECT_EQ(Open(TRegistryKey(), u"Software"), WinError::InvalidHandle);

  TRegistryKey made;
  bool created = false;
  const std::u16string longest(255, u'k');
  ASSERT_EQ(Registry.CreateKeyPath(key, longest, All, made, created), WinError::Success);
  EXPECT_TRUE(created);
  ASSERT_EQ(Registry.CreateKeyPath(key, longest, All, made, created), WinError::Success);
  EXPECT_FALSE(created);
  if (!testing::IsWine()) {  // takes longer names
    EXPECT_NE(Registry.CreateKeyPath(key, longest + u"k", All, made, created), WinError::Success);
    EXPECT_NE(Open(key, longest + u"k"), WinError::Success);
  }
  const std::u16string longestValue(16383, u'v');
  EXPECT_EQ(Set(key, longestValue, RegType::Binary, "x"), WinError::Success);
  TRegistryValue value;
  ASSERT_EQ(Registry.EnumValue(key, 0, value), WinError::Success);
  EXPECT_EQ(value.Name, longestValue);
  EXPECT_EQ(Set(key, longestValue + u"v", RegType::Binary, "x"), WinError::InvalidParameter);
  EXPECT_EQ(Registry.QueryValue(key, longestValue + u"v", value), WinError::FileNotFound);
}

TEST_F(RegistryContract, AHandleCanDoWhatItWasOpenedFor) {
  Create(User, Below(u"Sub"));
  TRegistryKey reader, writer;
  ASSERT_EQ(Registry.OpenKey(User, Base, KeyAccess::Read, reader), WinError::Success);
  ASSERT_EQ(Registry.OpenKey(User, Base, KeyAccess::Write, writer), WinError::Success);
  EXPECT_EQ(Set(reader, u"a", RegType::Binary, "x"), WinError::AccessDenied);
  ASSERT_EQ(Set(writer, u"a", RegType::Binary, "x"), WinError::Success);
  EXPECT_EQ(Registry.RemoveValue(reader, u"a"), WinError::AccessDenied);
  TRegistryValue value;
  EXPECT_EQ(Registry.QueryValue(reader, u"a", value), WinError::Success);
  EXPECT_EQ(Registry.QueryValue(writer, u"a", value), WinError::AccessDenied);
  EXPECT_EQ(Registry.EnumValue(writer, 0, value), WinError::AccessDenied);
  std::u16string name;
  EXPECT_EQ(Registry.EnumKey(writer, 0, name), WinError::AccessDenied);
  EXPECT_EQ(Registry.NotifyChange(writer, true, RegNotify::ChangeName, MakeEvent()), WinError::AccessDenied);
  ASSERT_EQ(Registry.OpenKey(User, Base, KeyAccess::QueryValue, reader), WinError::Success);
  EXPECT_EQ(Registry.EnumKey(reader, 0, name), WinError::AccessDenied);
  EXPECT_EQ(Registry.QueryValue(reader, u"a", value), WinError::Success);
  // what a path is opened for below a handle is not bound by the handle's rights
  EXPECT_EQ(Open(reader, u"Sub", All), WinError::Success);
}

TEST_F(RegistryContract, RemovalOfKeys) {
  const TRegistryKey key = Create(User, Base);
  TRegistryKey open = Create(key, u"a\\b");
  EXPECT_EQ(Registry.RemoveKey(key, u"a", 0), WinError::AccessDenied) << "it has a subkey";
  EXPECT_EQ(Registry.RemoveKey(key, u"none", 0), WinError::FileNotFound);
  EXPECT_EQ(Registry.RemoveKey(key, u"a\\b\\", 0), WinError::Success);
  EXPECT_EQ(Open(key, u"a\\b"), WinError::FileNotFound);

  // the handle that is still open
  TRegistryValue value;
  TRegistryKeyInfo info;
  TRegistryKey other;
  std::u16string name;
  bool created = false;
  EXPECT_EQ(Registry.QueryValue(open, u"", value), WinError::KeyDeleted);
  EXPECT_EQ(Registry.EnumValue(open, 0, value), WinError::KeyDeleted);
  EXPECT_EQ(Registry.EnumKey(open, 0, name), WinError::KeyDeleted);
  EXPECT_EQ(Registry.QueryKeyInfo(open, info), WinError::KeyDeleted);
  EXPECT_EQ(Set(open, u"", RegType::Binary, "x"), WinError::KeyDeleted);
  EXPECT_EQ(Registry.RemoveValue(open, u""), WinError::KeyDeleted);
  EXPECT_EQ(Registry.NotifyChange(open, true, RegNotify::ChangeName, MakeEvent()), WinError::KeyDeleted);
  EXPECT_EQ(Registry.CreateKeyPath(open, u"x", All, other, created), WinError::KeyDeleted);
  // a new key of the same name does not bring it back
  Create(key, u"a\\b");
  EXPECT_EQ(Open(open, u""), WinError::KeyDeleted);
  EXPECT_EQ(Registry.RemoveKey(open, u"", 0), WinError::KeyDeleted);
  EXPECT_EQ(Open(key, u"a\\b"), WinError::Success);
}

TEST_F(RegistryContract, AWatchIsSignalledOnce) {
  const TRegistryKey key = Create(User, Base);
  const TRegistryKey deep = Create(key, u"a\\b");
  TRegistryKey watched;
  ASSERT_EQ(Registry.OpenKey(User, Base, KeyAccess::Read, watched), WinError::Success);
  const TEvent event = MakeEvent();
  const auto arm = [&] {
    Sync.ResetSignal(event);
    EXPECT_EQ(Registry.NotifyChange(watched, true, RegNotify::ChangeName | RegNotify::ChangeLastSet, event),
              WinError::Success);
    EXPECT_EQ(Sync.WaitForEvent(event, 0), EWaitResult::TimedOut);
  };
  arm();
  ASSERT_EQ(Set(deep, u"v", RegType::Binary, "1"), WinError::Success);
  EXPECT_EQ(Sync.WaitForEvent(event, Soon), EWaitResult::Signaled);
  if (!testing::IsWine()) {  // may signal one change twice
    Sync.ResetSignal(event);
    ASSERT_EQ(Set(deep, u"v", RegType::Binary, "2"), WinError::Success);
    EXPECT_EQ(Sync.WaitForEvent(event, 0), EWaitResult::TimedOut) << "the watch was for one change";
  }
  arm();
  Create(deep, u"c");
  EXPECT_EQ(Sync.WaitForEvent(event, Soon), EWaitResult::Signaled);
  arm();
  ASSERT_EQ(Registry.RemoveKey(deep, u"c", 0), WinError::Success);
  EXPECT_EQ(Sync.WaitForEvent(event, Soon), EWaitResult::Signaled);
  arm();
  ASSERT_EQ(Registry.RemoveValue(deep, u"v"), WinError::Success);
  EXPECT_EQ(Sync.WaitForEvent(event, Soon), EWaitResult::Signaled);
  arm();
  watched.Close();
  EXPECT_EQ(Sync.WaitForEvent(event, Soon), EWaitResult::Signaled) << "closing ends the watch with a signal";
}

TEST_F(RegistryContract, AWatchHearsWhatItAskedFor) {
  const TRegistryKey key = Create(User, Base);
  const TRegistryKey sub = Create(key, u"sub");
  TRegistryKey names, removed;
  ASSERT_EQ(Registry.OpenKey(User, Base, KeyAccess::Read, names), WinError::Success);
  ASSERT_EQ(Registry.OpenKey(User, Below(u"sub"), KeyAccess::Read, removed), WinError::Success);
  const TEvent event = MakeEvent();
  const TEvent removal = MakeEvent();
  ASSERT_EQ(Registry.NotifyChange(names, false, RegNotify::ChangeName, event), WinError::Success);
  ASSERT_EQ(Set(key, u"v", RegType::Binary, "1"), WinError::Success);
  EXPECT_EQ(Sync.WaitForEvent(event, 0), EWaitResult::TimedOut) << "a value is no name of a subkey";
  Create(sub, u"deeper");
  EXPECT_EQ(Sync.WaitForEvent(event, 0), EWaitResult::TimedOut) << "the subtree was not asked for";
  ASSERT_EQ(Registry.RemoveKey(sub, u"deeper", 0), WinError::Success);
  ASSERT_EQ(Registry.NotifyChange(removed, true, RegNotify::ChangeName, removal), WinError::Success);
  ASSERT_EQ(Registry.RemoveKey(key, u"sub", 0), WinError::Success);
  EXPECT_EQ(Sync.WaitForEvent(event, Soon), EWaitResult::Signaled);
  if (testing::IsWine()) return;  // does not tell a key's own watchers that it was removed
  EXPECT_EQ(Sync.WaitForEvent(removal, Soon), EWaitResult::Signaled);
}

}  // namespace
}  // namespace varcolin
