// The decorators of the platform seam, over whichever machine the tests run on.
#include <gtest/gtest.h>

#include <string>

#include "contract/MachineUnderTest.h"
#include "platform/decorators/DenyWrite.h"
#include "platform/decorators/FaultInjection.h"
#include "platform/decorators/Tracing.h"

namespace varcolin {
namespace {

constexpr std::u16string_view KeyPath = u"Software\\VarcolinDecorators";
constexpr std::uint8_t Byte = 7;

/// A key that is there for the length of a test.
class DecoratorsTest : public ::testing::Test {
 protected:
  void SetUp() override {
    bool created = false;
    ASSERT_EQ(Bare.Registry.CreateKeyPath(ERegistryRoot::CurrentUser, KeyPath, KeyAccess::AllAccess, Key, created),
              WinError::Success);
  }
  void TearDown() override {
    Key.Close();
    EXPECT_EQ(Bare.Registry.RemoveKey(ERegistryRoot::CurrentUser, KeyPath, 0), WinError::Success);
  }

  /// Looks six times and tells with a letter how each call ended: '.' as on the bare machine, 'x' by the plan.
  static std::string Pattern(const TMachine& AMachine) {
    std::string result;
    for (int call = 0; call < 6; ++call) {
      TFileFacts facts;
      facts.Attributes = 99;
      const TWinError error = AMachine.Files.GetFacts(u"C:\\", facts);
      result.push_back(error == WinError::Success && facts.IsFolder()                    ? '.'
                       : error == TFaultPlan::UnexpectedError && facts.Attributes == 99u ? 'x'
                                                                                         : '?');
      (void)AMachine.System.UniversalTime();  // never fails, is never counted
    }
    return result;
  }

