#include "benchmarks/UninstallKeys.h"

#include <array>
#include <bit>
#include <map>
#include <span>
#include <utility>

#include "support/uExceptions.h"
#include "support/uText.h"

namespace varcolin::benchmarks {

namespace {

constexpr std::array<std::u16string_view, 12> Makers = {
    u"Alderbrook Software",     u"Finch & Thrush Ltd", u"Harrowgate Systems GmbH",
    u"Ivy Lane Studio",         u"Lindqvist Data AB",  u"Marlpit",
    u"Northmoor Imaging, Inc.", u"Oakum Interactive",  u"Pellworth Tools",
    u"Saltmarsh Labs",          u"Tern Island Works",  u"Weatherby Audio S.A."};
constexpr std::array<std::u16string_view, 16> Products = {
    u"Almanac",       u"Barometer",  u"Colour Mixer", u"Disk Tidy", u"Field Notes", u"Ledger",
    u"Map Room",      u"Metronome",  u"Page Set",     u"Photo Box", u"Post Office", u"Scan Shelf",
    u"Sound Archive", u"Time Table", u"Typesetter",   u"Word List"};

/// Digits and letters that look random and follow from the seed alone.
class TRandom {
 public:
  explicit TRandom(std::uint64_t ASeed) noexcept : FState(ASeed * 0x9E3779B97F4A7C15U + 1) {}

  [[nodiscard]] std::uint32_t Next() noexcept {
    FState = FState * 6364136223846793005U + 1442695040888963407U;
    return static_cast<std::uint32_t>(FState >> 33U);
  }
  [[nodiscard]] std::u16string Hex(std::size_t ADigits) {
    std::u16string text;
    for (; ADigits > 0; --ADigits) text += u"0123456789ABCDEF"[Next() % 16];
    return text;
  }
  [[nodiscard]] std::u16string Guid() {
    std::u16string guid = u"{" + Hex(8);
    for (const int group : {4, 4, 4, 12}) guid += u'-' + Hex(static_cast<std::size_t>(group));
    return guid + u'}';
  }

 private:
  std::uint64_t FState;
};

std::u16string Decimal(std::uint32_t ANumber) { return FromUtf8(std::to_string(ANumber)); }

std::u16string TwoDigits(std::uint32_t ANumber) { return (ANumber < 10 ? u"0" : u"") + Decimal(ANumber); }

/// Fills a key with values.
class TKeyWriter {
 public:
  explicit TKeyWriter(TUninstallKey& AKey) : FKey(AKey) {}

  void Add(std::u16string_view AName, std::u16string AText, std::uint32_t AType = RegType::String) {
    FKey.Values.push_back({AName, AType, std::move(AText)});
  }
  void Add(std::u16string_view AName, std::uint32_t ANumber) {
    FKey.Values.push_back({AName, RegType::Dword, {}, ANumber});
  }

