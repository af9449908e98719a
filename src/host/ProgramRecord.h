// One installed program as the host shows it: everything that IProduct tells, read once.
#pragma once

#include <compare>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <variant>
#include <vector>

#include "intf/intf_Varcolin.h"

namespace varcolin::host {

/// A program; texts are UTF-8 and empty when unknown.
struct TProgramRecord {
  std::string DisplayName;
  std::string Version;
  std::string Publisher;
  std::string InstallLocation;
  std::string InstallSource;
  TDateTime InstallDate = 0;  ///< 0 when unknown, like every date here
  std::string Contact;
  std::string Comments;
  std::string ReadMeLink;
  std::string HelpLink;
  std::string SupportLink;
  std::string SupportTelephone;
  std::string UpdateInfoLink;
  std::string Language;
  std::int64_t EstimatedSize = 0;  ///< bytes; 0 or less when unknown
  std::string RegisteredOwner;
  std::string RegisteredCompany;
  std::string Guid;
  std::string ProductId;
  TDateTime LastUsedDate = 0;
  TUsedType Usage = TUsedType::utNone;
  TSoftwareRating Rating = TSoftwareRating::stUnknown;
  TPossibleActionsSet Actions = 0;
  std::int32_t IconIndex = -1;

  friend bool operator==(const TProgramRecord&, const TProgramRecord&) = default;
};

/// Where a record keeps a property.
using TRecordMember =
    std::variant<std::string TProgramRecord::*, TDateTime TProgramRecord::*, std::int64_t TProgramRecord::*,
                 TUsedType TProgramRecord::*, TSoftwareRating TProgramRecord::*>;

/// One property: its number, its name in JSON, its name for people, and where the record keeps it.
struct TRecordField {
  TPropertyID Id;
  std::string_view JsonName;
  std::string_view Label;
  TRecordMember Member;
};

/// The properties 0 to 21 in the order of their numbers.
[[nodiscard]] std::span<const TRecordField> RecordFields() noexcept;

/// Reads a product. The collection that it came from is locked by the caller.
[[nodiscard]] TProgramRecord ReadProgram(IProduct& AProduct);

/// A property as people read it; empty when it is unknown.
[[nodiscard]] std::string DescribeField(const TProgramRecord& ARecord, const TRecordField& AField);

/// The names that programs read: "none", "rarely", "occasionally", "frequently".
[[nodiscard]] std::string_view UsageName(TUsedType AUsage) noexcept;
/// "trustworthy", "unknown", "risky".
[[nodiscard]] std::string_view RatingName(TSoftwareRating ARating) noexcept;
/// The names of the actions of a set in the order of their numbers, for example "uninstall", "modifyRemove".
[[nodiscard]] std::vector<std::string_view> ActionNames(TPossibleActionsSet AActions);

}  // namespace varcolin::host
