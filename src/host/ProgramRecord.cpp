#include "host/ProgramRecord.h"

#include <array>

#include "host/Text.h"

namespace varcolin::host {

namespace {

using TRecord = TProgramRecord;

constexpr std::array Fields{
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
    TRecordField{TPropertyID::RegisteredOwner, "registeredOwner", "Registered to", &TRecord::RegisteredOwner},
    TRecordField{TPropertyID::RegisteredCompany, "registeredCompany", "Organisation", &TRecord::RegisteredCompany},
    TRecordField{TPropertyID::Guid, "guid", "GUID", &TRecord::Guid},
    TRecordField{TPropertyID::ProductID, "productId", "Product ID", &TRecord::ProductId},
    TRecordField{TPropertyID::LastUsedDate, "lastUsedDate", "Last used", &TRecord::LastUsedDate},
    TRecordField{TPropertyID::Usage, "usage", "Used", &TRecord::Usage},
    TRecordField{TPropertyID::Rating, "rating", "Rating", &TRecord::Rating},
};

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
};

}  // namespace

std::span<const TRecordField> RecordFields() noexcept { return Fields; }

TProgramRecord ReadProgram(IProduct& AProduct) {
  TProgramRecord record;
  TVariantValue value;
  for (const TRecordField& field : Fields) {
    AProduct.GetProperty(static_cast<std::int32_t>(field.Id), value.Receive());
    std::visit(TTaker{value.Value(), record}, field.Member);
  }
  record.Actions = AProduct.GetPossibleActions();
  record.IconIndex = AProduct.GetIconIndex();
  return record;
}

std::string DescribeField(const TProgramRecord& ARecord, const TRecordField& AField) {
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

std::vector<std::string_view> ActionNames(TPossibleActionsSet AActions) {
  std::vector<std::string_view> result;
  for (std::size_t i = 0; i < ActionNameTable.size(); ++i) {
    if ((AActions & ActionBit(static_cast<TPossibleActions>(i))) != 0) result.push_back(ActionNameTable[i]);
  }
  return result;
}

}  // namespace varcolin::host
