#include "host/LinkRecord.h"

#include <algorithm>
#include <array>
#include <string_view>

#include "host/Cells.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

constexpr std::size_t TargetLabelCells = 16;
constexpr std::size_t FieldLabelCells = 28;

template <class TGet>
std::string ReadText(TGet AGet) {
  TOleText text;
  AGet(text.Receive());
  return ToUtf8(text.View());
}

TLinkField ReadField(IShellLinkFile& ALink, std::int32_t ASection, std::int32_t AField) {
  TLinkField field;
  field.Name = ReadText([&](TOleString* AResult) { ALink.GetFieldName(ASection, AField, AResult); });
  TVariantValue value;
  ALink.GetFieldValue(ASection, AField, value.Receive());
  const TOleVariant& variant = value.Value();
  if (variant.Type == EVariantType::String) {
    field.Value = ToUtf8({variant.String, OleStringLength(variant.String)});
  } else if (variant.Type == EVariantType::Int64) {
    field.Value = variant.Int64;
  } else if (variant.Type == EVariantType::Date) {
    field.Value = TLinkDate{variant.Date};
  }
  return field;
}

bool IsUpper(char ACharacter) { return ACharacter >= 'A' && ACharacter <= 'Z'; }
char Lower(char ACharacter) { return IsUpper(ACharacter) ? static_cast<char>(ACharacter - 'A' + 'a') : ACharacter; }

/// Whether a word begins at a position of a CamelCase name: a capital after a small letter, or the last of several that
/// a small letter follows.
bool BeginsWord(std::string_view AName, std::size_t AAt) {
  if (AAt == 0) return true;
  if (!IsUpper(AName[AAt])) return false;
  return !IsUpper(AName[AAt - 1]) || (AAt + 1 < AName.size() && !IsUpper(AName[AAt + 1]));
}

std::string Hexadecimal(std::int64_t ANumber) {
  std::string digits;
  for (auto rest = static_cast<std::uint64_t>(ANumber); rest != 0 || digits.empty(); rest >>= 4U) {
    digits.insert(digits.begin(), "0123456789ABCDEF"[rest & 0xFU]);
  }
  return "0x" + digits;
}

struct TDescriber {
  bool IsHexadecimal;

  std::string operator()(const std::string& AText) const { return AText; }
  std::string operator()(std::int64_t ANumber) const {
    return IsHexadecimal ? Hexadecimal(ANumber) : std::to_string(ANumber);
  }
  std::string operator()(TLinkDate ADate) const {
    std::string text = FormatIsoDateTime(ADate.Value);
    std::ranges::replace(text, 'T', ' ');
    return text;
  }
};

std::string DescribeValue(const TLinkField& AField) {
  constexpr std::array<std::string_view, 7> bits{"LinkFlags",         "FileAttributes",      "HotKey",
                                                 "DriveSerialNumber", "NetworkProviderType", "Signature",
                                                 "FillAttributes"};
  return std::visit(TDescriber{std::ranges::find(bits, AField.Name) != bits.end()}, AField.Value);
}

}  // namespace

TLinkRecord ReadLinkRecord(IShellLinkFile& ALink) {
  TLinkRecord record;
  record.PathName = ReadText([&](TOleString* AResult) { ALink.GetPathName(AResult); });
  record.Arguments = ReadText([&](TOleString* AResult) { ALink.GetArguments(AResult); });
  record.Description = ReadText([&](TOleString* AResult) { ALink.GetDescription(AResult); });
  record.WorkingDirectory = ReadText([&](TOleString* AResult) { ALink.GetWorkingDirectory(AResult); });
  record.IconLocation = ReadText([&](TOleString* AResult) { ALink.GetIconLocation(AResult); });
  record.IconIndex = ALink.GetIconIndex();
  record.ShowCmd = ALink.GetShowCmd();
  record.HotKey = ALink.GetHotKey();
  const std::int32_t sections = ALink.GetSectionCount();
  for (std::int32_t section = 0; section < sections; ++section) {
    TLinkSection& added = record.Sections.emplace_back();
    added.Name = ReadText([&](TOleString* AResult) { ALink.GetSectionName(section, AResult); });
    const std::int32_t fields = ALink.GetFieldCount(section);
    for (std::int32_t field = 0; field < fields; ++field) added.Fields.push_back(ReadField(ALink, section, field));
  }
  return record;
}

std::string FormatLink(const TLinkRecord& ALink, std::size_t AWidth) {
  std::string text;
  const auto add = [&](std::string_view ALabel, const std::string& AValue) {
    AppendProperty(text, ALabel, AValue, TargetLabelCells, AWidth);
  };
  add("Target", ALink.PathName);
  add("Arguments", ALink.Arguments);
  add("Description", ALink.Description);
  add("Working folder", ALink.WorkingDirectory);
  add("Icon", ALink.IconLocation);
  add("Icon index", std::to_string(ALink.IconIndex));
  add("Show command", std::to_string(ALink.ShowCmd));
  add("Hot key", Hexadecimal(ALink.HotKey));
  for (const TLinkSection& section : ALink.Sections) {
    text += '\n' + NameForPeople(section.Name) + '\n';
    for (const TLinkField& field : section.Fields) {
      AppendProperty(text, "  " + NameForPeople(field.Name), DescribeValue(field), FieldLabelCells, AWidth);
    }
  }
  return text;
}

std::string NameForPeople(const std::string& AName) {
  std::string words;
  for (std::size_t at = 0; at < AName.size(); ++at) {
    const bool begins = BeginsWord(AName, at);
    if (begins && at > 0) words += ' ';
    // a capital stays at the name's beginning and in a word of capitals
    const bool isAlone = at + 1 == AName.size() || IsUpper(AName[at + 1]) || !begins;
    words += at == 0 || isAlone ? AName[at] : Lower(AName[at]);
  }
  return words;
}

std::string NameForJson(const std::string& AName) {
  std::string name = AName;
  for (std::size_t at = 0; at < name.size() && (at == 0 || !BeginsWord(AName, at)); ++at) name[at] = Lower(name[at]);
  return name;
}

}  // namespace varcolin::host
