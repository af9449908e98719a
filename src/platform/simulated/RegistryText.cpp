#include "platform/simulated/RegistryText.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "platform/simulated/AnsiText.h"
#include "platform/simulated/SimulatedRegistry.h"
#include "support/uDateTime.h"
#include "support/uText.h"

namespace varcolin {

namespace {

enum class EEncoding { Utf16, Utf8, Ansi };

bool StartsWith(std::span<const std::byte> AData, std::string_view APart) {
  return AData.size() >= APart.size() && std::memcmp(AData.data(), APart.data(), APart.size()) == 0;
}

// Hands out the lines of a file, decoded; the text of a line lives until the next one is read.
class TLineReader {
 public:
  TLineReader(std::span<const std::byte> AData, std::string_view AFileName) : FData(AData), FFileName(AFileName) {
    if (StartsWith(FData, "\xFF\xFE")) {
      FEncoding = EEncoding::Utf16;
      FPosition = 2;
      if (FData.size() % 2 != 0) Fail(u"the file ends within a character", 0);
    } else if (StartsWith(FData, "\xFE\xFF")) {
      Fail(u"big-endian text is not supported", 0);
    } else if (StartsWith(FData, "\xEF\xBB\xBF")) {
      FPosition = 3;
    } else if (StartsWith(FData, "REGEDIT4")) {
      FEncoding = EEncoding::Ansi;
    }
  }

  [[nodiscard]] bool IsAnsi() const { return FEncoding == EEncoding::Ansi; }
  [[nodiscard]] std::size_t LineNumber() const { return FLine; }

  // False at the end of the file; the text is then empty.
  bool Next() {
    FText.clear();
    FLineEnd = {};
    if (FPosition >= FData.size()) return false;
    ++FLine;
    const std::size_t unit = FEncoding == EEncoding::Utf16 ? 2 : 1;
    const std::size_t end = FindLineEnd(unit);
    Decode(FData.subspan(FPosition, end - FPosition));
    FPosition = std::min(end + unit, FData.size());
    if (end == FData.size()) return true;
    FLineEnd = u"\n";
    if (FText.ends_with(u'\r')) {
      FText.pop_back();
      FLineEnd = u"\r\n";
    }
    return true;
  }
  [[nodiscard]] std::u16string_view Text() const { return FText; }
  // How the line ended in the file: a string value may go on behind it.
  [[nodiscard]] std::u16string_view LineEnd() const { return FLineEnd; }

  [[noreturn]] void Fail(std::u16string_view AMessage) const { Fail(AMessage, FLine); }
  [[noreturn]] void Fail(std::u16string_view AMessage, std::size_t ALine) const {
    throw EImageError(FFileName, ALine, AMessage);
  }

 private:
  [[nodiscard]] std::size_t FindLineEnd(std::size_t AUnit) const {
    std::size_t from = FPosition;
    while (from < FData.size()) {
      const void* found = std::memchr(FData.data() + from, '\n', FData.size() - from);
      if (found == nullptr) break;
      const auto position = static_cast<std::size_t>(static_cast<const std::byte*>(found) - FData.data());
      if (AUnit == 1 || (position % 2 == 0 && FData[position + 1] == std::byte{0})) return position;
      from = position + 1;
    }
    return FData.size();
  }

  void Decode(std::span<const std::byte> ALine) {
    switch (FEncoding) {
      case EEncoding::Utf16:
        FText.resize(ALine.size() / 2);
        if (!FText.empty()) std::memcpy(FText.data(), ALine.data(), FText.size() * 2);
        break;
      case EEncoding::Ansi:
        FText.resize(ALine.size());
        std::transform(ALine.begin(), ALine.end(), FText.begin(), FromAnsi);
        break;
      case EEncoding::Utf8:
        if (std::all_of(ALine.begin(), ALine.end(), [](std::byte AByte) { return AByte < std::byte{0x80}; })) {
          FText.resize(ALine.size());
          std::transform(ALine.begin(), ALine.end(), FText.begin(), FromAnsi);
          break;
        }
        const std::string_view text(reinterpret_cast<const char*>(ALine.data()), ALine.size());
        FText = FromUtf8(text);
        if (ToUtf8(FText) != text) Fail(u"the text is not valid UTF-8");
        break;
    }
  }

  std::span<const std::byte> FData;
  std::string_view FFileName;
  EEncoding FEncoding = EEncoding::Utf8;
  std::size_t FPosition = 0;
  std::size_t FLine = 0;
  std::u16string FText;
  std::u16string_view FLineEnd;
};

int HexDigit(char16_t AUnit) {
  if (AUnit >= u'0' && AUnit <= u'9') return AUnit - u'0';
  if (AUnit >= u'a' && AUnit <= u'f') return AUnit - u'a' + 10;
  if (AUnit >= u'A' && AUnit <= u'F') return AUnit - u'A' + 10;
  return -1;
}

bool IsBlank(char16_t AUnit) { return AUnit == u' ' || AUnit == u'\t'; }

class TParser {
 public:
  TParser(std::span<const std::byte> AData, std::string_view AFileName, TSimulatedRegistry& ARegistry)
      : FLines(AData, AFileName), FRegistry(ARegistry) {}