 private:
  TUninstallKey& FKey;
};

std::span<const std::byte> BytesOf(const TUninstallValue& AValue) {
  static_assert(std::endian::native == std::endian::little);
  if (AValue.Type == RegType::Dword) return std::as_bytes(std::span(&AValue.Number, 1));
  return std::as_bytes(std::span(AValue.Text.c_str(), AValue.Text.size() + 1));
}

void AppendQuoted(std::u16string& AResult, std::u16string_view AText) {
  AResult += u'"';
  for (const char16_t unit : AText) {
    if (unit == u'"' || unit == u'\\') AResult += u'\\';
    AResult += unit;
  }
  AResult += u'"';
}

/// Where the key lies in the native view.
std::u16string NativePathOf(const TUninstallKey& AKey) {
  std::u16string path =
      AKey.Root == ERegistryRoot::CurrentUser ? u"HKEY_CURRENT_USER\\Software" : u"HKEY_LOCAL_MACHINE\\SOFTWARE";
  if (AKey.View == KeyAccess::Wow64_32Key) path += u"\\Wow6432Node";
  return path.append(UninstallPath.substr(UninstallPath.find(u'\\'))).append(u"\\").append(AKey.Name);
}

/// Bytes in hexadecimal, in lines of the registry editor's length.
void AppendBytes(std::u16string& AResult, std::span<const std::byte> ABytes) {
  constexpr std::size_t BytesPerLine = 25;
  constexpr std::u16string_view digits = u"0123456789abcdef";
  for (std::size_t i = 0; i < ABytes.size(); ++i) {
    if (i != 0) AResult += i % BytesPerLine == 0 ? u",\\\r\n  " : u",";
    AResult += digits[std::to_integer<std::size_t>(ABytes[i] >> 4)];
    AResult += digits[std::to_integer<std::size_t>(ABytes[i] & std::byte{15})];
  }
}

}  // namespace

TUninstallKey TUninstallKeys::At(std::size_t AIndex) const {
  TRandom random(AIndex);
  const bool isComponent = AIndex >= FPrograms;
  const bool byInstaller = isComponent || AIndex % 20 < 7;
  const std::size_t place = AIndex * 7 % 20;
  const std::u16string maker(Makers[random.Next() % Makers.size()]);
  const std::u16string product = maker.substr(0, maker.find(u' ')) + u' ' +
                                 std::u16string(Products[random.Next() % Products.size()]) + u' ' +
                                 Decimal(static_cast<std::uint32_t>(AIndex));
  TUninstallKey key{ERegistryRoot::LocalMachine,
                    place < 8 ? KeyAccess::Wow64_64Key : KeyAccess::Wow64_32Key,
                    byInstaller ? random.Guid() : product + u"_is1",
                    {}};
  std::u16string folder = (place < 8 ? u"C:\\Program Files\\" : u"C:\\Program Files (x86)\\") + maker + u'\\' + product;
  if (place >= 17) {
    key.Root = ERegistryRoot::CurrentUser;
    key.View = KeyAccess::Wow64_64Key;
    folder = u"C:\\Users\\User\\AppData\\Local\\Programs\\" + product;
  }
  TKeyWriter values(key);
  const std::uint32_t major = random.Next() % 20;
  const std::uint32_t minor = random.Next() % 10;
  values.Add(u"DisplayName", product);
  values.Add(u"DisplayVersion", Decimal(major) + u'.' + Decimal(minor) + u'.' + Decimal(random.Next() % 5000));
  values.Add(u"Publisher", maker);
  values.Add(u"InstallDate",
             Decimal(2008 + random.Next() % 8) + TwoDigits(1 + random.Next() % 12) + TwoDigits(1 + random.Next() % 28));
  values.Add(u"InstallLocation", folder + u'\\');
  values.Add(u"EstimatedSize", random.Next() % 400'000 + 100);
  values.Add(u"URLInfoAbout", u"http://www.example.com/" + random.Hex(6) + u"/about");
  values.Add(u"HelpLink", u"http://www.example.com/" + random.Hex(6) + u"/support/index.html");
  if (byInstaller) {
    values.Add(u"UninstallString", u"MsiExec.exe /X" + key.Name, RegType::ExpandString);
    values.Add(u"ModifyPath", u"MsiExec.exe /I" + key.Name, RegType::ExpandString);
    values.Add(u"WindowsInstaller", 1);
    values.Add(u"Language", random.Next() % 3 == 0 ? 1031 : 1033);
    values.Add(u"VersionMajor", major);
    if (isComponent) values.Add(u"SystemComponent", 1);
  } else {
    values.Add(u"UninstallString", u'"' + folder + u"\\unins000.exe\"");
    if (AIndex % 3 != 0) values.Add(u"QuietUninstallString", u'"' + folder + u"\\unins000.exe\" /SILENT");
    values.Add(u"DisplayIcon", folder + u"\\" + product + u".exe,0");
    values.Add(u"NoModify", 1);
    values.Add(u"NoRepair", 1);
  }
  return key;
}

void WriteUninstallKeys(IWritableRegistry& ARegistry, const TUninstallKeys& AKeys) {
  const auto check = [](TWinError ACode, const std::u16string& AWhat) {
    if (ACode != WinError::Success) throw EOSError(ACode, AWhat);
  };
  for (std::size_t index = 0; index < AKeys.Count(); ++index) {
    const TUninstallKey key = AKeys.At(index);
    const std::u16string path = std::u16string(UninstallPath) + u'\\' + key.Name;
    TRegistryKey handle;
    bool created = false;
    check(ARegistry.CreateKeyPath(key.Root, path, KeyAccess::Write | key.View, handle, created), path);
    for (const TUninstallValue& value : key.Values) {
      const auto bytes = BytesOf(value);
      check(ARegistry.SetValue(handle, value.Name, value.Type, bytes.data(), bytes.size()), path);
    }
  }
}

std::u16string ExportOf(const TUninstallKeys& AKeys) {
  // a registry has its keys in the order of their names, whatever came first
  std::map<std::u16string, TUninstallKey> keys;
  for (std::size_t index = 0; index < AKeys.Count(); ++index) {
    TUninstallKey key = AKeys.At(index);
    std::u16string path = NativePathOf(key);
    keys.emplace(std::move(path), std::move(key));
  }
  std::u16string text = u"\xFEFFWindows Registry Editor Version 5.00\r\n";
  for (const auto& [path, key] : keys) {
    text.append(u"\r\n[").append(path).append(u"]\r\n");
    for (const TUninstallValue& value : key.Values) {
      AppendQuoted(text, value.Name);
      text += u'=';
      if (value.Type == RegType::String) {
        AppendQuoted(text, value.Text);
      } else if (value.Type == RegType::Dword) {
        char number[16];
        std::snprintf(number, sizeof number, "dword:%08x", static_cast<unsigned>(value.Number));
        text += FromUtf8(number);
      } else {
        text += u"hex(" + Decimal(value.Type) + u"):";
        AppendBytes(text, BytesOf(value));
      }
      text += u"\r\n";
    }
  }
  return text;
}

}  // namespace varcolin::benchmarks
