// The reference sibling libraries over a simulated machine, reached as the library reaches them: by entry point and
// GUID text.
#include "siblings/Siblings.h"

#include <gtest/gtest.h>

#include <functional>
#include <thread>

#include "common/PeBuilder.h"
#include "common/VersionBytes.h"
#include "intf/intf_Brismere.h"
#include "intf/intf_DebugLog.h"
#include "intf/intf_Helper.h"
#include "intf/intf_Localizer.h"
#include "intf/intf_Quillet.h"
#include "intf/intf_Settings.h"
#include "intf/intf_Tolvane.h"
#include "platform/simulated/SimulatedMachine.h"
#include "support/uGuid.h"

namespace varcolin {
namespace {

/// The text that an operation writes through its result argument.
template <class TCall>
std::string TextFrom(TCall&& ACall) {
  TOleText text;
  ACall(text.Receive());
  return ToUtf8(text.View());
}

class Siblings : public ::testing::Test {
 protected:
  explicit Siblings(const TSimulatedFacts& AFacts = {}) : FMachine(AFacts) {
    TSiblingLibraries::Load(FMachine.Facilities());
  }
  ~Siblings() override {
    TSiblingLibraries::Unload();
    EXPECT_EQ(FMachine.OpenHandleCount(), 0U);
  }

  static void* Ask(std::u16string_view ALibrary, const char16_t* AGuid) {
    for (const TSiblingExport& sibling : SiblingExports()) {
      if (sibling.Name == ALibrary) return sibling.GetInstance(AGuid, 0);
    }
    ADD_FAILURE() << "no library " << ToUtf8(ALibrary);
    return nullptr;
  }
  template <class I>
  static I& Get(std::u16string_view ALibrary) {
    return *static_cast<I*>(Ask(ALibrary, GuidToText(I::IID).c_str()));
  }
  static IHelper& Helper() { return Get<IHelper>(u"helper.dll"); }

  std::string FileText(std::u16string_view APath) {
    std::vector<std::byte> data;
    EXPECT_EQ(FMachine.Files().ReadWhole(APath, 1 << 20, data), WinError::Success);
    return {reinterpret_cast<const char*>(data.data()), data.size()};
  }
  std::uint32_t DwordAt(std::u16string_view AKey, std::u16string_view AName) {
    TRegistryValue value;
    if (!FMachine.Registry().ValueAt(AKey, AName, value) || value.Data.empty()) return 0xFFFF;
    return value.Type == RegType::Dword ? std::to_integer<std::uint32_t>(value.Data[0]) : 0xFFFF;
  }