  void Run() {
    ReadFileHeader();
    while (FLines.Next()) {
      const bool belowHeader = std::exchange(FBelowHeader, false);
      FRest = FLines.Text();
      SkipBlanks();
      if (FRest.empty()) continue;
      if (FRest.front() == u';') {
        if (belowHeader) ReadLastWriteTime();
      } else if (FRest.front() == u'[') {
        ReadKeyHeader();
      } else if (FRest.front() == u'"' || FRest.front() == u'@') {
        ReadValue();
      } else {
        FLines.Fail(u"neither a key nor a value");
      }
    }
  }

 private:
  [[nodiscard]] bool Take(std::u16string_view AText) {
    if (!FRest.starts_with(AText)) return false;
    FRest.remove_prefix(AText.size());
    return true;
  }
  [[nodiscard]] bool TakeWord(std::u16string_view AWord) {
    if (!StartsText(AWord, FRest)) return false;
    FRest.remove_prefix(AWord.size());
    return true;
  }
  void SkipBlanks() {
    while (!FRest.empty() && IsBlank(FRest.front())) FRest.remove_prefix(1);
  }
  void ExpectLineEnd() {
    SkipBlanks();
    if (!FRest.empty() && FRest.front() != u';') FLines.Fail(u"unexpected text at the end of the line");
  }

  void ReadFileHeader() {
    if (!FLines.Next()) FLines.Fail(u"the file is empty", 0);
    const std::u16string_view text = FLines.Text();
    const std::u16string_view header = text.substr(0, text.find_last_not_of(u" \t") + 1);
    if (header != (FLines.IsAnsi() ? u"REGEDIT4" : u"Windows Registry Editor Version 5.00")) {
      FLines.Fail(u"not an export of the registry editor");
    }
  }

  void ReadKeyHeader() {
    const std::size_t end = FRest.rfind(u']');
    if (end == std::u16string_view::npos) FLines.Fail(u"a key without a closing bracket");
    std::u16string_view path = FRest.substr(1, end - 1);
    FRest.remove_prefix(end + 1);
    ExpectLineEnd();
    const bool removes = path.starts_with(u'-');
    if (removes) path.remove_prefix(1);
    FKey.reset();
    Guarded([&] {
      if (removes) {
        FRegistry.RemoveTree(path);
      } else {
        FKey = FRegistry.LoadKey(path);
      }
    });
    FBelowHeader = !removes;
  }

  // Paths and names that the registry cannot hold are errors of the current line.
  template <class TAction>
  void Guarded(TAction AAction) {
    try {
      AAction();
    } catch (const Exception& error) {
      FLines.Fail(error.Message(), FFirstLine != 0 ? FFirstLine : FLines.LineNumber());
    }
  }

  void ReadLastWriteTime() {
    FRest.remove_prefix(1);
    SkipBlanks();
    if (!Take(u"last-write:")) return;
    SkipBlanks();
    constexpr std::u16string_view Pattern = u"0000-00-00T00:00:00";
    const std::u16string_view text = FRest.substr(0, Pattern.size());
    bool fits = text.size() == Pattern.size();
    for (std::size_t i = 0; fits && i < text.size(); ++i) {
      fits = Pattern[i] == u'0' ? text[i] >= u'0' && text[i] <= u'9' : text[i] == Pattern[i];
    }
    if (!fits) FLines.Fail(u"a last write time has the form 2012-08-09T10:11:12");
    const auto number = [text](std::size_t AFrom, std::size_t ACount) {
      unsigned value = 0;
      for (const char16_t digit : text.substr(AFrom, ACount)) value = value * 10 + (digit - u'0');
      return static_cast<std::uint16_t>(value);
    };
    TSystemTime time;
    time.Year = number(0, 4);
    time.Month = number(5, 2);
    time.Day = number(8, 2);
    time.Hour = number(11, 2);
    time.Minute = number(14, 2);
    time.Second = number(17, 2);
    const TFileTime fileTime = SystemTimeToFileTime(time);
    if (fileTime == TFileTime{}) FLines.Fail(u"there is no such time");
    FRest.remove_prefix(Pattern.size());
    SkipBlanks();
    if (!FRest.empty()) FLines.Fail(u"unexpected text at the end of the line");
    FRegistry.SetLastWriteTime(*FKey, fileTime);
  }

  // Reads a quoted text, of which the opening quote is the next unit. It may run over several lines.
  void ReadQuoted(std::u16string& AText) {
    AText.clear();
    FRest.remove_prefix(1);
    for (;;) {
      const std::size_t plain = std::min(FRest.find_first_of(u"\"\\"), FRest.size());
      AText.append(FRest.substr(0, plain));
      FRest.remove_prefix(plain);
      if (FRest.empty()) {
        AText.append(FLines.LineEnd());
        if (!FLines.Next()) FLines.Fail(u"a text without a closing quote", FFirstLine);
        FRest = FLines.Text();
      } else if (Take(u"\"")) {
        return;
      } else if (Take(u"\\\\")) {
        AText += u'\\';
      } else if (Take(u"\\\"")) {
        AText += u'"';
      } else {
        FLines.Fail(u"a backslash in a text is followed by neither a backslash nor a quote");
      }
    }
  }

