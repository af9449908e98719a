// What every implementation of the system facts, the shell, the processes and COM has to do.
#include <gtest/gtest.h>

#include <algorithm>
#include <thread>

#include "common/LinkBuilder.h"
#include "contract/MachineUnderTest.h"
#include "platform/Com.h"
#include "platform/Modules.h"
#include "platform/Processes.h"
#include "platform/Shell.h"
#include "platform/SystemFacts.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

class SystemContract : public ::testing::Test {
 protected:
  TMachine& Machine = testing::MachineUnderTest();
  ISystemFacts& System = Machine.System;

  std::u16string Variable(std::u16string_view AName) {
    std::u16string value;
    EXPECT_EQ(System.GetVariable(AName, value), WinError::Success) << ToUtf8(AName);
    return value;
  }
};

TEST_F(SystemContract, IsA32BitProcessOn64BitWindows7) {
  TVersionFacts version;
  ASSERT_EQ(System.GetVersionFacts(version), WinError::Success);
  EXPECT_EQ(version.Platform, VersionPlatform::WindowsNT);
  EXPECT_GE(version.Major, 6U);
  EXPECT_GT(version.Build, 0U);
  EXPECT_EQ(version.ServicePackMajor == 0, version.ServicePackText.empty());
  bool answer = false;
  EXPECT_EQ(System.QueryWow64(answer), WinError::Success);
  EXPECT_TRUE(answer);
  std::uint16_t architecture = 99;
  EXPECT_EQ(System.ProcessorArchitecture(true, architecture), WinError::Success);
  EXPECT_EQ(architecture, Architecture::Amd64);
  EXPECT_EQ(System.ProcessorArchitecture(false, architecture), WinError::Success);
  EXPECT_EQ(architecture, Architecture::Intel);
  std::uint32_t type = 0;
  EXPECT_EQ(System.GetProductType(6, 1, 0, 0, type), WinError::Success);
  EXPECT_NE(type, 0U);
  EXPECT_EQ(System.SystemMetric(12345), 0);
  EXPECT_GT(System.SystemMetric(49), 0);  // a small icon's width
}

TEST_F(SystemContract, KnowsLocales) {
  const struct {
    std::uint32_t Id;
    std::u16string_view Name;
    std::u16string_view Abbreviation;
    std::u16string_view Language;
  } cases[] = {
      {0x409, u"en-US", u"ENU", u"English (United States)"}, {0x407, u"de-DE", u"DEU", u"German (Germany)"},
      {0x40C, u"FR-fr", u"FRA", u"French (France)"},         {0x416, u"pt-BR", u"PTB", u"Portuguese (Brazil)"},
      {0x411, u"ja-JP", u"JPN", u"Japanese (Japan)"},        {0x419, u"ru-RU", u"RUS", u"Russian (Russia)"},
      {0x1009, u"en-CA", u"ENC", u"English (Canada)"},
  };
  for (const auto& [id, name, abbreviation, language] : cases) {
    std::u16string text;
    EXPECT_EQ(System.GetLocaleText(id, LocaleInfo::Language, text), WinError::Success);
    EXPECT_EQ(text, language);
    EXPECT_EQ(System.GetLocaleTextByName(name, LocaleInfo::Language, text), WinError::Success);
    EXPECT_EQ(text, language);
    EXPECT_EQ(System.GetLocaleText(id, LocaleInfo::AbbreviatedLanguage, text), WinError::Success);
    EXPECT_EQ(text, abbreviation);
  }
  std::u16string text;
  EXPECT_EQ(System.GetLocaleText(LocaleInfo::UserDefault, LocaleInfo::AbbreviatedLanguage, text), WinError::Success);
  EXPECT_EQ(text.size(), 3U);
  EXPECT_EQ(System.GetLocaleText(0x40B, LocaleInfo::TimeSeparator, text), WinError::Success);
  EXPECT_EQ(text, u".");
  EXPECT_EQ(System.GetLocaleText(0x409, LocaleInfo::TimeSeparator, text), WinError::Success);
  EXPECT_EQ(text, u":");
  // a bare language: Wine takes it for the language's first country, as Windows before Vista did
  EXPECT_EQ(System.GetLocaleText(0x9, LocaleInfo::Language, text), WinError::Success);
  EXPECT_EQ(text, testing::IsWine() ? u"English (United States)" : u"English");

  text = u"untouched";
  EXPECT_EQ(System.GetLocaleText(0x3FF, LocaleInfo::Language, text), WinError::InvalidParameter);
  EXPECT_EQ(System.GetLocaleText(0xFFFFFFFF, LocaleInfo::Language, text), WinError::InvalidParameter);
  EXPECT_EQ(System.GetLocaleTextByName(u"no-such-locale", LocaleInfo::Language, text), WinError::InvalidParameter);
  EXPECT_EQ(text, u"untouched");
}

