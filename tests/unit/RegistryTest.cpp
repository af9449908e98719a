// Registry key texts, the registry reader and key snapshots.
#include <gtest/gtest.h>

#include <algorithm>

#include "platform/decorators/ForwardingRegistry.h"
#include "platform/simulated/SimulatedClock.h"
#include "platform/simulated/SimulatedRegistry.h"
#include "platform/simulated/SimulatedSync.h"
#include "registry/uKeySnapshot.h"
#include "registry/uRegistryEx.h"

namespace varcolin {
namespace {

constexpr ERegistryRoot Machine = ERegistryRoot::LocalMachine;

std::vector<std::byte> Bytes(std::u16string_view AText) {
  std::vector<std::byte> result;
  for (const char16_t unit : AText) {
    result.push_back(static_cast<std::byte>(unit & 0xFF));
    result.push_back(static_cast<std::byte>(unit >> 8));
  }
  return result;
}

std::vector<std::byte> Bytes(std::initializer_list<int> AValues) {
  std::vector<std::byte> result;
  for (const int value : AValues) result.push_back(static_cast<std::byte>(value));
  return result;
}

TEST(RegistryKeyText, IsMadeOfViewRootPathAndName) {
  const struct {
    std::uint32_t Flag;
    ERegistryRoot Root;
    std::u16string_view Key, Name, Text;
  } rows[] = {
      {KeyAccess::Read | KeyAccess::Wow64_64Key, Machine, u"Software\\A", u"",
       u"(x64)HKEY_LOCAL_MACHINE\\Software\\A\\"},
      {KeyAccess::Read, Machine, u"Software\\A", u"", u"(x32)HKEY_LOCAL_MACHINE\\Software\\A\\"},
      {KeyAccess::Wow64_32Key, Machine, u"\\Software\\A\\", u"V", u"(x32)HKEY_LOCAL_MACHINE\\Software\\A\\V"},
      {0, ERegistryRoot::DynData, u"", u"V", u"(x32)HKEY_DYN_DATA\\V"},
      {0, ERegistryRoot{0x80000050}, u"A", u"", u"(x32)\\A\\"},
  };
  for (const auto& row : rows) {
    EXPECT_EQ(TRegistryEx::RegistryKeyToStr(row.Flag, row.Root, row.Key, row.Name), row.Text);
  }
}

TEST(RegistryKeyText, IsTakenApart) {
  constexpr ERegistryRoot unchanged{0x80000050};
  const struct {
    std::u16string_view Text;
    std::uint32_t Flag;
    ERegistryRoot Root;
    std::u16string_view Key, Name;
  } rows[] = {
      {u"(x64)HKEY_LOCAL_MACHINE\\Software\\A\\B", 0x100, Machine, u"\\Software\\A\\", u"B"},
      {u"(X32)hkey_current_user\\Software\\A\\", 0x200, ERegistryRoot::CurrentUser, u"\\Software\\A\\", u""},
      {u"HKEY_USERS\\S-1-5-18\\Software\\V", 0, ERegistryRoot::Users, u"\\S-1-5-18\\Software\\", u"V"},
      {u"(x64)HKEY_CLASSES_ROOT\\Key\\a:b", 0x100, ERegistryRoot::ClassesRoot, u"\\Key\\a:", u"b"},
      {u"(x64)HKLM\\A\\", 0x100, unchanged, u"HKLM\\A\\", u""},
      {u"(x32)(x64)HKEY_USERS\\A\\", 0x200, unchanged, u"(x64)HKEY_USERS\\A\\", u""},
      {u"HKEY_LOCAL_MACHINE", 0, unchanged, u"", u"HKEY_LOCAL_MACHINE"},
      {u"(x64)", 0x100, unchanged, u"", u""},
      {u"", 0, unchanged, u"", u""},
  };
  for (const auto& row : rows) {
    std::uint32_t flag = 99;
    ERegistryRoot root = unchanged;
    std::u16string key = u"old";
    std::u16string name(row.Text);  // reading from an output is allowed
    TRegistryEx::ExtractKeyParams(name, flag, root, key, name);
    EXPECT_EQ(flag, row.Flag);
    EXPECT_EQ(root, row.Root);
    EXPECT_EQ(key, row.Key);
    EXPECT_EQ(name, row.Name);
  }
}

TEST(RegistryKeyText, MultiStringsEndAtTheEmptyString) {
  using TTexts = std::vector<std::u16string>;
  using namespace std::string_view_literals;
  EXPECT_EQ(MultiStringFromBytes(Bytes(u"one\0two\0\0three\0"sv)), (TTexts{u"one", u"two"}));
  EXPECT_EQ(MultiStringFromBytes(Bytes(u"one\0two"sv)), (TTexts{u"one", u"two"}));
  EXPECT_EQ(MultiStringFromBytes(Bytes(u"\0one\0"sv)), TTexts{});
  EXPECT_EQ(MultiStringFromBytes(Bytes({'a', 0, 0, 0, 'b'})), TTexts{u"a"});
  EXPECT_EQ(MultiStringFromBytes({}), TTexts{});
}

class RegistryReader : public testing::Test {
 protected:
  TSimulatedClock Clock{TFileTime{129894844280900000}};
  TSimulatedSync Sync{Clock};
  TSimulatedRegistry Registry{Clock, Sync, {true, true, u"S-1-5-21-1-2-3-1001"}};

