// The diagnostic log.
#include <algorithm>
#include <map>
#include <span>
#include <stdexcept>
#include <thread>

#include "common/Services.h"
#include "platform/decorators/FaultInjection.h"
#include "platform/decorators/Tracing.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using testing::TServices;

constexpr const char16_t* UninstallKey = u"HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr const char16_t* UninstallKey32 =
    u"HKEY_LOCAL_MACHINE\\Software\\Wow6432Node\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
constexpr const char16_t* UserKey = u"HKEY_CURRENT_USER\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall";
const std::string Separator(80, '-');

class Log : public TServices {
 protected:
  using TServices::TServices;

  std::u16string Path = u"C:\\Users\\User\\AppData\\Roaming\\Zentrova\\Velmoran\\Logs\\Varcolin.log";

  /// The file's lines; without their times unless AWithTime.
  std::vector<std::string> Lines(bool AWithTime = false) {
    StatisticsLog::Write();
    std::vector<std::byte> data;
    EXPECT_EQ(Machine.Files().ReadWhole(Path, SIZE_MAX, data), WinError::Success);
    const std::string text = ToUtf8(TextFromBytes(data));
    EXPECT_TRUE(text.starts_with("\xEF\xBB\xBF"));
    std::vector<std::string> lines;
    constexpr std::size_t timeLength = std::string_view("hh:nn:ss:zzz: ").size();
    for (std::size_t from = 3; from < text.size();) {
      const std::size_t end = text.find("\r\n", from);
      if (end == std::string::npos) {
        ADD_FAILURE() << "the last line has no end";
        break;
      }
      const std::size_t begin = from + (AWithTime ? 0 : timeLength);
      lines.push_back(text.substr(begin, end - begin));
      from = end + 2;
    }
    return lines;
  }

  /// The lines between the last two separators of a header: the registry dump.
  std::vector<std::string> Dump() {
    const std::vector<std::string> lines = Lines();
    const auto last = std::find(lines.rbegin(), lines.rend(), Separator);
    const auto first = std::find(last + 1, lines.rend(), Separator);
    return {first.base(), last.base() - 1};
  }
};

class LogOn32BitXP : public Log {
 protected:
  static TSimulatedFacts Facts() {
    TSimulatedFacts facts = testing::FactsOfXP();
    facts.Version.ServicePackMajor = 3;
    facts.UserIsAdmin = false;
    facts.TimeZoneMinutes = 120;
    facts.LocaleName = u"fi-FI";
    return facts;
  }
  LogOn32BitXP() : Log(Facts()) {}
};