  TSimulatedMachine FMachine;
};

TEST_F(Siblings, EachLibraryServesItsOwnInterfaces) {
  const std::pair<std::u16string_view, TGUID> served[] = {
      {u"helper.dll", IHelper::IID},
      {u"helper.dll", iShellHelper::IID},
      {u"helper.dll", IGlobals::IID},
      {u"helper.dll", IOptions::IID},
      {u"Localizer.dll", ILocalizerFactory::IID},
      {u"Settings.dll", ISettings::IID},
      {u"TolvaneHelper.dll", ITolvane::IID},
      {u"BrismereHelper.dll", IBrismere::IID},
      {u"QuilletHelper.dll", IQuilletProcessList::IID},
      {u"debugmode.dll", IDebugLog::IID},
  };
  for (int round = 0; round < 3; ++round) {
    for (const auto& [library, iid] : served) {
      const std::u16string guid = GuidToText(iid);
      for (const TSiblingExport& sibling : SiblingExports()) {
        void* const found = sibling.GetInstance(guid.c_str(), 0);
        ASSERT_EQ(found != nullptr, sibling.Name == library) << ToUtf8(sibling.Name) << ToUtf8(guid);
        if (found == nullptr) continue;
        EXPECT_EQ(sibling.GetInstance(LowerCase(guid).c_str(), 0), found);
        TInterfaceRef<IInterface> same;
        ASSERT_EQ(static_cast<IInterface*>(found)->QueryInterface(iid, reinterpret_cast<void**>(same.Receive())), 0);
        EXPECT_EQ(same.Get(), found);
      }
    }
    for (const TSiblingExport& sibling : SiblingExports()) {
      EXPECT_EQ(sibling.GetInstance(nullptr, 0), nullptr);
      EXPECT_EQ(sibling.GetInstance(u"{5C9ABD04-59E8-4686-8E32-FF648BB7FDD", 0), nullptr);
    }
    TSiblingLibraries::Unload();
    for (const auto& [library, iid] : served) EXPECT_EQ(Ask(library, GuidToText(iid).c_str()), nullptr);
    TSiblingLibraries::Load(FMachine.Facilities());
  }
}

TEST_F(Siblings, FactsAndFolders) {
  auto& globals = Get<IGlobals>(u"helper.dll");
  auto& shell = Get<iShellHelper>(u"helper.dll");
  const std::pair<std::function<void(TOleString*)>, std::string_view> cases[] = {
      {[&](TOleString* R) { Helper().GetWindowsFolder(R); }, "C:\\Windows"},
      {[&](TOleString* R) { Helper().GetDataFolder(R); }, "C:\\Users\\User\\AppData\\Roaming"},
      {[&](TOleString* R) { Helper().GetSystemFolder(R); }, "C:\\Windows\\system32\\"},
      {[&](TOleString* R) { Helper().GetNameWithoutExtension(u"C:\\a.b\\c.d.exe", R); }, "c.d"},
      {[&](TOleString* R) { Helper().GetNameWithoutExtension(nullptr, R); }, ""},
      {[&](TOleString* R) { Helper().NormalizePath(u" C:/a/../b ", R); }, "C:\\b"},
      {[&](TOleString* R) { Helper().GetIconFilePart(u"C:\\a.dll,-5", R); }, "C:\\a.dll"},
      {[&](TOleString* R) { Helper().GetVersionValue(u"C:\\missing.exe", u"FileVersion", R); }, ""},
      {[&](TOleString* R) { globals.GetMakerName(R); }, "Zentrova"},
      {[&](TOleString* R) { globals.GetProductName(R); }, "Velmoran"},
      {[&](TOleString* R) { globals.GetProductVersion(R); }, VARCOLIN_VERSION},
      {[&](TOleString* R) { globals.GetNameOfUser(R); }, "User"},
      {[&](TOleString* R) { globals.GetRegistryRoot(R); }, "Software\\Zentrova\\Velmoran\\"},
      {[&](TOleString* R) { shell.GetSpecialFolder(36, R); }, "C:\\Windows"},
      {[&](TOleString* R) { shell.GetSpecialFolder(-1, R); }, ""},
      {[&](TOleString* R) { shell.ExpandEnvironment(u"%windir%\\%missing%", R); }, "C:\\Windows\\%missing%"},
      {[&](TOleString* R) { shell.ExpandEnvironment(nullptr, R); }, ""},
  };
  for (std::size_t i = 0; i < std::size(cases); ++i) EXPECT_EQ(TextFrom(cases[i].first), cases[i].second) << i;

  EXPECT_TRUE(Helper().IsWow64());
  EXPECT_EQ(Helper().GetIconIndexPart(u"C:\\a.dll,-5"), -5);
  FMachine.Files().AddFile(u"C:\\Windows\\System32\\native.dat", "12345");
  EXPECT_EQ(Helper().GetSizeOfFile(u"C:\\Windows\\System32\\native.dat"), 0);
  const TNativeUInt old = Helper().DisableRedirection();
  EXPECT_EQ(Helper().GetSizeOfFile(u"C:\\Windows\\System32\\native.dat"), 5);
  Helper().RevertRedirection(old);
  EXPECT_EQ(Helper().GetSizeOfFile(u"C:\\Windows"), 0);

  TDateTime time = -1;
  const TFileTimeWords words{0xD53E8000U, 0x019DB1DEU};  // 1970-01-01 00:00
  Helper().FileTimeToDateTime(&words, &time);
  EXPECT_DOUBLE_EQ(time, 25569);
  Helper().FileTimeToDateTime(nullptr, &time);
  EXPECT_EQ(time, 0);
}

TEST_F(Siblings, FolderSize) {
  TSimulatedFiles& files = FMachine.Files();
  files.AddFile(u"C:\\App\\a.bin", std::string(100, 'x'));
  files.AddFile(u"C:\\App\\sub\\b.bin", std::string(20, 'x'));
  files.AddFile(u"C:\\App\\closed\\c.bin", std::string(3000, 'x'));
  files.MarkDenied(u"C:\\App\\closed");
  files.AddLink(u"C:\\App\\sub\\again", u"C:\\App");
  std::u16string deep = u"C:\\App";
  for (int i = 0; i < 1000; ++i) deep += u"\\d";
  files.AddFile(deep + u"\\e.bin", "eeeee");
  EXPECT_EQ(Helper().GetFolderSize(u"C:\\App"), 125);
  EXPECT_EQ(Helper().GetFolderSize(u"C:\\App\\sub\\"), 20);
  for (const char16_t* path : {u"C:\\Missing", u"C:\\App\\a.bin", u"C:\\App\\*", u"", u"\\\\?\\"}) {
    EXPECT_EQ(Helper().GetFolderSize(path), 0) << ToUtf8(path);
  }
  EXPECT_EQ(Helper().GetFolderSize(nullptr), 0);
}

TEST_F(Siblings, VersionLanguage) {
  const std::pair<std::vector<testing::TBytes>, std::string_view> cases[] = {
      {{testing::Translations({{0x0409, 0x04B0}})}, "English (United States)"},
      {{testing::Translations({{0, 0x04B0}})}, ""},
      {{testing::Translations({{0xFFFF, 0x04B0}})}, ""},
      {{}, ""},
  };
  for (const auto& [parts, language] : cases) {
    testing::TPeBuilder executable;
    executable.Add(16, 1, testing::Resource(parts));
    FMachine.Files().AddFile(u"C:\\a.exe", executable.Build());
    EXPECT_EQ(TextFrom([](TOleString* R) { Helper().GetVersionLanguage(u"C:\\a.exe", R); }), language);
  }
}

TEST_F(Siblings, ProgramsAreLookedUpOnTheMachine) {
  FMachine.Files().AddFile(u"C:\\Program Files (x86)\\My App\\remove it.exe", "");
  FMachine.Files().AddFolder(u"C:\\Program Files (x86)\\My");
  const std::pair<const char16_t*, std::string_view> cases[] = {
      {u"C:\\Program Files (x86)\\My App\\remove it now", "C:\\Program Files (x86)\\My App\\remove it"},
      {u"%ProgramFiles%\\My App\\remove it now", "%ProgramFiles%\\My App\\remove it"},
      {u"C:\\Program Files (x86)\\My Other\\remove it now", "C:\\Program"},
      {nullptr, ""},
  };
  for (const auto& [command, program] : cases) {
    EXPECT_EQ(TextFrom([&](TOleString* R) { Get<iShellHelper>(u"helper.dll").GetProgramPart(command, R); }), program);
  }
}

TEST_F(Siblings, DebugModeIsTheNumberOneInTheRegistry) {
  const std::u16string_view key = u"HKEY_CURRENT_USER\\Software\\Zentrova\\DebugMode";
  EXPECT_FALSE(Helper().IsDebugMode());
  for (const bool isOn : {true, false}) {
    Helper().SetDebugMode(isOn);
    EXPECT_EQ(DwordAt(key, u"DebugMode"), isOn ? 1U : 0U);
    EXPECT_EQ(Helper().IsDebugMode(), isOn);
  }
  FMachine.Registry().SetDwordAt(key, u"DebugMode", 2);
  EXPECT_FALSE(Helper().IsDebugMode());
  FMachine.Registry().SetTextAt(key, u"DebugMode", u"1");
  EXPECT_FALSE(Helper().IsDebugMode());
}

TEST_F(Siblings, OptionsStore) {
  const std::u16string_view key = u"HKEY_CURRENT_USER\\Software\\Zentrova\\Velmoran\\Settings";
  const char16_t* const path = u"Software\\Zentrova\\Velmoran\\Settings";
  auto& options = Get<IOptions>(u"helper.dll");
  const auto read = [&](const char16_t* AName) { return TextFrom([&](TOleString* R) { options.ReadText(AName, R); }); };

  EXPECT_FALSE(options.Save());
  ASSERT_TRUE(options.OpenStore(path));
  options.SetDefault(u"Language", u"enu");
  EXPECT_EQ(read(u"language"), "enu");
  options.WriteText(u"Language", u"deu");
  EXPECT_EQ(read(u"LANGUAGE"), "deu");
  EXPECT_FALSE(FMachine.Registry().HasKey(key));
  EXPECT_TRUE(options.Save());

  FMachine.Registry().SetDwordAt(key, u"Number", 7);
  FMachine.Registry().SetTextAt(key, u"Other", u"");
  ASSERT_TRUE(options.OpenStore(path));
  EXPECT_EQ(read(u"Language"), "deu");
  EXPECT_EQ(read(u"Number"), "");
  options.SetDefault(u"Other", u"default");
  EXPECT_EQ(read(u"Other"), "");
  options.WriteText(u"Other", u"x");
  EXPECT_TRUE(options.Save());
  EXPECT_EQ(DwordAt(key, u"Number"), 7U);

  FMachine.Registry().DenyAccess(key);
  EXPECT_FALSE(options.OpenStore(path));
  EXPECT_EQ(read(u"Language"), "");
  options.WriteText(u"Language", u"fra");
  EXPECT_FALSE(options.Save());
  FMachine.Registry().DenyAccess(key, 0);
  EXPECT_TRUE(options.Save());
  EXPECT_FALSE(options.OpenStore(nullptr));
}

TEST_F(Siblings, LocalizerSettlesOnAnInstalledLanguage) {
  FMachine.Files().AddFolder(u"C:\\App\\Lang\\deu");
  FMachine.Files().AddFile(u"C:\\App\\Lang\\fra", "no folder");
  const std::pair<const char16_t*, std::string_view> cases[] = {
      {u"DEU", "deu"}, {u"fra", "enu"}, {u"ita", "enu"}, {u"..", "enu"}, {u"..\\Lang\\deu", "enu"}, {nullptr, "enu"},
  };
  for (const auto& [language, settled] : cases) {
    TInterfaceRef<ILocalizer> localizer;
    Get<ILocalizerFactory>(u"Localizer.dll")
        .CreateLocalizer(u"Varcolin", language, u"C:\\App\\Lang", localizer.Receive());
    ASSERT_TRUE(localizer);
    EXPECT_EQ(TextFrom([&](TOleString* R) { localizer->GetLanguage(R); }), settled);
  }
}

TEST_F(Siblings, BackupIsOnUnlessSwitchedOffAndServedWhenSwitchedOn) {
  TInterfaceRef<IBrismereSettings> settings;
  Get<ISettings>(u"Settings.dll").GetBrismereSettings(settings.Receive());
  EXPECT_TRUE(settings->IsEnabledFor(u"varcolin.exe"));
  FMachine.Registry().SetDwordAt(u"HKEY_CURRENT_USER\\Software\\Zentrova\\Velmoran\\Settings\\Brismere",
                                 u"varcolin.exe", 0);
  EXPECT_FALSE(settings->IsEnabledFor(u"Varcolin.exe"));
  EXPECT_TRUE(settings->IsEnabledFor(u"other.exe"));
  EXPECT_FALSE(settings->IsEnabledFor(nullptr));

  auto& service = Get<IBrismere>(u"BrismereHelper.dll");
  EXPECT_TRUE(service.IsUserAdmin());
  EXPECT_FALSE(service.IsEnabled());
  FMachine.Registry().SetDwordAt(u"HKEY_CURRENT_USER\\Software\\Zentrova\\Velmoran\\Brismere", u"Enabled", 1);
  EXPECT_TRUE(service.IsEnabled());
}

TEST_F(Siblings, ProcessList) {
  FMachine.Processes().AddProcess(100, u"C:\\App\\app.exe");
  FMachine.Processes().AddProcess(200, u"secret.exe");
  auto& list = Get<IQuilletProcessList>(u"QuilletHelper.dll");
  const auto texts = [&] {
    std::map<std::uint32_t, std::string> found;
    list.Lock();
    for (std::int32_t i = 0; i < list.GetCount(); ++i) {
      TInterfaceRef<IQuilletProcess> process;
      list.GetItem(i, process.Receive());
      found[process->GetProcessID()] = TextFrom([&](TOleString* R) { process->GetPath(R); });
    }
    list.Unlock();
    return found;
  };
  EXPECT_EQ(list.GetCount(), 0);
  list.RefreshList();
  const auto first = texts();
  EXPECT_EQ(first.at(100), "C:\\App\\app.exe");
  EXPECT_EQ(first.at(200), "");
  EXPECT_EQ(first.at(FMachine.Processes().CurrentProcessId()), "C:\\Program Files (x86)\\Velmoran\\varcolin.exe");

  FMachine.Processes().EndProcess(100);
  EXPECT_EQ(texts(), first);
  list.RefreshList();
  EXPECT_FALSE(texts().contains(100));

  TInterfaceRef<IQuilletProcess> kept;
  list.GetItem(list.GetCount() - 1, kept.Receive());
  const std::uint32_t keptId = kept->GetProcessID();
  for (const std::int32_t index : {-1, list.GetCount()}) {
    TInterfaceRef<IQuilletProcess> none;
    list.GetItem(index, none.Receive());
    EXPECT_FALSE(none);
  }
  // a lock is re-entrant, keeps others out and is not to be undone by them
  list.Lock();
  list.Lock();
  std::atomic<bool> isRefreshed = false;
  std::thread other([&] {
    list.Unlock();
    list.RefreshList();
    isRefreshed = true;
  });
  list.Unlock();
  EXPECT_FALSE(isRefreshed);
  list.Unlock();
  other.join();

  EXPECT_EQ(Ask(u"QuilletHelper.dll", u"FinallizeLib"), nullptr);
  EXPECT_EQ(list.GetCount(), 0);
  EXPECT_EQ(kept->GetProcessID(), keptId);
  EXPECT_NE(keptId, 0U);
}

class DebugLog : public Siblings {
 protected:
  DebugLog() : FLog(Get<IDebugLog>(u"debugmode.dll")) {}

