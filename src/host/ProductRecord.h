// One installed program or update as the host shows it: everything that IProduct tells, read once.
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

/// What the library keeps in one list.
enum class EProductKind { Program, Update };

/// A program or an update; texts are UTF-8 and empty when unknown. What its kind does not have keeps its default.
struct TProductRecord {
  EProductKind Kind = EProductKind::Program;
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
  std::string UpdateId;
  TReleaseType ReleaseType = TReleaseType::rtNone;
  std::string ParentDisplayName;
  TPossibleActionsSet Actions = 0;
  std::int32_t IconIndex = -1;

  friend bool operator==(const TProductRecord&, const TProductRecord&) = default;
};

/// Where a record keeps a property.
using TRecordMember =
    std::variant<std::string TProductRecord::*, TDateTime TProductRecord::*, std::int64_t TProductRecord::*,
                 TUsedType TProductRecord::*, TSoftwareRating TProductRecord::*, TReleaseType TProductRecord::*>;

/// One property: its number, its name in JSON, its name for people, and where the record keeps it.
struct TRecordField {
  TPropertyID Id;
  std::string_view JsonName;
  std::string_view Label;
  TRecordMember Member;
};

/// The properties that a kind of product has, in the order of their numbers.
[[nodiscard]] std::span<const TRecordField> RecordFields(EProductKind AKind) noexcept;

/// Reads a product. The collection that it came from is locked by the caller.
[[nodiscard]] TProductRecord ReadProduct(IProduct& AProduct, EProductKind AKind);

/// A property as people read it; empty when it is unknown.
[[nodiscard]] std::string DescribeField(const TProductRecord& ARecord, const TRecordField& AField);

/// The names that programs read: "none", "rarely", "occasionally", "frequently".
[[nodiscard]] std::string_view UsageName(TUsedType AUsage) noexcept;
/// "trustworthy", "unknown", "risky".
[[nodiscard]] std::string_view RatingName(TSoftwareRating ARating) noexcept;
/// "none", "softwareUpdate", "update", "updateRollup", "servicePack", "criticalUpdate", "securityUpdate", "hotfix".
[[nodiscard]] std::string_view ReleaseTypeName(TReleaseType AType) noexcept;
/// The same as people read it; empty for none.
[[nodiscard]] std::string_view ReleaseTypeText(TReleaseType AType) noexcept;
/// The names of the actions of a set in the order of their numbers, for example "uninstall", "modifyRemove".
[[nodiscard]] std::vector<std::string_view> ActionNames(TPossibleActionsSet AActions);

}  // namespace varcolin::host