  TMachine& Bare = testing::MachineUnderTest();
  TRegistryKey Key;
};

TEST_F(DecoratorsTest, PlanChoosesTheCallsThatFail) {
  struct TCase {
    EFault Kind;
    std::uint64_t Number;
    std::string_view Pattern;
    std::uint64_t Injections;
  };
  constexpr TCase cases[] = {
      {EFault::Never, 1, "......", 0},      {EFault::Transient, 1, "x.....", 1},  {EFault::Transient, 4, "...x..", 1},
      {EFault::Transient, 7, "......", 0},  {EFault::Persistent, 1, "xxxxxx", 6}, {EFault::Persistent, 5, "....xx", 2},
      {EFault::Persistent, 0, "xxxxxx", 6}, {EFault::Periodic, 2, ".x.x.x", 3},   {EFault::Periodic, 0, "xxxxxx", 6},
  };
  for (const TCase& item : cases) {
    TFaultPlan plan(item.Kind, item.Number);
    TFaultyMachine machine(Bare, plan);
    EXPECT_EQ(Pattern(machine.Facilities()), item.Pattern) << item.Number;
    EXPECT_EQ(plan.InjectionCount(), item.Injections) << item.Pattern;
    EXPECT_EQ(plan.CallCount(), 6u);
  }
}

TEST_F(DecoratorsTest, PlanFiltersAndComposes) {
  TFaultPlan plan(EFault::Persistent, 2, WinError::AccessDenied,
                  [](const TCall& ACall) { return ACall.Writes && ACall.Subject == u"Faulty"; });
  TTrace trace(true);
  TFaultyMachine faulty(Bare, plan);
  TTracedMachine traced(faulty.Facilities(), trace);
  IWritableRegistry& registry = traced.Facilities().Registry;
  EXPECT_EQ(registry.SetValue(Key, u"Faulty", RegType::Binary, &Byte, 1), WinError::Success);
  EXPECT_EQ(registry.SetValue(Key, u"Sound", RegType::Binary, &Byte, 1), WinError::Success);
  EXPECT_EQ(registry.RemoveValue(Key, u"Faulty"), WinError::AccessDenied);
  EXPECT_EQ(registry.RemoveValue(Key, u"Sound"), WinError::Success);
  TRegistryValue value;
  EXPECT_EQ(registry.QueryValue(Key, u"Faulty", value), WinError::Success);  // the refused call never arrived
  EXPECT_EQ(plan.CallCount(), 2u);

  EXPECT_EQ(trace.CountOf("Registry.SetValue"), 2u);
  EXPECT_EQ(trace.CountOf("Registry.QueryValue"), 1u);
  EXPECT_EQ(trace.CountOf("Files.GetFacts"), 0u);
  EXPECT_EQ(trace.CountOfAll(), 5u);
  ASSERT_EQ(trace.Calls().size(), 5u);
  EXPECT_EQ(trace.Calls()[2].Name, "Registry.RemoveValue");
  EXPECT_TRUE(trace.Calls()[2].Subject == u"Faulty");
  trace.Clear();
  EXPECT_EQ(trace.CountOfAll() + trace.Calls().size(), 0u);
}

TEST_F(DecoratorsTest, WriteGuardRefusesEveryChange) {
  TWriteGuard guard;
  TDenyWriteMachine machine(Bare, guard);
  const TMachine denied = machine.Facilities();
  TRegistryKey opened;
  EXPECT_EQ(denied.Registry.OpenKey(ERegistryRoot::CurrentUser, KeyPath, KeyAccess::AllAccess, opened),
            WinError::Success);
  EXPECT_TRUE(guard.Refused().empty());

  TRegistryKey made;
  bool created = true;
  const std::u16string file = u"C:\\VarcolinDecorators.bin";
  const std::byte bytes[] = {std::byte{1}};
  const TWinError results[] = {
      denied.Registry.CreateKeyPath(Key, u"Sub", KeyAccess::Read, made, created),
      denied.Registry.SetValue(opened, u"Name", RegType::Binary, &Byte, 1),
      denied.Registry.RemoveValue(opened, u"Name"),
      denied.Registry.RemoveKey(ERegistryRoot::CurrentUser, KeyPath, 0),
      denied.Files.WriteWhole(file, bytes),
      denied.Files.AppendBytes(file, bytes),
      denied.Files.RemoveFile(file),
      denied.Files.MakeFolder(file),
      denied.Files.RemoveFolder(file),
      denied.Files.SetAttributes(u"C:\\", FileAttribute::Hidden),
  };
  for (const TWinError result : results) EXPECT_EQ(result, WinError::AccessDenied);
  EXPECT_FALSE(made);
  const std::vector<std::u16string> refused = guard.Refused();
  ASSERT_EQ(refused.size(), std::size(results));
  EXPECT_TRUE(refused.front() == u"Registry.CreateKeyPath Sub");
  EXPECT_TRUE(refused.back() == u"Files.SetAttributes C:\\");

  TRegistryKeyInfo info;
  ASSERT_EQ(Bare.Registry.QueryKeyInfo(Key, info), WinError::Success);
  EXPECT_EQ(info.SubKeyCount + info.ValueCount, 0u);
  TFileFacts facts;
  EXPECT_EQ(Bare.Files.GetFacts(file, facts), WinError::FileNotFound);
}

TEST_F(DecoratorsTest, HandlesOutliveTheDecoratorThatGaveThem) {
  TRegistryKey key;
  TFindHandle walk;
  TFoundFile file;
  {
    TTrace trace;
    TTracedMachine machine(Bare, trace);
    ASSERT_EQ(machine.Facilities().Registry.OpenKey(Key, u"", KeyAccess::Read, key), WinError::Success);
    ASSERT_EQ(machine.Facilities().Files.FindFirst(u"C:\\*", walk, file), WinError::Success);
  }
  TRegistryKeyInfo info;
  EXPECT_EQ(Bare.Registry.QueryKeyInfo(key, info), WinError::Success);
  key.Close();
  walk.Close();
}

}  // namespace
}  // namespace varcolin
