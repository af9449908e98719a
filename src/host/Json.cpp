#include "host/Json.h"

#include <algorithm>
#include <nlohmann/json.hpp>

#include "host/Cells.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

using TJson = nlohmann::ordered_json;

/// A value in JSON.
struct TValueConverter {
  TJson operator()(const std::string& AText) const { return AText; }
  TJson operator()(std::int64_t ANumber) const { return ANumber; }
  TJson operator()(TLinkDate ADate) const {
    std::string text = FormatIsoDateTime(ADate.Value);
    return text.empty() ? TJson(nullptr) : TJson(std::move(text));
  }
};

struct TConverter {
  const TProductRecord& Record;

  TJson operator()(std::string TProductRecord::*AMember) const { return Record.*AMember; }
  TJson operator()(TDateTime TProductRecord::*AMember) const { return TValueConverter{}(TLinkDate{Record.*AMember}); }
  TJson operator()(std::int64_t TProductRecord::*AMember) const { return Record.*AMember; }
  TJson operator()(TUsedType TProductRecord::*AMember) const { return UsageName(Record.*AMember); }
  TJson operator()(TSoftwareRating TProductRecord::*AMember) const { return RatingName(Record.*AMember); }
  TJson operator()(TReleaseType TProductRecord::*AMember) const { return ReleaseTypeName(Record.*AMember); }
};

TJson ToJson(const TProductRecord& ARecord) {
  TJson result = TJson::object();
  for (const TRecordField& field : RecordFields(ARecord.Kind)) {
    result.emplace(field.JsonName, std::visit(TConverter{ARecord}, field.Member));
  }
  result.emplace("actions", ActionNames(ARecord.Actions));
  result.emplace("iconIndex", ARecord.IconIndex);
  return result;
}

/// Appends a part of the document with the steering characters escaped that JSON allows as they are. They can stand
/// only inside strings.
void AppendEscaped(std::string& AResult, std::string_view APart) {
  constexpr std::string_view digits = "0123456789abcdef";
  const auto isPlain = [](char ACharacter) { return ACharacter >= ' ' && ACharacter <= '~'; };
  while (!APart.empty()) {
    const auto plain = static_cast<std::size_t>(std::ranges::find_if_not(APart, isPlain) - APart.begin());
    AResult += APart.substr(0, plain);
    APart.remove_prefix(plain);
    if (APart.empty()) break;
    std::string character;
    const char32_t value = NextCharacter(APart);
    AppendUtf8(character, value);
    if (!IsSteering(value)) {
      AResult += character;
      continue;
    }
    for (const char16_t unit : ToUtf16(character)) {
      AResult += "\\u";
      for (int shift = 12; shift >= 0; shift -= 4) AResult += digits[(unit >> static_cast<unsigned>(shift)) & 0xFU];
    }
  }
}

}  // namespace

std::string FormatJson(EProductKind AKind, std::span<const TProductRecord> AProducts) {
  std::string document = AKind == EProductKind::Update ? "{\"updates\":[" : "{\"programs\":[";
  std::string_view separator = "\n";
  for (const TProductRecord& product : AProducts) {
    document += separator;
    AppendEscaped(document, ToJson(product).dump(-1, ' ', false, TJson::error_handler_t::replace));
    separator = ",\n";
  }
  document += AProducts.empty() ? "]}\n" : "\n]}\n";
  return document;
}

std::string FormatLinkJson(const TLinkRecord& ALink) {
  TJson sections = TJson::array();
  for (const TLinkSection& section : ALink.Sections) {
    TJson fields = TJson::object();
    for (const TLinkField& field : section.Fields) {
      fields.emplace(NameForJson(field.Name), std::visit(TValueConverter{}, field.Value));
    }
    sections.push_back({{"name", NameForJson(section.Name)}, {"fields", std::move(fields)}});
  }
  const TJson link = {{"pathName", ALink.PathName},         {"arguments", ALink.Arguments},
                      {"description", ALink.Description},   {"workingDirectory", ALink.WorkingDirectory},
                      {"iconLocation", ALink.IconLocation}, {"iconIndex", ALink.IconIndex},
                      {"showCmd", ALink.ShowCmd},           {"hotKey", ALink.HotKey},
                      {"sections", std::move(sections)}};
  std::string document;
  AppendEscaped(document, link.dump(-1, ' ', false, TJson::error_handler_t::replace));
  return document + '\n';
}

}  // namespace varcolin::host