  void Set(std::u16string_view AName, std::uint32_t AType, std::span<const std::byte> AData) {
    Registry.SetValueAt(u"HKEY_LOCAL_MACHINE\\Software\\A", AName, AType, AData);
  }
  ~RegistryReader() override { EXPECT_EQ(Registry.OpenHandleCount(), 0U); }
};

TEST_F(RegistryReader, KeepsRootPathAndKey) {
  Registry.AddKey(u"HKEY_LOCAL_MACHINE\\Software\\A\\B\\C");
  Registry.SetTextAt(u"HKEY_LOCAL_MACHINE\\Software\\A\\B", u"", u"default");
  TRegistryEx reader(Registry);
  EXPECT_EQ(reader.RootKey(), ERegistryRoot::CurrentUser);
  EXPECT_EQ(reader.Access(), KeyAccess::AllAccess);
  EXPECT_TRUE(reader.GetKeyNames().empty() && reader.GetValueNames().empty());
  reader.SetRootKey(Machine);
  reader.SetAccess(KeyAccess::Read | KeyAccess::Wow64_64Key);
  ASSERT_TRUE(reader.OpenKey(u"Software\\A"));
  ASSERT_TRUE(reader.OpenKey(u"B"));
  EXPECT_EQ(reader.RegistryKeyToStr(u""), u"(x64)HKEY_LOCAL_MACHINE\\Software\\A\\B\\");
  EXPECT_FALSE(reader.OpenKey(u"absent"));
  EXPECT_EQ(reader.CurrentPath(), u"Software\\A\\B") << "a failed open changes nothing";
  EXPECT_TRUE(reader.KeyExists(u"C") && reader.KeyExists(u"\\Software\\A") && !reader.KeyExists(u"A"));
  EXPECT_EQ(reader.GetKeyNames(), std::vector<std::u16string>{u"C"});
  EXPECT_EQ(reader.GetValueNames(), std::vector<std::u16string>{u""});
  ASSERT_TRUE(reader.OpenKey(u"\\Software"));
  EXPECT_EQ(reader.CurrentPath(), u"Software");
  reader.SetRootKey(ERegistryRoot::CurrentUser);
  EXPECT_FALSE(reader.CurrentKey());
  EXPECT_TRUE(reader.CurrentPath().empty());
}

TEST_F(RegistryReader, ReadsMultiStrings) {
  using namespace std::string_view_literals;
  Set(u"list", RegType::MultiString, Bytes(u"one\0two\0\0"sv));
  Set(u"empty", RegType::MultiString, {});
  Set(u"none", RegType::None, Bytes(u"x\0"sv));
  TRegistryEx reader(Registry);
  reader.SetRootKey(Machine);
  reader.SetAccess(KeyAccess::Read | KeyAccess::Wow64_64Key);
  ASSERT_TRUE(reader.OpenKey(u"Software\\A"));
  EXPECT_EQ(reader.ReadMultiString(u"LIST", u"\r\n"), u"one\r\ntwo\r\n");
  EXPECT_EQ(reader.ReadMultiString(u"empty", u"|"), u"");
  EXPECT_EQ(reader.ReadMultiString(u"absent", u"|"), u"");
  EXPECT_EQ(reader.ReadMultiString(u"none", u"|"), u"x|");
  EXPECT_TRUE(reader.IsMultiString(u"list") && reader.IsMultiString(u"empty"));
  EXPECT_FALSE(reader.IsMultiString(u"none") || reader.IsMultiString(u"absent"));
  for (const std::uint32_t type : {RegType::String, RegType::ExpandString, RegType::Dword, RegType::Binary}) {
    Set(u"wrong", type, Bytes({1, 0, 0, 0}));
    EXPECT_THROW(static_cast<void>(reader.ReadMultiString(u"wrong", u"|")), ERegistryException);
    Set(u"wrong", type, {});
    EXPECT_EQ(reader.ReadMultiString(u"wrong", u"|"), u"");
  }
}

TEST_F(RegistryReader, SnapshotAnswersByType) {
  using EStrings = TKeySnapshot::EStrings;
  Set(u"Text", RegType::String, Bytes(u"abc"));
  Set(u"Empty", RegType::String, {});
  Set(u"Odd", RegType::String, Bytes({'a', 0, 'b'}));
  Set(u"Expand", RegType::ExpandString, Bytes(u"%x%"));
  Set(u"Number", RegType::Dword, Bytes({1, 2, 0, 0x80}));
  Set(u"Short", RegType::Dword, Bytes({1, 0, 0}));
  Set(u"Zero", RegType::Dword, Bytes({0, 0, 0, 0}));
  Set(u"Big", RegType::DwordBigEndian, Bytes({1, 0, 0, 0}));
  Set(u"List", RegType::MultiString, Bytes(u"x"));
  const auto key = TKeySnapshot::ReadAt(Registry, Machine, u"Software\\A", KeyAccess::Read | KeyAccess::Wow64_64Key);
  ASSERT_NE(key, nullptr);
  EXPECT_TRUE(key->HasValues());
  EXPECT_FALSE(key->MayHaveSubKeys());
  EXPECT_EQ(key->LastWriteTime(), Clock.Now());
  EXPECT_EQ(key->Text(u"tEXT", EStrings::Plain), u"abc");
  EXPECT_EQ(key->Text(u"Empty", EStrings::Plain), u"") << "present and empty";
  EXPECT_EQ(key->Text(u"Odd", EStrings::Plain), u"a");
  EXPECT_EQ(key->Text(u"Expand", EStrings::Plain), std::nullopt);
  EXPECT_EQ(key->Text(u"Expand", EStrings::PlainOrExpandable), u"%x%");
  for (const char16_t* other : {u"Number", u"List", u"absent", u"Tex", u""}) {
    EXPECT_EQ(key->Text(other, EStrings::PlainOrExpandable), std::nullopt);
  }
  EXPECT_EQ(key->Number(u"number"), 0x80000201U);
  for (const char16_t* other : {u"Short", u"Big", u"Text", u"absent"}) EXPECT_EQ(key->Number(other), std::nullopt);
  EXPECT_TRUE(key->Flag(u"Number") && !key->Flag(u"Zero") && !key->Flag(u"absent"));
  EXPECT_EQ(key->Strings(u"List"), std::vector<std::u16string>{u"x"});
  EXPECT_EQ(key->Strings(u"Text"), std::nullopt);
  EXPECT_EQ(TKeySnapshot::ReadAt(Registry, Machine, u"Software\\absent", KeyAccess::Read), nullptr);
}

/// A registry that lies and fails.
class THostileRegistry final : public TForwardingRegistry {
 public:
  using TForwardingRegistry::TForwardingRegistry;