TEST_F(SystemContract, ExpandsVariables) {
  const std::u16string root = Variable(u"SystemRoot");
  EXPECT_EQ(Variable(u"SYSTEMROOT"), root);
  std::u16string value = u"untouched";
  EXPECT_EQ(System.GetVariable(u"VARCOLIN_NONE", value), 203U);
  EXPECT_EQ(value, u"untouched");
  const struct {
    std::u16string_view Text;
    std::u16string Result;
  } cases[] = {
      {u"", u""},
      {u"plain", u"plain"},
      {u"%systemroot%\\x", root + u"\\x"},
      {u"a%SystemRoot%b%SystemRoot%", u"a" + root + u"b" + root},
      {u"%VARCOLIN_NONE%", u"%VARCOLIN_NONE%"},
      {u"100%", u"100%"},
      {u"%%", u"%%"},
      {u"50% of %SystemRoot%", u"50% of " + root},
      {u"%VARCOLIN_NONE%SystemRoot%", u"%VARCOLIN_NONE" + root},
      {u"%s%n%d", u"%s%n%d"},
  };
  for (const auto& [text, result] : cases) {
    // Wine never lets the sign that ends an unknown name begin the next one
    if (testing::IsWine() && (text.starts_with(u"50%") || text.ends_with(u"NONE%SystemRoot%"))) continue;
    std::u16string expanded;
    EXPECT_EQ(System.ExpandVariables(text, expanded), WinError::Success);
    EXPECT_EQ(expanded, result) << ToUtf8(text);
  }
}

TEST_F(SystemContract, NamesItsFolders) {
  std::u16string windows, system, path;
  ASSERT_EQ(System.GetWindowsFolder(windows), WinError::Success);
  ASSERT_EQ(System.GetSystemFolder(system), WinError::Success);
  EXPECT_TRUE(SameText(system, windows + u"\\system32"));
  const struct {
    std::int32_t Csidl;
    std::u16string Path;
  } cases[] = {
      {SpecialFolder::Windows, windows},
      {SpecialFolder::System, system},
      {SpecialFolder::ProgramFiles, Variable(u"ProgramFiles")},
      {SpecialFolder::ProgramFilesX86, Variable(u"ProgramFiles(x86)")},
      {SpecialFolder::AppData, Variable(u"APPDATA")},
      {SpecialFolder::Profile, Variable(u"USERPROFILE")},
      {SpecialFolder::CommonAppData, Variable(u"ALLUSERSPROFILE")},
      {SpecialFolder::Programs, Variable(u"APPDATA") + u"\\Microsoft\\Windows\\Start Menu\\Programs"},
      {SpecialFolder::CommonPrograms, Variable(u"ALLUSERSPROFILE") + u"\\Microsoft\\Windows\\Start Menu\\Programs"},
  };
  for (const auto& [csidl, expected] : cases) {
    EXPECT_EQ(Machine.Shell.GetSpecialFolder(csidl, path), WinError::Success) << csidl;
    EXPECT_TRUE(SameText(path, expected)) << csidl << ": " << ToUtf8(path) << " is not " << ToUtf8(expected);
  }
  path = u"untouched";
  EXPECT_NE(Machine.Shell.GetSpecialFolder(0x7E, path), WinError::Success);
  EXPECT_EQ(path, u"untouched");
}

