// The programs and updates that one read of the registry has found.
#pragma once

#include <cstddef>
#include <deque>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "intf/intf_Varcolin.h"
#include "support/uText.h"

namespace varcolin {

/// One program or update found during one read. Texts are empty when unknown.
struct TTemporaryInfo {
  TTemporaryInfo() = default;
  TTemporaryInfo(const TTemporaryInfo&) = delete;  // its key views point into its own keys
  TTemporaryInfo& operator=(const TTemporaryInfo&) = delete;

  /// A copy of everything.
  [[nodiscard]] std::unique_ptr<TTemporaryInfo> Clone() const;

  std::u16string FInternalName;  ///< name of the registry key where the entry was first read
  std::u16string FGUID;          ///< brace form
  std::u16string FDisplayName;
  std::deque<std::u16string> FRegistryKeys;  ///< key texts in the order found, none twice
  TReleaseType FReleaseType = TReleaseType::rtNone;
  std::u16string FParentKeyName;      ///< for updates: uninstall key name of the program that they belong to
  std::u16string FParentDisplayName;  ///< and its display name

  /// Adds a key text; false when the record has it already, compared without regard to case.
  bool AddKey(std::u16string_view AKeyText);

 private:
  std::unordered_set<std::u16string_view, TTextHash, TTextEqual> FKeyViews;
};

/// Records in the order found, with an index for every look-up, so that none walks the list. The content of a record
/// that the indexes rest on changes only through this class.
class TTemporaryList {
 public:
  TTemporaryList() = default;
  TTemporaryList(const TTemporaryList&) = delete;
  TTemporaryList& operator=(const TTemporaryList&) = delete;

  /// Appends a record and, when it has a GUID, indexes that.
  TTemporaryInfo& Append(std::unique_ptr<TTemporaryInfo> AInfo);
  /// Appends a record without indexing its GUID.
  TTemporaryInfo& AppendWithoutGuid(std::unique_ptr<TTemporaryInfo> AInfo);
  /// Lets a GUID lead to a record; a GUID that leads to one already keeps it.
  void IndexGuid(std::u16string_view AGuid, TTemporaryInfo& AInfo);
  /// Gives a record that has no GUID one, and indexes it; an empty GUID changes nothing.
  void AdoptGuid(std::u16string_view AGuid, TTemporaryInfo& AInfo);
  /// Adds a key text to a record unless it has it already.
  void AddKey(std::u16string_view AKeyText, TTemporaryInfo& AInfo);
  /// Frees a record and forgets every GUID that leads to it.
  void Remove(TTemporaryInfo& AInfo);
  void Clear();

  /// The record of a GUID, or else the first one whose display name or internal name equals a name that is not empty;
  /// null when there is none.
  [[nodiscard]] TTemporaryInfo* Find(std::u16string_view AGuid, std::u16string_view AName) const;
  /// The first record with a key text that ends with AEnd, without regard to case.
  [[nodiscard]] TTemporaryInfo* FindByRegistryKey(std::u16string_view AEnd);
  /// The first record whose display name or internal name contains a number of at least one digit.
  [[nodiscard]] TTemporaryInfo* FindByNumber(std::u16string_view ANumber);
  /// The first record with exactly this display name and GUID, without regard to case.
  [[nodiscard]] TTemporaryInfo* FindByNameAndGuid(std::u16string_view AName, std::u16string_view AGuid);

  /// Calls AVisit for every record in order.
  void ForEach(const std::function<void(TTemporaryInfo&)>& AVisit) const;

 private:
  /// Position in the order found; positions of records taken out stay empty.
  using TPosition = std::size_t;

  /// Texts of records, sorted so that all texts with a given beginning stand together.
  using TPrefixIndex = std::multimap<std::u16string, TPosition, std::less<>>;

  [[nodiscard]] TPosition PositionOf(const TTemporaryInfo& AInfo) const { return FPositions.at(&AInfo); }
  /// The lowest position that is still filled among the texts that begin with APrefix.
  [[nodiscard]] TTemporaryInfo* FirstWithPrefix(const TPrefixIndex& AIndex, std::u16string_view APrefix) const;
  void IndexKeyText(std::u16string_view AKeyText, TPosition APosition);
  void IndexDigits(std::u16string_view AName, TPosition APosition);

  std::vector<std::unique_ptr<TTemporaryInfo>> FInfos;
  std::unordered_map<const TTemporaryInfo*, TPosition> FPositions;
  std::unordered_map<std::u16string, TTemporaryInfo*, TTextHash, TTextEqual> FByGuid;
  std::unordered_map<const TTemporaryInfo*, std::vector<std::u16string>> FGuidsOf;
  /// Positions in ascending order for each name; those that are no longer filled are passed over.
  std::unordered_map<std::u16string, std::vector<TPosition>, TTextHash, TTextEqual> FByName;
  // The indexes below are built when they are first asked for; most machines never ask.
  bool FHasKeyIndex = false;
  TPrefixIndex FByKeyEnd;  ///< key texts upper-cased and reversed
  std::unordered_map<std::u16string, TPosition> FKeyAnswers;
  bool FHasDigitIndex = false;
  TPrefixIndex FByDigits;  ///< every run of digits from each of its digits on
  bool FHasPairIndex = false;
  std::unordered_map<std::u16string, std::vector<TPosition>, TTextHash, TTextEqual> FByPair;
};

}  // namespace varcolin
