// The list behind the ratings service.
#pragma once

#include <string>
#include <string_view>
#include <unordered_map>

#include "intf/intf_Varcolin.h"
#include "support/uText.h"

namespace varcolin {

/// Ratings of publishers and files, read from a text in UTF-8 with or without byte-order mark, one rating a line:
///
///     # a remark
///     trustworthy publisher Example Software Ltd.
///     risky file toolbar.exe
///     risky file C:\Program Files\Example\helper.exe
///     unknown publisher Example Holding
///
/// The first word is "trustworthy", "unknown" or "risky", the second "publisher" or "file"; the rest of the line is the
/// name. Words are parted by blanks or tabs. A file is named by its full path, or by its bare name, which then counts
/// in every folder; a path goes before a bare name. Case makes no difference. The first line for a name counts. Lines
/// of any other form are passed over.
class TRatingList {
 public:
  TRatingList() = default;
  explicit TRatingList(std::string_view AText);

  /// stUnknown for names that are not in the list.
  [[nodiscard]] TSoftwareRating PublisherRating(std::u16string_view AName) const;
  [[nodiscard]] TSoftwareRating FileRating(std::u16string_view APath) const;

 private:
  using TRatings = std::unordered_map<std::u16string, TSoftwareRating, TTextHash, TTextEqual>;

  void AddLine(std::u16string_view ALine);

  TRatings FPublishers;
  TRatings FFiles;
};

}  // namespace varcolin
