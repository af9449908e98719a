// The sibling libraries as the library reaches them, the texts of the host, the debug log and the set-up at load.
#include <thread>

#include "common/PeBuilder.h"
#include "common/Services.h"
#include "support/uInterfacedObject.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using testing::TServices;

constexpr const char16_t* HostFolder = u"C:\\Program Files (x86)\\Velmoran\\";
constexpr const char16_t* DebugKey = u"HKEY_CURRENT_USER\\Software\\Zentrova\\DebugMode";
constexpr const char16_t* SettingsKey = u"HKEY_CURRENT_USER\\Software\\Zentrova\\Velmoran\\Settings";

void* VARCOLIN_CALL RefuseEverything(const char16_t*, std::uint32_t) { return nullptr; }

int AskedTimes = 0;
std::u16string AskedText;
void* VARCOLIN_CALL CountRequests(const char16_t* AText, std::uint32_t) {
  ++AskedTimes;
  AskedText = AText;
  return nullptr;
}

/// A host's list of strings.
class TTestStringList final : public TInterfacedObject<IStringList> {
 public:
  explicit TTestStringList(std::vector<std::u16string> AItems) : FItems(std::move(AItems)) {}
  std::int32_t VARCOLIN_CALL GetCount() override { return static_cast<std::int32_t>(FItems.size()); }
  void VARCOLIN_CALL GetItem(std::int32_t AIndex, TOleString* AResult) override {
    *AResult = AllocOleString(FItems.at(static_cast<std::size_t>(AIndex)));
  }

 private:
  std::vector<std::u16string> FItems;
};

class SuiteServices : public TServices {
 protected:
  SuiteServices() { Machine.SetHostPath(std::u16string(HostFolder) + u"varcolin.exe"); }

  std::u16string StoredLanguage() {
    TRegistryValue value;
    return Machine.Registry().ValueAt(SettingsKey, u"Language", value) ? TextFromBytes(value.Data) : u"none";
  }
};

TEST_F(SuiteServices, LibrariesAreLoadedOnceAndFreed) {
  Load();
  {
    TLibraryList libraries(Machine.Modules());
    const TModule* const helper = libraries.GetLibraryHandle(u"helper.dll");
    ASSERT_NE(helper, nullptr);
    EXPECT_EQ(libraries.GetLibraryHandle(u"HELPER.DLL"), helper);
    EXPECT_EQ(Machine.Modules().LoadCount(u"helper.dll"), 2U);
    EXPECT_EQ(libraries.GetLibraryHandle(u"late.dll"), nullptr);
    Machine.Modules().RegisterModule(u"late.dll", CountRequests);
    EXPECT_NE(libraries.GetLibraryHandle(u"late.dll"), nullptr) << "a failure is not remembered";
  }
  EXPECT_EQ(Machine.Modules().LoadCount(u"helper.dll"), 1U);

  AskedTimes = 0;
  TInterfaceCache cache;
  const TSiblingInterface sibling{u"LATE.dll", u"{x}", u"label"};
  EXPECT_EQ(SiblingLoader::LoadInterface(cache, sibling), nullptr);
  EXPECT_EQ(SiblingLoader::LoadInterface(cache, sibling), nullptr);
  EXPECT_EQ(AskedTimes, 1) << "a refusal is remembered";
  SiblingLoader::SendCommand(u"late.dll", u"FinallizeLib");
  EXPECT_EQ(AskedText, u"FinallizeLib");
  SiblingLoader::SendCommand(u"absent.dll", u"FinallizeLib");
}

TEST_F(SuiteServices, AMissingSiblingEndsTheProcess) {
  Load();
  Machine.Modules().RegisterModule(u"Settings.dll", RefuseEverything);
  try {
    static_cast<void>(DLLGlobals::Settings());
    ADD_FAILURE() << "the process goes on";
  } catch (const TSimulatedProcessEnd& end) {
    EXPECT_EQ(end.Code, 1U);
  }
  const std::vector<TShownBox> expected{
      {u"An error occurred while loading library Settings.dll::Settings. \r\n\r\nIt may have been removed. Please "
       u"reinstall the application. If the problem persists, contact technical support.",
       u"Error", MessageStyle::IconError}};
  EXPECT_EQ(Machine.Messages().Shown(), expected);
  EXPECT_TRUE(DLLGlobals::BrismereService()) << "the others stay usable";

  // the helper is asked first
  for (const auto& [library, label] : {std::pair(u"Localizer.dll", u"Localizer.dll::Localizer. "),
                                       std::pair(u"helper.dll", u"helper.dll::Globals. ")}) {
    Unload();
    Machine.Modules().RegisterModule(library, RefuseEverything);
    EXPECT_THROW(Load(), TSimulatedProcessEnd);
    EXPECT_NE(Machine.Messages().Shown().back().Text.find(label), std::u16string::npos) << ToUtf8(label);
  }
}

