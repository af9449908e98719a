// The programs and updates that one read of the registry has found.
#pragma once

#include <cstddef>
#include <functional>
#include <map>
#include <memory>
#include <string>
#include <string_view>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "intf/intf_Varcolin.h"
#include "registry/uKeySnapshot.h"
#include "support/uFewOf.h"
#include "support/uText.h"
#include "support/uTextMap.h"

namespace varcolin {

/// One program or update found during one read. Texts are empty when unknown.
class TTemporaryInfo {
 public:
  TTemporaryInfo() = default;
  TTemporaryInfo(const TTemporaryInfo&) = delete;
  TTemporaryInfo& operator=(const TTemporaryInfo&) = delete;

  /// A copy of everything; it is in no list.
  [[nodiscard]] std::unique_ptr<TTemporaryInfo> Clone() const;

  /// A registry key that belongs to the entry.
  struct TKey {
    std::u16string Text;
    std::shared_ptr<const TKeySnapshot> Values;       ///< what the key held; null when it was not read
    std::shared_ptr<const TKeySnapshot> InnerValues;  ///< what its subkey "InstallProperties" held
  };

  /// Adds a key; false when the record has it already, its text compared without regard to case.
  bool AddKey(TKey AKey);
  /// Every key that belongs to the entry, in the order found.
  [[nodiscard]] std::vector<TKey>& Keys() noexcept { return FKeys; }

  std::u16string FInternalName;  ///< name of the registry key where the entry was first read
  std::u16string FGUID;          ///< brace form
  std::u16string FDisplayName;
  TReleaseType FReleaseType = TReleaseType::rtNone;
  std::u16string FParentKeyName;      ///< for updates: uninstall key name of the program that they belong to
  std::u16string FParentDisplayName;  ///< and its display name

 private:
  friend class TTemporaryList;

  std::vector<TKey> FKeys;
  /// The key texts again once there are many of them, to find one among them.
  std::unique_ptr<std::unordered_set<std::u16string, TTextHash, TTextEqual>> FManyKeys;
  std::size_t FPosition = 0;  ///< in its list
};

/// Records in the order found, with an index for every look-up, so that none walks the list. The content of a record
/// that the indexes rest on changes only through this class.
class TTemporaryList {
 public:
  TTemporaryList() = default;
  TTemporaryList(const TTemporaryList&) = delete;
  TTemporaryList& operator=(const TTemporaryList&) = delete;

  /// Number of records found, those taken out included.
  [[nodiscard]] std::size_t FoundCount() const noexcept { return FInfos.size(); }
  /// Makes room for so many more records.
  void Expect(std::size_t ACount);
  /// Appends a record and, when it has a GUID, indexes that.
  TTemporaryInfo& Append(std::unique_ptr<TTemporaryInfo> AInfo);
  /// Appends a record without indexing its GUID.
  TTemporaryInfo& AppendWithoutGuid(std::unique_ptr<TTemporaryInfo> AInfo);
  /// Lets a GUID lead to a record; a GUID that leads to one already keeps it.
  void IndexGuid(std::u16string_view AGuid, TTemporaryInfo& AInfo);
  /// Gives a record that has no GUID one, and indexes it; an empty GUID changes nothing.
  void AdoptGuid(std::u16string_view AGuid, TTemporaryInfo& AInfo);
  /// Adds a key to a record unless it has it already.
  void AddKey(TTemporaryInfo::TKey AKey, TTemporaryInfo& AInfo);
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

  using TNameIndex = TTextMap<TFewOf<TPosition>>;

  /// Texts of records, sorted so that all texts with a given beginning stand together.
  using TPrefixIndex = std::multimap<std::u16string, TPosition, std::less<>>;

  /// The first record under a key that is still listed; null when there is none.
  [[nodiscard]] TTemporaryInfo* FirstUnder(const TNameIndex& AIndex, std::u16string_view AKey) const;
  /// The lowest position that is still filled among the texts that begin with APrefix.
  [[nodiscard]] TTemporaryInfo* FirstWithPrefix(const TPrefixIndex& AIndex, std::u16string_view APrefix) const;
  void IndexKeyText(std::u16string_view AKeyText, TPosition APosition);
  void IndexDigits(std::u16string_view AName, TPosition APosition);

  std::vector<std::unique_ptr<TTemporaryInfo>> FInfos;
  // Positions that are no longer filled are passed over.
  TTextMap<TPosition> FByGuid;
  TNameIndex FByName;  ///< positions in ascending order for each name
  // The indexes below are built when they are first asked for; most machines never ask.
  bool FHasKeyIndex = false;
  TPrefixIndex FByKeyEnd;  ///< key texts upper-cased and reversed
  std::unordered_map<std::u16string, TPosition> FKeyAnswers;
  bool FHasDigitIndex = false;
  TPrefixIndex FByDigits;  ///< every run of digits from each of its digits on
  bool FHasPairIndex = false;
  TNameIndex FByPair;
};

}  // namespace varcolin