  void ReadValue() {
    FFirstLine = FLines.LineNumber();
    if (FRest.front() == u'@') {
      FRest.remove_prefix(1);
      FName.clear();
    } else {
      ReadQuoted(FName);
    }
    SkipBlanks();
    if (!Take(u"=")) FLines.Fail(u"a value without an equals sign");
    SkipBlanks();
    if (!FKey) FLines.Fail(u"a value that belongs to no key", FFirstLine);
    if (Take(u"-")) {
      ExpectLineEnd();
      FRegistry.UnloadValue(*FKey, FName);
    } else if (FRest.starts_with(u'"')) {
      ReadQuoted(FText);
      ExpectLineEnd();
      Load(RegType::String, std::as_bytes(std::span(FText.c_str(), FText.size() + 1)));
    } else if (TakeWord(u"dword:")) {
      SkipBlanks();
      const std::uint32_t value = ReadHexNumber();
      ExpectLineEnd();
      const std::byte bytes[] = {std::byte(value), std::byte(value >> 8), std::byte(value >> 16),
                                 std::byte(value >> 24)};
      Load(RegType::Dword, bytes);
    } else if (TakeWord(u"hex")) {
      std::uint32_t type = RegType::Binary;
      if (Take(u"(")) {
        type = ReadHexNumber();
        if (!Take(u")")) FLines.Fail(u"a type without a closing parenthesis");
      }
      if (!Take(u":")) FLines.Fail(u"a value of an unknown form");
      ReadHexBytes();
      LoadBytes(type);
    } else {
      FLines.Fail(u"a value of an unknown form");
    }
    FFirstLine = 0;
  }

  void Load(std::uint32_t AType, std::span<const std::byte> AData) {
    Guarded([&] { FRegistry.LoadValue(*FKey, FName, AType, AData); });
  }

  void LoadBytes(std::uint32_t AType) {
    const bool isText = AType == RegType::String || AType == RegType::ExpandString || AType == RegType::MultiString;
    if (!FLines.IsAnsi() || !isText) {
      Load(AType, FBytes);
      return;
    }
    FText.resize(FBytes.size());
    std::transform(FBytes.begin(), FBytes.end(), FText.begin(), FromAnsi);
    Load(AType, std::as_bytes(std::span(FText)));
  }

  std::uint32_t ReadHexNumber() {
    std::uint32_t value = 0;
    std::size_t count = 0;
    for (; count < FRest.size() && HexDigit(FRest[count]) >= 0; ++count) {
      if (count == 8) FLines.Fail(u"a number of more than eight hexadecimal digits");
      value = value * 16 + static_cast<std::uint32_t>(HexDigit(FRest[count]));
    }
    if (count == 0) FLines.Fail(u"a hexadecimal number is missing");
    FRest.remove_prefix(count);
    return value;
  }

  // Bytes of one or two digits with commas between them; a backslash at the end of a line continues in the next.
  void ReadHexBytes() {
    FBytes.clear();
    bool wanted = false;  // a comma has announced another byte
    for (;;) {
      SkipBlanks();
      if (Take(u"\\")) {
        SkipBlanks();
        if (!FRest.empty()) FLines.Fail(u"text behind the backslash that continues a line");
        if (!FLines.Next()) FLines.Fail(u"the file ends where a line should continue");
        FRest = FLines.Text();
        continue;
      }
      if (FRest.empty() || FRest.front() == u';') {
        if (wanted) FLines.Fail(u"a byte is missing behind a comma");
        return;
      }
      if (!FBytes.empty() && !wanted) FLines.Fail(u"bytes without a comma between them");
      const int first = HexDigit(FRest.front());
      if (first < 0) FLines.Fail(u"not a hexadecimal byte");
      const int second = FRest.size() > 1 ? HexDigit(FRest[1]) : -1;
      FBytes.push_back(static_cast<std::byte>(second < 0 ? first : first * 16 + second));
      FRest.remove_prefix(second < 0 ? 1 : 2);
      SkipBlanks();
      wanted = Take(u",");
    }
  }

  TLineReader FLines;
  TSimulatedRegistry& FRegistry;
  std::u16string_view FRest;       // what is left of the current line
  std::optional<TDirectKey> FKey;  // that the values belong to
  bool FBelowHeader = false;
  std::size_t FFirstLine = 0;  // of the value that is being read; 0 outside of one
  std::u16string FName;
  std::u16string FText;
  std::vector<std::byte> FBytes;
};

}  // namespace

void LoadRegistryText(std::span<const std::byte> AData, std::string_view AFileName, TSimulatedRegistry& ARegistry) {
  TParser(AData, AFileName, ARegistry).Run();
}

}  // namespace varcolin
