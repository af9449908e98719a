#include "host/ProductRecord.h"

#include <array>
#include <utility>

#include "host/Text.h"

namespace varcolin::host {

namespace {

using TRecord = TProductRecord;

constexpr std::array CommonFields{
    TRecordField{TPropertyID::DisplayName, "displayName", "Name", &TRecord::DisplayName},
    TRecordField{TPropertyID::DisplayVersion, "version", "Version", &TRecord::Version},
    TRecordField{TPropertyID::Publisher, "publisher", "Publisher", &TRecord::Publisher},
    TRecordField{TPropertyID::InstallLocation, "installLocation", "Installed in", &TRecord::InstallLocation},
    TRecordField{TPropertyID::InstallSource, "installSource", "Installed from", &TRecord::InstallSource},
    TRecordField{TPropertyID::InstallDate, "installDate", "Installed on", &TRecord::InstallDate},
    TRecordField{TPropertyID::Contact, "contact", "Contact", &TRecord::Contact},
    TRecordField{TPropertyID::Comments, "comments", "Comments", &TRecord::Comments},
    TRecordField{TPropertyID::ReadMeLink, "readMeLink", "Read me", &TRecord::ReadMeLink},
    TRecordField{TPropertyID::HelpLink, "helpLink", "Help", &TRecord::HelpLink},
    TRecordField{TPropertyID::SupportLink, "supportLink", "Support", &TRecord::SupportLink},
    TRecordField{TPropertyID::SupportTelephone, "supportTelephone", "Telephone", &TRecord::SupportTelephone},
    TRecordField{TPropertyID::UpdateInfoLink, "updateInfoLink", "Updates", &TRecord::UpdateInfoLink},
    TRecordField{TPropertyID::Language, "language", "Language", &TRecord::Language},
    TRecordField{TPropertyID::EstimatedSize, "estimatedSize", "Size", &TRecord::EstimatedSize},
};
constexpr std::array ProgramFields{
    TRecordField{TPropertyID::RegisteredOwner, "registeredOwner", "Registered to", &TRecord::RegisteredOwner},
    TRecordField{TPropertyID::RegisteredCompany, "registeredCompany", "Organisation", &TRecord::RegisteredCompany},
    TRecordField{TPropertyID::Guid, "guid", "GUID", &TRecord::Guid},
    TRecordField{TPropertyID::ProductID, "productId", "Product ID", &TRecord::ProductId},
    TRecordField{TPropertyID::LastUsedDate, "lastUsedDate", "Last used", &TRecord::LastUsedDate},
    TRecordField{TPropertyID::Usage, "usage", "Used", &TRecord::Usage},
    TRecordField{TPropertyID::Rating, "rating", "Rating", &TRecord::Rating},
};
constexpr std::array UpdateFields{
    TRecordField{TPropertyID::UpdateID, "updateId", "Update ID", &TRecord::UpdateId},
    TRecordField{TPropertyID::ReleaseType, "releaseType", "Type", &TRecord::ReleaseType},
    TRecordField{TPropertyID::ParentDisplayName, "parentDisplayName", "Belongs to", &TRecord::ParentDisplayName},
};

template <std::size_t First, std::size_t Second>
constexpr auto Join(const std::array<TRecordField, First>& AFirst, const std::array<TRecordField, Second>& ASecond) {
  return [&]<std::size_t... I, std::size_t... J>(std::index_sequence<I...>, std::index_sequence<J...>) {
    return std::array{AFirst[I]..., ASecond[J]...};
  }
  (std::make_index_sequence<First>(), std::make_index_sequence<Second>());
}

constexpr auto FieldsOfPrograms = Join(CommonFields, ProgramFields);
constexpr auto FieldsOfUpdates = Join(CommonFields, UpdateFields);

/// A release type for programs and for people.
struct TReleaseTypeWords {
  std::string_view Name;
  std::string_view Text;
};

constexpr std::array<TReleaseTypeWords, 8> ReleaseTypes{{{"none", ""},
                                                         {"softwareUpdate", "Software update"},
                                                         {"update", "Update"},
                                                         {"updateRollup", "Update rollup"},
                                                         {"servicePack", "Service pack"},
                                                         {"criticalUpdate", "Critical update"},
                                                         {"securityUpdate", "Security update"},
                                                         {"hotfix", "Hotfix"}}};

const TReleaseTypeWords& WordsOf(TReleaseType AType) noexcept {
  const auto number = static_cast<std::size_t>(AType);
  return ReleaseTypes[number < ReleaseTypes.size() ? number : 0];
}

constexpr std::array<std::string_view, 6> ActionNameTable{"uninstall", "uninstallQuiet", "modify",
                                                          "repair",    "modifyRemove",   "removeFromRegistry"};

/// What a variant holds as a number; false when it holds none.
bool ReadNumber(const TOleVariant& AValue, std::int64_t& AResult) {
  if (AValue.Type == EVariantType::Int32) {
    AResult = AValue.Int32;
  } else if (AValue.Type == EVariantType::Int64) {
    AResult = AValue.Int64;
  } else {
    return false;
  }
  return true;
}

/// Takes a variant's value over; a variant of another kind leaves the member's default.
struct TTaker {
  const TOleVariant& Value;
  TRecord& Record;