  /// The file's lines without their times; separators are left out.
  std::vector<std::string> Lines() {
    std::vector<std::string> lines;
    const std::string text = FileText(FPath);
    EXPECT_TRUE(text.ends_with("\r\n"));
    const std::string mark = " [" + std::to_string(FMachine.Processes().CurrentProcessId()) + "] ";
    for (std::size_t start = 0, end = 0; (end = text.find("\r\n", start)) != std::string::npos; start = end + 2) {
      const std::string line = text.substr(start, end - start);
      EXPECT_EQ(line.find(mark), std::string_view("2012.08.09 14:05:59.123").size()) << line;
      std::string rest = line.substr(line.find(mark) + mark.size());
      if (!rest.starts_with("-----")) lines.push_back(std::move(rest));
    }
    return lines;
  }

  const std::u16string FPath = u"C:\\Users\\User\\AppData\\Roaming\\Zentrova\\Velmoran\\Logs\\debug.log";
  IDebugLog& FLog;
};

TEST_F(DebugLog, WritesOnlyWhenEnabled) {
  FLog.WriteLogText(u"lost", 0);
  FLog.LogSystemInfo();
  EXPECT_FALSE(FLog.GetEnabled());
  EXPECT_FALSE(FMachine.Files().Contains(FPath));
  FLog.SetEnabled(true);
  EXPECT_TRUE(FLog.GetEnabled());
  FLog.WriteLogText(u"kept", 9);
  FLog.SetEnabled(false);
  FLog.WriteLogText(u"lost", 0);
  EXPECT_EQ(Lines(), std::vector<std::string>{"kept"});
  EXPECT_EQ(FLog.GetRefCount(), 1);
}

TEST_F(DebugLog, LinesAndNesting) {
  FMachine.Registry().SetDwordAt(u"HKEY_CURRENT_USER\\Software\\Zentrova\\DebugMode", u"Level", 2);
  FMachine.Processes().AddProcess(100, u"C:\\App\\app.exe");
  FLog.SetEnabled(true);
  FLog.EndNesting();
  FLog.BeginProc(u"TOwner", u"DoIt", 0);
  FLog.BeginProcNamed(u"Hidden", 3);
  FLog.WriteLog(u"TOwner", u"text", 2);
  FLog.WriteLog(u"TOwner", u"too deep", 3);
  FLog.EndProcResult(u"TOwner", u"OK");
  FLog.NestAndWriteText(u"nested", 0);
  FLog.EndProc(u"TOwner");
  FLog.WriteLogValue(u"TOwner", u"name", u"value", 0);
  FLog.WriteLogTextValue(u"name", nullptr, 0);
  FLog.LogError(u"TOwner", 5, u"opening", 0);
  FLog.LogError(nullptr, 0xFFFFFFFFU, nullptr, 0);
  FLog.LogException(u"TOwner", u"DoIt", u"line one\r\nline two", 0);
  FLog.LogValues(u"TOwner", u"v", u"c", 0);
  FLog.LogBoolean(u"TOwner", true, u"c", 0);
  FLog.LogString(nullptr, u"\u00E9\xD800", u"c", 0);
  FLog.LogCardinal(u"TOwner", 0xFFFFFFFFU, u"c", 0);
  FLog.LogInteger(u"TOwner", -1, nullptr, 0);
  const std::vector<std::string> expected{"> TOwner.DoIt",
                                          "    TOwner: text",
                                          "  < TOwner: OK",
                                          "    nested",
                                          "< TOwner",
                                          "TOwner: name = value",
                                          "name",
                                          "TOwner: opening: error 5, Access is denied.",
                                          "error 4294967295",
                                          "TOwner.DoIt: exception: line one  line two",
                                          "TOwner: c = v",
                                          "TOwner: c = True",
                                          "c = \"\xC3\xA9\xEF\xBF\xBD\"",
                                          "TOwner: c = 4294967295",
                                          "TOwner = -1"};
  EXPECT_EQ(Lines(), expected);

  FLog.LogSystemInfo();
  FLog.LogProcessList();
  const std::string text = FileText(FPath);
  for (const char* part : {"Windows: 6.1.7601, Service Pack 1\r\n", "User: User\r\n", "64-bit Windows: True\r\n",
                           "Process 100: C:\\App\\app.exe\r\n"}) {
    EXPECT_NE(text.find(part), std::string::npos) << part;
  }
}

TEST_F(DebugLog, ThreadsKeepTheirOwnNestingAndWholeLines) {
  FLog.SetEnabled(true);
  FLog.BeginNesting();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&] {
      for (int line = 0; line < 50; ++line) FLog.WriteLogText(u"from a thread", 0);
    });
  }
  for (std::thread& thread : threads) thread.join();
  FLog.WriteLogText(u"nested", 0);
  std::vector<std::string> expected(200, "from a thread");
  expected.emplace_back("  nested");
  EXPECT_EQ(Lines(), expected);
}

TEST_F(DebugLog, AppendsToTheFileUntilItIsTooLarge) {
  FMachine.Files().AddFile(FPath, "before\r\n");
  FLog.SetEnabled(true);
  FLog.WriteLogText(u"after", 0);
  EXPECT_TRUE(FileText(FPath).starts_with("before\r\n2"));
  TSiblingLibraries::Load(FMachine.Facilities());
  FMachine.Files().AddFile(FPath, std::string((16 << 20) + 1, 'x'));
  auto& log = Get<IDebugLog>(u"debugmode.dll");
  log.SetEnabled(true);
  log.WriteLogText(u"anew", 0);
  EXPECT_EQ(Lines(), std::vector<std::string>{"anew"});
}

}  // namespace
}  // namespace varcolin