TEST_F(SuiteServices, AreFilledOnceByManyThreads) {
  Load();
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([] {
      for (int round = 0; round < 100; ++round) {
        EXPECT_EQ(DLLGlobals::Tolvane()->GetPublisherRating(u""), TSoftwareRating::stUnknown);
        EXPECT_TRUE(DLLGlobals::IsBrismereEnabled());
        EXPECT_EQ(FileUtils::WinSystemX64(), u"C:\\Windows\\Sysnative\\");
        EXPECT_EQ(WinVersionInfo::WindowsVersion(), TWindowsVersion::wvWin7);
        EXPECT_FALSE(AxDebug::DebugLog()->GetEnabled());
        StatisticsLog::Add(u"line");
      }
    });
  }
  for (std::thread& thread : threads) thread.join();
  EXPECT_EQ(Machine.Modules().LoadCount(u"TolvaneHelper.dll"), 1U);
  Machine.Registry().SetDwordAt(std::u16string(SettingsKey) + u"\\Brismere", u"varcolin.exe", 0);
  EXPECT_FALSE(DLLGlobals::IsBrismereEnabled());
}

TEST_F(SuiteServices, IndirectStringsAndLocaleNames) {
  Load();
  EXPECT_EQ(DLLGlobals::ExtractResourceDescription(u""), u"");
  EXPECT_EQ(DLLGlobals::ExtractResourceDescription(u"C:\\a.dll,-1"), u"C:\\a.dll,-1");
  Machine.Files().AddFile(u"C:\\text.dll", "no executable");
  for (const char16_t* broken : {u"@", u"@,", u"@C:\\absent.dll,-1", u"@C:\\text.dll,-1", u"@C:\\text.dll",
                                 u"@C:\\text.dll,-2147483648", u"@C:\\text.dll,-99999999999999999999"}) {
    EXPECT_EQ(DLLGlobals::ExtractResourceDescription(broken), u"");
  }
  const std::u16string longText(300, u'x');
  const std::u16string_view texts[] = {u"", longText};
  testing::TPeBuilder executable;
  executable.AddStrings(96, texts);
  Machine.Files().AddFile(u"C:\\Windows\\names.dll", executable.Build());
  EXPECT_EQ(DLLGlobals::ExtractResourceDescription(u"@%windir%\\names.dll,-97"), std::u16string(259, u'x'));
  EXPECT_EQ(DLLGlobals::ExtractResourceDescription(u"@%windir%\\names.dll,-98"), u"");
  EXPECT_EQ(DLLGlobals::LocaleIDToString(std::uint32_t{0x407}), DLLGlobals::LocaleIDToString(u"de-DE"));
  EXPECT_FALSE(DLLGlobals::LocaleIDToString(std::uint32_t{0x407}).empty());
  EXPECT_EQ(DLLGlobals::LocaleIDToString(std::uint32_t{0xFFFFFF}), u"");
  EXPECT_EQ(DLLGlobals::LocaleIDToString(u"xx-YY"), u"xx-YY");
  EXPECT_EQ(WindowsExt::GetUserSID(), Machine.Facts().UserSid);
  Machine.Clock().SetTickCount(0xFFFFFFF0);
  const std::uint32_t start = Machine.Sync().TickCount();
  Machine.Clock().Advance(0x20);
  EXPECT_EQ(WindowsExt::GetTickDelta(start), 0x20U) << "across the overflow";
}

TEST_F(SuiteServices, TextsOfTheHost) {
  using enum ELocalizedString;
  Load();
  const auto set = [](std::vector<std::u16string> ALines) {
    DLLStringsLocalized::SetStrings(MakeObject<TTestStringList>(std::move(ALines)).Get());
  };
  DLLStringsLocalized::SetStrings(nullptr);
  set({u"S_HOTFIX=Correctif pour Windows (%s)", u"S_UPDATE=", u"S_UPDATE=later", u"S_SERVICE_PACK", u"unknown=x", u"",
       u"=", u"s_software_patch=a=b"});
  EXPECT_EQ(DLLStringsLocalized::Text(S_HOTFIX), u"Correctif pour Windows (%s)");
  EXPECT_EQ(DLLStringsLocalized::Text(S_UPDATE), u"Update for Microsoft Windows (%s)") << "the first line counts";
  EXPECT_EQ(DLLStringsLocalized::Text(S_SERVICE_PACK), u"Service Pack for Microsoft Windows (%s)");
  EXPECT_EQ(DLLStringsLocalized::Text(S_SOFTWARE_PATCH), u"a=b");
  set({u"S_HOTFIX=2"});
  EXPECT_EQ(DLLStringsLocalized::Text(S_HOTFIX), u"2");
  EXPECT_EQ(DLLStringsLocalized::Text(S_SOFTWARE_PATCH), u"a=b");
  EXPECT_EQ(DLLStringsLocalized::Text(S_BRISMERE_SESSION_NAME), u"Varcolin: Deleting entry for \"%s\"");
  Unload();
  Load();
  EXPECT_EQ(DLLStringsLocalized::Text(S_HOTFIX), u"Hotfix for Microsoft Windows (%s)");
}

