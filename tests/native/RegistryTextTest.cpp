// Exports of the registry editor: what is loaded from good ones, and how broken ones are refused.
#include <gtest/gtest.h>

#include <string>

#include "platform/simulated/RegistryText.h"
#include "platform/simulated/SimulatedRegistry.h"
#include "support/uDateTime.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using namespace std::string_literals;
using namespace std::string_view_literals;

constexpr TFileTime Start{129'000'000'000'000'000};
constexpr std::string_view Version5 = "Windows Registry Editor Version 5.00\r\n\r\n";
constexpr std::string_view Key = "[HKEY_CURRENT_USER\\K]\n";

struct TLoaded {
  TSimulatedClock Clock{Start};
  TSimulatedSync Sync{Clock};
  TSimulatedRegistry Registry{Clock, Sync, {true, true, u"S-1-5-21-1"}};

  void Load(std::string_view ABytes) { LoadRegistryText(std::as_bytes(std::span(ABytes)), "some/file.reg", Registry); }

  // Type and data, the data as characters of one byte each; "none" without such a value.
  std::string Value(std::u16string_view AName, std::u16string_view AKey = u"HKEY_CURRENT_USER\\K") {
    TRegistryValue value;
    if (!Registry.ValueAt(AKey, AName, value)) return "none";
    return std::to_string(value.Type) + ":" +
           std::string(reinterpret_cast<const char*>(value.Data.data()), value.Data.size());
  }
};

// The bytes of a text in UTF-16LE with its terminator, behind the type of a string.
std::string Text(std::u16string_view AText) {
  std::string result = "1:";
  for (const char16_t unit : AText) result.append({static_cast<char>(unit & 0xFF), static_cast<char>(unit >> 8)});
  return result.append(2, '\0');
}

std::string ToUtf16File(std::string_view AUtf8) {
  std::string result = "\xFF\xFE";
  const std::string text = Text(FromUtf8(AUtf8));
  return result.append(text, 2, text.size() - 4);
}

TEST(RegistryTextTest, ValuesOfEveryForm) {
  const struct {
    std::string_view Line;
    std::string Expected;  // of the value "v"
  } cases[] = {
      {"\"v\"=\"\"", Text(u"")},
      {"\"v\"=\"a\\\\b\\\"c\"", Text(u"a\\b\"c")},
      {"\"v\"=\"[x]=;y\"  ; comment", Text(u"[x]=;y")},
      {"\"v\"=\"one\r\ntwo\n\n[three]\r\"", Text(u"one\r\ntwo\n\n[three]\r")},
      {"\"v\"=\"\xC3\xA4\xE2\x82\xAC\xF0\x9F\x98\x80\"", Text(u"\u00E4\u20AC\U0001F600")},
      {"\"V\"=dword:89abCDEf", "4:\xEF\xCD\xAB\x89"},
      {"\"v\"=dword:1", "4:\x01\0\0\0"s},
      {" \t\"v\" = DWORD: 0000000a ", "4:\x0A\0\0\0"s},
      {"\"v\"=hex:", "3:"},
      {"\"v\"=hex:00,FF,a", "3:\x00\xFF\x0A"s},
      {"\"v\"=hex: 01 , 02,\\  \r\n  03,04,\\\n\t05 ; five", "3:\x01\x02\x03\x04\x05"},
      {"\"v\"=hex(7):\\\n  61,00,00,00", "7:a\0\0\0"s},
      {"\"v\"=hex(1):61,00", "1:a\0"s},
      {"\"v\"=hex(2):25", "2:%"},
      {"\"v\"=hex(0):01", "0:\x01"},
      {"\"v\"=hex(4):01,02", "4:\x01\x02"},
      {"\"v\"=hex(B):01", "11:\x01"},
      {"\"v\"=hex(ffff0012):01", "4294901778:\x01"},
      {"\"v\"=dword:1\n\"V\"=\"again\"", Text(u"again")},
      {"\"v\"=dword:1\n\"v\"=-", "none"},
      {"\"v\"=-", "none"},
      {"\"v\"=dword:1\n[-HKEY_CURRENT_USER\\k]\n[HKEY_CURRENT_USER\\K]", "none"},
  };
  for (const auto& [line, expected] : cases) {
    const std::string file = std::string(Version5).append(Key).append(line);
    for (const std::string& bytes : {file, "\xEF\xBB\xBF" + file, file + "\n", ToUtf16File(file)}) {
      TLoaded loaded;
      ASSERT_NO_THROW(loaded.Load(bytes)) << line;
      EXPECT_EQ(loaded.Value(u"v"), expected) << line;
    }
  }
}

TEST(RegistryTextTest, AnsiFilesAreConverted) {
  TLoaded loaded;
  loaded.Load(
      "REGEDIT4\n[HKEY_CURRENT_USER\\K]\n@=\"\xE4\x80\x81\"\n\"\xDC\"=hex(2):25,80,00\n\"m\"=hex(7):61,00,00\n"
      "\"b\"=hex:80,61");
  EXPECT_EQ(loaded.Value(u""), Text(u"\u00E4\u20AC\u0081"));
  EXPECT_EQ(loaded.Value(u"\u00FC"), "2:%\0\xAC\x20\0\0"s);
  EXPECT_EQ(loaded.Value(u"m"), "7:a\0\0\0\0\0"s);
  EXPECT_EQ(loaded.Value(u"b"), "3:\x80\x61"s);
}

TEST(RegistryTextTest, KeysLandInTheNativeView) {
  TLoaded loaded;
  loaded.Load(std::string(Version5) +
              "[HKEY_LOCAL_MACHINE\\SOFTWARE\\a]b]\n[HKEY_LOCAL_MACHINE\\Software\\WOW6432NODE\\c\\]\n"
              "[hkcu\\d] ; comment\n[HKEY_USERS\\S-1-5-18\\e]\n[HKEY_CLASSES_ROOT\\.f]\n[HKEY_CURRENT_CONFIG\\g]\n"
              "[HKEY_CURRENT_USER\\Software\\Classes\\h]\n[-HKEY_CURRENT_USER\\missing]");
  for (const std::u16string_view path :
       {u"HKLM\\Software\\a]b", u"HKLM\\Software\\Wow6432Node\\c", u"HKEY_USERS\\S-1-5-21-1\\d", u"HKU\\S-1-5-18\\e",
        u"HKLM\\Software\\Classes\\.f", u"HKLM\\System\\CurrentControlSet\\Hardware Profiles\\Current\\g",
        u"HKU\\S-1-5-21-1_Classes\\h"}) {
    EXPECT_TRUE(loaded.Registry.HasKey(path)) << ToUtf8(path);
  }
}

TEST(RegistryTextTest, LastWriteTimes) {
  TLoaded loaded;
  loaded.Load(std::string(Version5) +
              "[HKEY_CURRENT_USER\\Dated]\n; last-write: 2012-08-09T10:11:12\n\"v\"=dword:1\n"
              "[HKEY_CURRENT_USER\\Dated\\Sub]\n\n; last-write: nonsense that is not directly below\n");
  const TFileTime expected = SystemTimeToFileTime({2012, 8, 0, 9, 10, 11, 12, 0});
  for (const auto& [path, time] : {std::pair(u"Dated", expected), std::pair(u"Dated\\Sub", Start)}) {
    TRegistryKey key;
    TRegistryKeyInfo info;
    ASSERT_EQ(loaded.Registry.OpenKey(ERegistryRoot::CurrentUser, path, KeyAccess::Read, key), WinError::Success);
    ASSERT_EQ(loaded.Registry.QueryKeyInfo(key, info), WinError::Success);
    EXPECT_EQ(info.LastWriteTime, time);
  }
}

TEST(RegistryTextTest, MalformedLinesAreNamed) {
  std::string deep;
  for (int i = 0; i < 600; ++i) deep += "\\k";
  const struct {
    std::string Body;  // from line 3 on
    std::size_t Line;
  } cases[] = {
      {"[HKEY_CURRENT_USER\\K", 3},
      {"[HKEY_CURRENT_USER\\K] x", 3},
      {"[HKEY_NOWHERE\\K]", 3},
      {"[]", 3},
      {"[\\HKEY_CURRENT_USER]", 3},
      {"[-HKEY_LOCAL_MACHINE]", 3},
      {"[HKEY_CURRENT_USER\\" + std::string(256, 'k') + "]", 3},
      {"\n\n[HKEY_CURRENT_USER" + deep + "]", 5},
      {"\"v\"=dword:1", 3},
      {"[-HKEY_CURRENT_USER\\K]\n\"v\"=dword:1", 4},
      {"[HKCU\\K]\n; last-write: 2012-02-30T00:00:00", 4},
      {"[HKCU\\K]\n; last-write: 2012-02-03", 4},
      {"[HKCU\\K]\n; last-write: 2012-02-03T00:00:00 x", 4},
      {"[HKCU\\K]\nnonsense", 4},
      {"[HKCU\\K]\n\"v\"", 4},
      {"[HKCU\\K]\n\"v\"=", 4},
      {"[HKCU\\K]\n\"v\"=number:1", 4},
      {"[HKCU\\K]\n\"v\"=-1", 4},
      {"[HKCU\\K]\n\"v\"=\"a\"b", 4},
      {"[HKCU\\K]\n\"v\"=\"\\n\"", 4},
      {"[HKCU\\K]\n\"v\"=\"\n\\", 5},
      {"[HKCU\\K]\n\"v\"=\"never\nclosed\n", 4},
      {"[HKCU\\K]\n\"v\"=dword:", 4},
      {"[HKCU\\K]\n\"v\"=dword:123456789", 4},
      {"[HKCU\\K]\n\"v\"=dword:12g", 4},
      {"[HKCU\\K]\n\"v\"=hex", 4},
      {"[HKCU\\K]\n\"v\"=hex(:00", 4},
      {"[HKCU\\K]\n\"v\"=hex(7:00", 4},
      {"[HKCU\\K]\n\"v\"=hex(100000000):00", 4},
      {"[HKCU\\K]\n\"v\"=hex:00,\\\n  zz", 5},
      {"[HKCU\\K]\n\"v\"=hex:00,\\", 4},
      {"[HKCU\\K]\n\"v\"=hex:00,\n", 4},
      {"[HKCU\\K]\n\"v\"=hex:,00", 4},
      {"[HKCU\\K]\n\"v\"=hex:0000", 4},
      {"[HKCU\\K]\n\"v\"=hex:00\\ x", 4},
      {"[HKCU\\K]\n\"" + std::string(16384, 'v') + "\"=\"x\ny\"", 4},
      {"[HKCU\\K]\n\"\xC3(\"=\"x\"", 4},
  };
  for (const auto& [body, line] : cases) {
    TLoaded loaded;
    try {
      loaded.Load(std::string(Version5) + body);
      ADD_FAILURE() << "was accepted: " << body.substr(0, 80);
    } catch (const EImageError& error) {
      EXPECT_EQ(error.Line(), line) << body.substr(0, 80) << ": " << error.what();
      EXPECT_EQ(std::string_view(error.what()).substr(0, 16), "some/file.reg:" + std::to_string(line) + ":");
    }
  }
  for (const std::string_view file : {""sv, "\xFF\xFE"sv, "\xFE\xFF\0W"sv, "\xFF\xFEW"sv, "Windows Registry"sv,
                                      "REGEDIT5\n"sv, "\n\nREGEDIT4\n"sv, "\0\0\0"sv}) {
    TLoaded loaded;
    EXPECT_THROW(loaded.Load(file), EImageError);
  }
}

// A file that is cut off or damaged anywhere loads or is refused; nothing else happens.
TEST(RegistryTextTest, HostileBytes) {
  const std::string file = std::string(Version5) +
                           "[HKEY_LOCAL_MACHINE\\Software\\\xC3\xA4]\r\n; last-write: 2012-08-09T10:11:12\r\n"
                           "@=\"a\\\\b\r\nc\"\r\n\"v\"=hex(7):61,00,\\\r\n  00,00\r\n\"d\"=dword:00000001\r\n"
                           "\"d\"=-\r\n[-HKEY_LOCAL_MACHINE\\Software\\X]\r\n";
  TLoaded loaded;
  const auto load = [&](const std::string& ABytes) {
    try {
      loaded.Load(ABytes);
    } catch (const EImageError&) {
    }
  };
  for (const std::string& whole : {file, ToUtf16File(file), "REGEDIT4" + file.substr(file.find('\r'))}) {
    for (std::size_t size = 0; size < whole.size(); ++size) {
      load(whole.substr(0, size));
      for (const char byte : {'\0', '\n', '"', '\\', '\xFF'}) {
        std::string damaged = whole;
        damaged[size] = byte;
        load(damaged);
      }
    }
  }
}

}  // namespace
}  // namespace varcolin