TEST_F(SystemContract, NamesWhatItemIDListsLeadTo) {
  TShellFolder desktop;
  ASSERT_EQ(Machine.Shell.GetDesktopFolder(desktop), WinError::Success);
  const auto nameOf = [&](const testing::TBytes& AList, std::uint32_t AForm) {
    std::u16string name = u"failed";
    const TWinError error = Machine.Shell.GetDisplayName(desktop, AList, AForm, name);
    EXPECT_EQ(error == WinError::Success, name != u"failed") << error;
    return ToUtf8(name);
  };
  // a file that exists, since Wine asks the disk about what it names
  const std::u16string host = [&] {
    std::u16string path;
    EXPECT_EQ(Machine.System.GetWindowsFolder(path), WinError::Success);
    return path;
  }();
  testing::TBytes list = testing::MakeIDList(host);
  EXPECT_EQ(nameOf(list, DisplayNameForm::ForParsing), ToUtf8(host));
  EXPECT_EQ(nameOf(list, DisplayNameForm::InFolder), ToUtf8(ExtractFileName(host)));
  EXPECT_EQ(nameOf(testing::MakeIDList(u"C:\\"), DisplayNameForm::ForParsing), "C:\\");
  list.resize(list.size() - 2);
  EXPECT_EQ(nameOf(list, DisplayNameForm::ForParsing), ToUtf8(host)) << "without the empty item at the end";

  // places that have no path are named by their class ids (Wine's in small letters), each in the one that it lies in
  constexpr TGUID computer{0x20D04FE0, 0x3AEA, 0x1069, {0xA2, 0xD8, 0x08, 0x00, 0x2B, 0x30, 0x30, 0x9D}};
  constexpr TGUID controlPanel{0x21EC2020, 0x3AEA, 0x1069, {0xA2, 0xDD, 0x08, 0x00, 0x2B, 0x30, 0x30, 0x9D}};
  const auto upperNameOf = [&](const testing::TBytes& AList) {
    return ToUtf8(UpperCase(FromUtf8(nameOf(AList, DisplayNameForm::ForParsing))));
  };
  testing::TBytes places = testing::MakePlaceItem(computer);
  EXPECT_EQ(upperNameOf(places), "::{20D04FE0-3AEA-1069-A2D8-08002B30309D}");
  testing::Append(places, testing::MakePlaceItem(controlPanel));
  EXPECT_EQ(upperNameOf(places), "::{20D04FE0-3AEA-1069-A2D8-08002B30309D}\\::{21EC2020-3AEA-1069-A2DD-08002B30309D}");

  const testing::TBytes broken[] = {{std::byte{9}, {}, std::byte{0x1F}},
                                    {std::byte{1}, {}},
                                    {std::byte{2}, {}},
                                    testing::TBytes(40, std::byte{0xFF})};
  for (const testing::TBytes& bytes : broken) EXPECT_EQ(nameOf(bytes, DisplayNameForm::ForParsing), "failed");
}

TEST_F(SystemContract, ReadsAnsiText) {
  std::u16string text = u"before";
  EXPECT_EQ(System.AnsiToText(std::as_bytes(std::span("C:\\x", 5)), text), WinError::Success);
  EXPECT_EQ(text, std::u16string_view(u"C:\\x\0", 5)) << "NULs are text";
  EXPECT_EQ(System.AnsiToText({}, text), WinError::Success);
  EXPECT_TRUE(text.empty());
  EXPECT_EQ(System.AnsiToText(std::as_bytes(std::span("\xE9\x80", 2)), text), WinError::Success);
  EXPECT_EQ(text, u"\u00E9\u20AC") << "both machines have Western code pages";
}