  void operator()(std::string TRecord::*AMember) const {
    if (Value.Type != EVariantType::String) return;
    Record.*AMember = ToUtf8({Value.String, OleStringLength(Value.String)});
  }
  void operator()(TDateTime TRecord::*AMember) const {
    if (Value.Type == EVariantType::Date) Record.*AMember = Value.Date;
  }
  void operator()(std::int64_t TRecord::*AMember) const { ReadNumber(Value, Record.*AMember); }
  void operator()(TUsedType TRecord::*AMember) const {
    std::int64_t number = 0;
    if (ReadNumber(Value, number)) Record.*AMember = static_cast<TUsedType>(number);
  }
  void operator()(TSoftwareRating TRecord::*AMember) const {
    std::int64_t number = 0;
    if (ReadNumber(Value, number)) Record.*AMember = static_cast<TSoftwareRating>(number);
  }
  void operator()(TReleaseType TRecord::*AMember) const {
    std::int64_t number = 0;
    if (ReadNumber(Value, number)) Record.*AMember = static_cast<TReleaseType>(number);
  }
};

struct TDescriber {
  const TRecord& Record;

  std::string operator()(std::string TRecord::*AMember) const { return Record.*AMember; }
  std::string operator()(TDateTime TRecord::*AMember) const { return FormatDate(Record.*AMember); }
  std::string operator()(std::int64_t TRecord::*AMember) const { return FormatSize(Record.*AMember); }
  std::string operator()(TUsedType TRecord::*AMember) const {
    return Record.*AMember == TUsedType::utNone ? std::string() : std::string(UsageName(Record.*AMember));
  }
  std::string operator()(TSoftwareRating TRecord::*AMember) const { return std::string(RatingName(Record.*AMember)); }
  std::string operator()(TReleaseType TRecord::*AMember) const { return std::string(ReleaseTypeText(Record.*AMember)); }
};

}  // namespace

std::span<const TRecordField> RecordFields(EProductKind AKind) noexcept {
  if (AKind == EProductKind::Update) return FieldsOfUpdates;
  return FieldsOfPrograms;
}

TProductRecord ReadProduct(IProduct& AProduct, EProductKind AKind) {
  TProductRecord record;
  record.Kind = AKind;
  TVariantValue value;
  for (const TRecordField& field : RecordFields(AKind)) {
    AProduct.GetProperty(static_cast<std::int32_t>(field.Id), value.Receive());
    std::visit(TTaker{value.Value(), record}, field.Member);
  }
  record.Actions = AProduct.GetPossibleActions();
  record.IconIndex = AProduct.GetIconIndex();
  return record;
}

std::string DescribeField(const TProductRecord& ARecord, const TRecordField& AField) {
  return std::visit(TDescriber{ARecord}, AField.Member);
}

std::string_view UsageName(TUsedType AUsage) noexcept {
  switch (AUsage) {
    case TUsedType::utRarely:
      return "rarely";
    case TUsedType::utOccasionaly:
      return "occasionally";
    case TUsedType::utFrequently:
      return "frequently";
    case TUsedType::utNone:
      break;
  }
  return "none";
}

std::string_view RatingName(TSoftwareRating ARating) noexcept {
  switch (ARating) {
    case TSoftwareRating::stTrustWorthy:
      return "trustworthy";
    case TSoftwareRating::stRisky:
      return "risky";
    case TSoftwareRating::stUnknown:
      break;
  }
  return "unknown";
}

std::string_view ReleaseTypeName(TReleaseType AType) noexcept { return WordsOf(AType).Name; }

std::string_view ReleaseTypeText(TReleaseType AType) noexcept { return WordsOf(AType).Text; }

std::vector<std::string_view> ActionNames(TPossibleActionsSet AActions) {
  std::vector<std::string_view> result;
  for (std::size_t i = 0; i < ActionNameTable.size(); ++i) {
    if ((AActions & ActionBit(static_cast<TPossibleActions>(i))) != 0) result.push_back(ActionNameTable[i]);
  }
  return result;
}

}  // namespace varcolin::host