TEST_F(Log, IsWrittenAsAWhole) {
  Load();
  StatisticsLog::Add(u"first");
  Machine.Clock().Advance(61'001);
  StatisticsLog::Add(u"");
  StatisticsLog::Add(u"%s (%d)", {u"100%s", 7});
  EXPECT_THROW(StatisticsLog::Add(u"%d", {u"x"}), EConvertError);
  const std::vector<std::string> expected{"10:11:12:000: first", "10:12:13:001: ", "10:12:13:001: 100%s (7)"};
  EXPECT_EQ(StatisticsLog::FilePath(), Path);
  EXPECT_EQ(Lines(true), expected);
  EXPECT_EQ(Lines(true), expected) << "a second write replaces the file";
  Unload();
  Load();
  EXPECT_TRUE(Lines().empty()) << "only the byte-order mark";
}

TEST_F(LogOn32BitXP, HeaderDescribesTheSystem) {
  Machine.Registry().SetTextAt(UninstallKey, u"", u"default");
  Machine.Registry().AddKey(UserKey);
  Path = u"C:\\Documents and Settings\\User\\Application Data\\Zentrova\\Velmoran\\Logs\\Varcolin.log";
  Load();
  StatisticsLog::Add(u"forgotten");
  StatisticsLog::Reset();
  const std::vector<std::string> lines = Lines(true);
  ASSERT_GT(lines.size(), 10U);
  EXPECT_EQ(lines[0], "12.11.12.000: " + Separator) << "local time with the user's separator";
  EXPECT_EQ(lines[1], "12.11.12.000: System info at 2012.08.09 12.11.12.000.");
  const std::vector<std::string> all = Lines();
  const auto has = [&all](std::string_view ALine) { return std::find(all.begin(), all.end(), ALine) != all.end(); };
  for (const char* line :
       {"Version:        Windows XP", "Architecture:   x32", "Service Pack:   Service Pack 3", "IsWow64Process: False",
        "User name       : User", "User is admin   : False", "Product version : 0.1.0", "Program version : "}) {
    EXPECT_TRUE(has(line)) << line;
  }
  EXPECT_EQ(std::count(all.begin(), all.end(), Separator), 5);
  const std::vector<std::string> dump{
      "(x32)HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\", " (REG_SZ) = \"default\"",
      "", "(x32)" + ToUtf8(UserKey) + "\\", ""};
  EXPECT_EQ(Dump(), dump) << "once, without a second view";
}

TEST_F(Log, DumpShowsEveryKindOfValueInBothViews) {
  using namespace std::string_view_literals;
  TSimulatedRegistry& registry = Machine.Registry();
  const auto set = [&](std::u16string_view AName, std::uint32_t AType, std::u16string_view AText) {
    registry.SetValueAt(UninstallKey, AName, AType, std::as_bytes(std::span(AText)));
  };
  set(u"a", RegType::String, u"text\0rest"sv);
  set(u"b", RegType::ExpandString, u"%x%");
  set(u"c", RegType::MultiString, u"A\0B\0\0"sv);
  set(u"d", RegType::Binary, u"binary");
  registry.SetDwordAt(UninstallKey, u"e", 0xFFFFFFFF);
  set(u"f", RegType::Dword, u"x");
  registry.SetTextAt(std::u16string(UninstallKey) + u"\\Sub\\Below", u"v", u"1");
  registry.AddKey(std::u16string(UninstallKey) + u"\\Other");
  registry.AddKey(std::u16string(UninstallKey) + u"\\Denied\\Hidden");
  registry.DenyAccess(std::u16string(UninstallKey) + u"\\Denied");
  registry.AddKey(UninstallKey32);
  registry.AddKey(UserKey);
  Load();
  StatisticsLog::Reset();
  const std::string key64 = "(x64)HKEY_LOCAL_MACHINE\\Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall\\";
  const std::vector<std::string> expected{"(x32)" + key64.substr(5),
                                          "",
                                          key64,
                                          "a (REG_SZ) = \"text\"",
                                          "b (REG_SZ) = \"%x%\"",
                                          "c (REG_MULTISZ) = \"A, B\"",
                                          "d () = \"\"",
                                          "e (REG_DWORD) = \"4294967295\"",
                                          "f () = \"\"",
                                          "",
                                          key64 + "Other\\",
                                          "",
                                          key64 + "Sub\\",
                                          "",
                                          key64 + "Sub\\Below\\",
                                          "v (REG_SZ) = \"1\"",
                                          "",
                                          "(x32)" + ToUtf8(UserKey) + "\\",
                                          "",
                                          "(x64)" + ToUtf8(UserKey) + "\\",
                                          ""};
  EXPECT_EQ(Dump(), expected);
}

TEST_F(Log, DumpIsDeepAndCheap) {
  std::u16string path = UninstallKey;
  constexpr int depth = 400;
  for (int i = 0; i < depth; ++i) path += u"\\k";
  Machine.Registry().SetTextAt(path, u"last", u"");
  for (const char16_t* name : {u"a", u"b", u"c"}) Machine.Registry().SetTextAt(UninstallKey, name, u"");
  TTrace trace;
  TTracedMachine traced(Machine.Facilities(), trace);
  Load(traced.Facilities());
  trace.Clear();
  StatisticsLog::Reset();
  EXPECT_EQ(Dump().size(), (depth + 1) * 2 + 4U);
  EXPECT_EQ(trace.CountOf("Registry.OpenKey"), depth + 1 + 3U) << "the other three trees do not open";
  EXPECT_EQ(trace.CountOf("Registry.QueryKeyInfo"), depth + 1U);
  EXPECT_EQ(trace.CountOf("Registry.EnumValue"), 4U);
  EXPECT_EQ(trace.CountOf("Registry.EnumKey"), static_cast<unsigned>(depth));
}

TEST_F(Log, AFailedSectionIsToldAndTheRestFollows) {
  Machine.Registry().SetTextAt(UninstallKey, u"a", u"1");
  Machine.Registry().AddKey(std::u16string(UninstallKey) + u"\\Sub");
  for (const std::string_view failing : {"GetOwnPath", "GetProductType", "QueryKeyInfo"}) {
    TFaultPlan plan(EFault::Persistent, 1, WinError::AccessDenied,
                    [failing](const TCall& ACall) { return ACall.Method == failing; });
    TFaultyMachine faulty(Machine.Facilities(), plan);
    Load(faulty.Facilities());
    StatisticsLog::Reset();
    EXPECT_GT(plan.InjectionCount(), 0U) << failing;
    const std::vector<std::string> lines = Lines();
    const bool raises = failing != "QueryKeyInfo";
    EXPECT_EQ(std::count(lines.begin(), lines.end(), Separator), raises ? 7 : 5) << failing;
    EXPECT_EQ(Dump().size(), 5U) << failing;
    Unload();
  }
}

TEST_F(Log, ErrorBlocksTellTheHandledException) {
  Load();
  try {
    throw EOSError(5, u"Access is denied.");
  } catch (const std::exception&) {
    StatisticsLog::AddError();
  }
  try {
    throw std::runtime_error("other");
  } catch (const std::exception&) {
    StatisticsLog::AddErrorLn();
  }
  std::vector<std::string> lines = Lines(true);
  EXPECT_EQ(lines[3], "Access is denied.") << "a message may have lines of its own";
  lines = Lines();
  lines.erase(lines.begin() + 3);
  EXPECT_EQ(lines, (std::vector<std::string>{Separator, "Error class   : EOSError",
                                             "Error message : System Error.  Code: 5.", Separator, "", Separator,
                                             "Error class   : std::exception", "Error message : other", Separator}));
  Unload();
  StatisticsLog::AddError();  // nothing to write to, nothing raised
}

TEST_F(Log, AFileThatCannotBeWrittenKeepsTheLines) {
  Load();
  StatisticsLog::Add(u"kept");
  Machine.Files().AddFile(Path, "old");
  Machine.Files().MarkInUse(Path);
  StatisticsLog::Write();
  Machine.Files().MarkInUse(Path, false);
  EXPECT_EQ(Lines(), std::vector<std::string>{"kept"});
}

TEST_F(Log, LinesOfManyThreadsStayWhole) {
  Load();
  std::vector<std::thread> threads;
  for (char16_t mark = u'a'; mark < u'e'; ++mark) {
    threads.emplace_back([mark] {
      for (int i = 0; i < 200; ++i) StatisticsLog::Add(std::u16string(50, mark));
    });
  }
  for (std::thread& thread : threads) thread.join();
  std::map<std::string, int> counts;
  for (const std::string& line : Lines()) ++counts[line];
  EXPECT_EQ(counts.size(), 4U);
  for (const auto& [line, count] : counts) EXPECT_EQ(count, 200) << line;
}

}  // namespace
}  // namespace varcolin