TEST_F(SystemContract, KnowsTheKindOfSystem) {
  const struct {
    std::uint32_t Kind;
    bool Answer;
  } cases[] = {{1, true}, {7, true}, {8, false}, {18, true}, {30, true}, {999, false}};
  for (const auto& [kind, expected] : cases) {
    if (kind == 8 && testing::IsWine()) continue;  // Wine takes every workstation for a Windows 2000 Professional
    bool answer = !expected;
    EXPECT_EQ(Machine.Shell.QueryIsOS(kind, answer), WinError::Success) << kind;
    EXPECT_EQ(answer, expected) << kind;
  }
}

TEST_F(SystemContract, ConvertsTimes) {
  const TFileTime now = System.UniversalTime();
  constexpr std::uint64_t Year2000 = 125911584000000000;
  EXPECT_GT(now.Ticks, Year2000);
  TFileTime first, second;
  ASSERT_EQ(System.ToLocalTime(now, first), WinError::Success);
  ASSERT_EQ(System.ToLocalTime({now.Ticks + 5}, second), WinError::Success);
  EXPECT_EQ(second.Ticks, first.Ticks + 5);
  constexpr std::uint64_t Day = 864'000'000'000;
  EXPECT_LT(first.Ticks > now.Ticks ? first.Ticks - now.Ticks : now.Ticks - first.Ticks, Day);
}

TEST_F(SystemContract, HasTextsForErrors) {
  for (const TWinError code : {WinError::FileNotFound, WinError::AccessDenied, WinError::NoMoreItems}) {
    const std::u16string text = System.ErrorText(code);
    ASSERT_FALSE(text.empty()) << code;
    EXPECT_GT(text.back(), u' ') << "no line end";
  }
  EXPECT_EQ(System.ErrorText(0x1FFFFFFF), u"");
}

TEST_F(SystemContract, KnowsTheUserAndTheProcesses) {
  IProcesses& processes = Machine.Processes;
  std::u16string sid, name, host, path;
  ASSERT_EQ(processes.GetUserSid(sid), WinError::Success);
  EXPECT_TRUE(sid.starts_with(u"S-1-")) << ToUtf8(sid);
  ASSERT_EQ(processes.GetNameOfUser(name), WinError::Success);
  EXPECT_FALSE(name.empty());
  bool isAdmin = false;
  EXPECT_EQ(processes.QueryUserIsAdmin(isAdmin), WinError::Success);

  ASSERT_EQ(Machine.Modules.GetHostPath(host), WinError::Success);
  const std::uint32_t own = processes.CurrentProcessId();
  std::vector<TProcessEntry> entries;
  ASSERT_EQ(processes.EnumProcesses(entries), WinError::Success);
  const auto entry = std::ranges::find(entries, own, &TProcessEntry::Id);
  ASSERT_NE(entry, entries.end());
  EXPECT_TRUE(SameText(entry->Name, ExtractFileName(host))) << ToUtf8(entry->Name);
  ASSERT_EQ(processes.GetProcessPath(own, path), WinError::Success);
  EXPECT_TRUE(SameText(path, host)) << ToUtf8(path);
  EXPECT_EQ(processes.GetProcessPath(0, path), WinError::InvalidParameter);
  EXPECT_TRUE(SameText(path, host));
}

TEST_F(SystemContract, JoinsComOncePerKind) {
  std::thread([&] {
    ICom& com = Machine.Com;
    const TComScope outer(com, ECom::Apartment);
    ASSERT_TRUE(com.JoinCom(ECom::Apartment)) << "again in the same way";
    com.LeaveCom();
    EXPECT_FALSE(com.JoinCom(ECom::Multithreaded)) << "in the other way";
  }).join();
  std::thread([&] {
    ASSERT_TRUE(Machine.Com.JoinCom(ECom::Multithreaded));
    Machine.Com.LeaveCom();
    ASSERT_TRUE(Machine.Com.JoinCom(ECom::Apartment)) << "left before";
    Machine.Com.LeaveCom();
  }).join();
}

}  // namespace
}  // namespace varcolin
