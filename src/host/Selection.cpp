#include "host/Selection.h"

#include <algorithm>
#include <map>
#include <utility>

#include "host/Cells.h"
#include "host/HostError.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

bool IsKnown(TDateTime ADate) {
  TDateParts parts;
  return SplitDateTime(ADate, parts);
}

/// Sorts by a key that is computed once for each program.
template <class TKeyOf>
void SortByKey(std::vector<TProgramRecord>& APrograms, TKeyOf AKeyOf) {
  using TKey = decltype(AKeyOf(APrograms.front()));
  std::vector<std::pair<TKey, std::size_t>> keys;
  keys.reserve(APrograms.size());
  for (std::size_t i = 0; i < APrograms.size(); ++i) keys.emplace_back(AKeyOf(APrograms[i]), i);
  // the position makes every key different, so equal ones keep their order
  std::ranges::sort(keys);
  std::vector<TProgramRecord> sorted;
  sorted.reserve(APrograms.size());
  for (const auto& [key, index] : keys) sorted.push_back(std::move(APrograms[index]));
  APrograms = std::move(sorted);
}

bool Contains(std::string_view AText, std::u32string_view AFolded) {
  return FoldCase(AText).find(AFolded) != std::u32string::npos;
}

template <class TPredicate>
std::vector<TProgramRecord> Select(std::span<const TProgramRecord> APrograms, TPredicate APredicate) {
  std::vector<TProgramRecord> result;
  std::ranges::copy_if(APrograms, std::back_inserter(result), APredicate);
  return result;
}

/// GUID, name, and the number among the programs that have both in common.
using TIdentity = std::tuple<std::string, std::string, std::size_t>;

std::map<TIdentity, const TProgramRecord*> IndexReading(std::span<const TProgramRecord> AReading,
                                                        std::vector<TIdentity>& AOrder) {
  std::map<std::pair<std::string, std::string>, std::size_t> seen;
  std::map<TIdentity, const TProgramRecord*> result;
  for (const TProgramRecord& record : AReading) {
    const std::size_t number = seen[{record.Guid, record.DisplayName}]++;
    AOrder.emplace_back(record.Guid, record.DisplayName, number);
    result.emplace(AOrder.back(), &record);
  }
  return result;
}

std::string DescribeProgram(const TProgramRecord& ARecord) {
  std::string text = ARecord.DisplayName;
  if (!ARecord.Version.empty()) text += ' ' + ARecord.Version;
  if (!ARecord.Publisher.empty()) text += " (" + ARecord.Publisher + ')';
  return text;
}

/// The sentence about a text that names several programs, with the candidates below it.
std::string DescribeCandidates(std::string_view AText, const std::vector<TProgramRecord>& ACandidates) {
  constexpr std::size_t maximumShown = 50;
  std::string text = '"' + Printable(AText) + "\" names " + std::to_string(ACandidates.size()) +
                     " programs; say which by its whole name or its GUID:";
  for (std::size_t i = 0; i < std::min(ACandidates.size(), maximumShown); ++i) {
    const TProgramRecord& candidate = ACandidates[i];
    text += "\n  " + FitToCells(candidate.DisplayName, 100);
    if (!candidate.Version.empty()) text += "  " + FitToCells(candidate.Version, 30);
    if (!candidate.Guid.empty()) text += "  " + FitToCells(candidate.Guid, 60);
  }
  if (ACandidates.size() > maximumShown) {
    text += "\n  and " + std::to_string(ACandidates.size() - maximumShown) + " more";
  }
  return text;
}

}  // namespace

void FilterPrograms(std::vector<TProgramRecord>& APrograms, std::string_view AText) {
  const std::u32string text = FoldCase(AText);
  std::erase_if(APrograms, [&](const TProgramRecord& ARecord) {
    return !Contains(ARecord.DisplayName, text) && !Contains(ARecord.Publisher, text);
  });
}