  std::vector<std::uint32_t> Broken;  ///< indices of values that cannot be read
  TRegistryKeyInfo Info;
  TWinError InfoError = WinError::Success;
  int Calls = 0;

  TWinError QueryKeyInfo(const TRegistryKey&, TRegistryKeyInfo& AInfo) override {
    ++Calls;
    if (InfoError == WinError::Success) AInfo = Info;
    return InfoError;
  }
  TWinError EnumValue(const TRegistryKey& AKey, std::uint32_t AIndex, TRegistryValue& AValue) override {
    ++Calls;
    if (std::ranges::find(Broken, AIndex) != Broken.end()) return WinError::AccessDenied;
    return TForwardingRegistry::EnumValue(AKey, AIndex, AValue);
  }
};

TEST_F(RegistryReader, SnapshotsReadAroundWhatCannotBeRead) {
  THostileRegistry registry(Registry);
  for (const char16_t* name : {u"a", u"b", u"c"}) Set(name, RegType::String, Bytes(name));
  const auto snapshot = [&] {
    return TKeySnapshot::ReadAt(registry, Machine, u"Software\\A", KeyAccess::Read | KeyAccess::Wow64_64Key);
  };
  const auto read = [&] {
    registry.Calls = 0;
    const auto key = snapshot();
    std::u16string found;
    for (const char16_t* name : {u"a", u"b", u"c"}) {
      found += key->Text(name, TKeySnapshot::EStrings::Plain).value_or(u"");
    }
    return found;
  };
  registry.Info.SubKeyCount = 1;
  registry.Info.ValueCount = 3;
  EXPECT_EQ(read(), u"abc");
  EXPECT_EQ(registry.Calls, 4) << "one for the facts, one a value";
  registry.Broken = {1};
  EXPECT_EQ(read(), u"ac");
  registry.Broken = {0, 1, 2};
  EXPECT_EQ(read(), u"");
  EXPECT_TRUE(snapshot()->HasValues());
  registry.Broken.clear();
  registry.Info.ValueCount = 0xFFFFFFFF;  // the values vanished meanwhile, all but three
  EXPECT_EQ(read(), u"abc");

  registry.InfoError = WinError::AccessDenied;
  EXPECT_EQ(read(), u"abc");
  const auto key = snapshot();
  EXPECT_TRUE(key->MayHaveSubKeys());
  EXPECT_EQ(key->LastWriteTime(), std::nullopt);
  registry.Broken = {2};
  EXPECT_EQ(read(), u"ab");
}

}  // namespace
}  // namespace varcolin