TEST_F(SuiteServices, DebugLogNeedsItsLibraryBesideTheHost) {
  const std::u16string library = std::u16string(HostFolder) + u"debugmode.dll";
  const struct {
    bool Present;
    std::uint32_t Type;
    std::vector<std::byte> Stored;
    std::vector<std::u16string> Arguments;
    bool Enabled;
  } rows[] = {
      {false, RegType::Dword, {std::byte{1}, {}, {}, {}}, {u"-debug"}, false},
      {true, RegType::Dword, {std::byte{1}, {}, {}, {}}, {}, true},
      {true, RegType::Dword, {std::byte{2}, {}, {}, {}}, {}, false},
      {true, RegType::Dword, {std::byte{1}}, {u"x", u"-debug"}, false},
      {true, RegType::String, {std::byte{u'1'}, {}, {}, {}}, {u"-x"}, false},
      {true, RegType::String, {std::byte{u'1'}, {}, {}, {}}, {u"-DEBUG"}, true},
  };
  for (const auto& row : rows) {
    Machine.Registry().SetValueAt(DebugKey, u"DebugMode", row.Type, row.Stored);
    Machine.Processes().SetHostArguments(row.Arguments);
    if (row.Present) Machine.Files().AddFile(library, "");
    Load();
    const TInterfaceRef<IDebugLog> log = AxDebug::DebugLog();
    EXPECT_EQ(log->GetEnabled(), row.Enabled);
    EXPECT_EQ(AxDebug::DebugLog().Get(), log.Get());
    TInterfaceRef<INullDebugLog> null;
    const TResultCode isNull = log->QueryInterface(INullDebugLog::IID, reinterpret_cast<void**>(null.Receive()));
    EXPECT_EQ(isNull, row.Enabled ? ResultNoInterface : ResultOk);
    if (null) {
      TInterfaceRef<IDebugLog> again;
      EXPECT_EQ(null->QueryInterface(IDebugLog::IID, reinterpret_cast<void**>(again.Receive())), ResultOk);
      EXPECT_EQ(again->GetRefCount(), 4);
    }
    TRegistryValue value;
    ASSERT_TRUE(Machine.Registry().ValueAt(DebugKey, u"DebugMode", value));
    EXPECT_EQ(value.Data, row.Present ? row.Stored : std::vector<std::byte>(4)) << "reset without the library";
    Unload();
  }
}

TEST_F(SuiteServices, DebugModeIsWarnedOfOnce) {
  Machine.Files().AddFile(std::u16string(HostFolder) + u"debugmode.dll", "");
  Machine.Registry().SetDwordAt(DebugKey, u"DebugMode", 1);
  Machine.Sync().HoldMutex(u"zentrova.debugmode.globalmutex");
  Load();
  EXPECT_TRUE(Machine.Messages().Shown().empty()) << "another program has warned";
  Unload();
  Machine.Sync().ReleaseMutex(u"zentrova.debugmode.globalmutex");

  Load();
  ASSERT_EQ(Machine.Messages().Shown().size(), 1U);
  const TShownBox box = Machine.Messages().Shown().front();
  EXPECT_EQ(box.Caption, u"Zentrova Velmoran");
  EXPECT_EQ(box.Style, 0x42024U);
  EXPECT_TRUE(
      box.Text.starts_with(u"The program is now running in the debug mode. All of the program\u2019s activity"));
  EXPECT_TRUE(DLLGlobals::Helper()->IsDebugMode());
  TNamedMutex mutex;
  EXPECT_EQ(Machine.Sync().OpenNamedMutex(u"zentrova.debugmode.globalmutex", mutex), WinError::Success);
  mutex.Close();
  Unload();

  Machine.Messages().QueueAnswer(MessageAnswer::Yes);
  Load();
  EXPECT_FALSE(DLLGlobals::Helper()->IsDebugMode());
}

TEST_F(SuiteServices, LanguageSettlesOnWhatTheLocalizerHas) {
  Load();
  EXPECT_EQ(StoredLanguage(), u"enu") << "the user's language, in lower case";
  Unload();
  Machine.Registry().SetTextAt(SettingsKey, u"Language", u"deu");
  Load();
  EXPECT_EQ(StoredLanguage(), u"enu") << "there is no such language folder";
  Unload();
  Machine.Files().AddFolder(std::u16string(HostFolder) + u"Lang\\deu");
  Machine.Registry().SetTextAt(SettingsKey, u"Language", u"deu");
  Load();
  EXPECT_EQ(StoredLanguage(), u"deu");
}

}  // namespace
}  // namespace varcolin