void SortPrograms(std::vector<TProgramRecord>& APrograms, ESortOrder AOrder) {
  switch (AOrder) {
    case ESortOrder::Name:
      return SortByKey(APrograms, [](const TProgramRecord& ARecord) { return FoldCase(ARecord.DisplayName); });
    case ESortOrder::Size:
      return SortByKey(APrograms,
                       [](const TProgramRecord& ARecord) { return -std::max<std::int64_t>(ARecord.EstimatedSize, 0); });
    case ESortOrder::Date:
      return SortByKey(APrograms, [](const TProgramRecord& ARecord) {
        const bool known = IsKnown(ARecord.InstallDate);
        return std::pair(!known, known ? -ARecord.InstallDate : 0.0);
      });
    case ESortOrder::Publisher:
      return SortByKey(APrograms, [](const TProgramRecord& ARecord) {
        return std::pair(FoldCase(ARecord.Publisher), FoldCase(ARecord.DisplayName));
      });
  }
}

std::vector<TProgramRecord> FindPrograms(std::span<const TProgramRecord> APrograms, std::string_view ANameOrGuid) {
  const std::u32string text = FoldCase(ANameOrGuid);
  if (text.empty()) return {};
  const std::u32string braced = U'{' + text + U'}';
  std::vector<TProgramRecord> found = Select(APrograms, [&](const TProgramRecord& ARecord) {
    const std::u32string guid = FoldCase(ARecord.Guid);
    return guid == text || guid == braced;
  });
  if (found.empty()) {
    found = Select(APrograms, [&](const TProgramRecord& ARecord) { return FoldCase(ARecord.DisplayName) == text; });
  }
  if (found.empty()) {
    found = Select(APrograms, [&](const TProgramRecord& ARecord) { return Contains(ARecord.DisplayName, text); });
  }
  return found;
}

TProgramRecord ChooseProgram(std::span<const TProgramRecord> APrograms, std::string_view ANameOrGuid) {
  std::vector<TProgramRecord> found = FindPrograms(APrograms, ANameOrGuid);
  if (found.empty()) throw EHostError("no program is called \"" + Printable(ANameOrGuid) + '"');
  if (found.size() > 1) throw EHostError(DescribeCandidates(ANameOrGuid, found));
  return std::move(found.front());
}

std::vector<TProgramChange> CompareReadings(std::span<const TProgramRecord> ABefore,
                                            std::span<const TProgramRecord> AAfter) {
  std::vector<TIdentity> orderBefore;
  std::vector<TIdentity> orderAfter;
  const auto before = IndexReading(ABefore, orderBefore);
  const auto after = IndexReading(AAfter, orderAfter);
  std::vector<TProgramChange> changes;
  for (const TIdentity& identity : orderBefore) {
    if (!after.contains(identity)) changes.push_back({*before.at(identity), std::nullopt});
  }
  for (const TIdentity& identity : orderAfter) {
    const TProgramRecord& record = *after.at(identity);
    const auto old = before.find(identity);
    if (old == before.end()) {
      changes.push_back({std::nullopt, record});
    } else if (*old->second != record) {
      changes.push_back({*old->second, record});
    }
  }
  return changes;
}

std::string DescribeChange(const TProgramChange& AChange) {
  if (!AChange.Before) return AChange.After ? "appeared  " + Printable(DescribeProgram(*AChange.After)) : std::string();
  if (!AChange.After) return "vanished  " + Printable(DescribeProgram(*AChange.Before));
  std::string details;
  for (const TRecordField& field : RecordFields()) {
    const std::string was = DescribeField(*AChange.Before, field);
    const std::string is = DescribeField(*AChange.After, field);
    if (was == is) continue;
    details += details.empty() ? ": " : ", ";
    details += std::string(field.Label) + " \"" + was + "\" -> \"" + is + '"';
  }
  if (details.empty()) return {};
  return "changed   " + Printable(AChange.After->DisplayName + details);
}

}  // namespace varcolin::host
