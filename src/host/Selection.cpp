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
void SortByKey(std::vector<TProductRecord>& AProducts, TKeyOf AKeyOf) {
  using TKey = decltype(AKeyOf(AProducts.front()));
  std::vector<std::pair<TKey, std::size_t>> keys;
  keys.reserve(AProducts.size());
  for (std::size_t i = 0; i < AProducts.size(); ++i) keys.emplace_back(AKeyOf(AProducts[i]), i);
  // the position makes every key different, so equal ones keep their order
  std::ranges::sort(keys);
  std::vector<TProductRecord> sorted;
  sorted.reserve(AProducts.size());
  for (const auto& [key, index] : keys) sorted.push_back(std::move(AProducts[index]));
  AProducts = std::move(sorted);
}

bool Contains(std::string_view AText, std::u32string_view AFolded) {
  return FoldCase(AText).find(AFolded) != std::u32string::npos;
}

template <class TPredicate>
std::vector<TProductRecord> Select(std::span<const TProductRecord> AProducts, TPredicate APredicate) {
  std::vector<TProductRecord> result;
  std::ranges::copy_if(AProducts, std::back_inserter(result), APredicate);
  return result;
}

/// GUID, name, and the number among the programs that have both in common.
using TIdentity = std::tuple<std::string, std::string, std::size_t>;

std::map<TIdentity, const TProductRecord*> IndexReading(std::span<const TProductRecord> AReading,
                                                        std::vector<TIdentity>& AOrder) {
  std::map<std::pair<std::string, std::string>, std::size_t> seen;
  std::map<TIdentity, const TProductRecord*> result;
  for (const TProductRecord& record : AReading) {
    const std::size_t number = seen[{record.Guid, record.DisplayName}]++;
    AOrder.emplace_back(record.Guid, record.DisplayName, number);
    result.emplace(AOrder.back(), &record);
  }
  return result;
}

std::string DescribeProduct(const TProductRecord& ARecord) {
  std::string text = ARecord.DisplayName;
  if (!ARecord.Version.empty()) text += ' ' + ARecord.Version;
  if (!ARecord.Publisher.empty()) text += " (" + ARecord.Publisher + ')';
  return text;
}

/// The sentence about a text that names several products, with the candidates below it.
std::string DescribeCandidates(std::string_view AText, const std::vector<TProductRecord>& ACandidates) {
  constexpr std::size_t maximumShown = 50;
  std::string text = '"' + Printable(AText) + "\" names " + std::to_string(ACandidates.size()) +
                     " products; say which by its whole name or its GUID:";
  for (std::size_t i = 0; i < std::min(ACandidates.size(), maximumShown); ++i) {
    const TProductRecord& candidate = ACandidates[i];
    text += "\n  " + FitToCells(candidate.DisplayName, 100);
    if (!candidate.Version.empty()) text += "  " + FitToCells(candidate.Version, 30);
    const std::string& id = candidate.Kind == EProductKind::Update ? candidate.UpdateId : candidate.Guid;
    if (!id.empty()) text += "  " + FitToCells(id, 60);
  }
  if (ACandidates.size() > maximumShown) {
    text += "\n  and " + std::to_string(ACandidates.size() - maximumShown) + " more";
  }
  return text;
}

}  // namespace

void FilterProducts(std::vector<TProductRecord>& AProducts, std::string_view AText) {
  const std::u32string text = FoldCase(AText);
  std::erase_if(AProducts, [&](const TProductRecord& ARecord) {
    return !Contains(ARecord.DisplayName, text) && !Contains(ARecord.Publisher, text);
  });
}

void SortProducts(std::vector<TProductRecord>& AProducts, ESortOrder AOrder) {
  switch (AOrder) {
    case ESortOrder::Name:
      return SortByKey(AProducts, [](const TProductRecord& ARecord) { return FoldCase(ARecord.DisplayName); });
    case ESortOrder::Size:
      return SortByKey(AProducts,
                       [](const TProductRecord& ARecord) { return -std::max<std::int64_t>(ARecord.EstimatedSize, 0); });
    case ESortOrder::Date:
      return SortByKey(AProducts, [](const TProductRecord& ARecord) {
        const bool known = IsKnown(ARecord.InstallDate);
        return std::pair(!known, known ? -ARecord.InstallDate : 0.0);
      });
    case ESortOrder::Publisher:
      return SortByKey(AProducts, [](const TProductRecord& ARecord) {
        return std::pair(FoldCase(ARecord.Publisher), FoldCase(ARecord.DisplayName));
      });
  }
}

std::vector<TProductRecord> FindProducts(std::span<const TProductRecord> AProducts, std::string_view ANameOrGuid) {
  const std::u32string text = FoldCase(ANameOrGuid);
  if (text.empty()) return {};
  const std::u32string braced = U'{' + text + U'}';
  std::vector<TProductRecord> found = Select(AProducts, [&](const TProductRecord& ARecord) {
    const std::u32string id = FoldCase(ARecord.Kind == EProductKind::Update ? ARecord.UpdateId : ARecord.Guid);
    return id == text || id == braced;
  });
  if (found.empty()) {
    found = Select(AProducts, [&](const TProductRecord& ARecord) { return FoldCase(ARecord.DisplayName) == text; });
  }
  if (found.empty()) {
    found = Select(AProducts, [&](const TProductRecord& ARecord) { return Contains(ARecord.DisplayName, text); });
  }
  return found;
}

TProductRecord ChooseProduct(std::span<const TProductRecord> AProducts, std::string_view ANameOrGuid) {
  std::vector<TProductRecord> found = FindProducts(AProducts, ANameOrGuid);
  if (found.empty()) throw EHostError("no program or update is called \"" + Printable(ANameOrGuid) + '"');
  if (found.size() > 1) throw EHostError(DescribeCandidates(ANameOrGuid, found));
  return std::move(found.front());
}

std::vector<TProductChange> CompareReadings(std::span<const TProductRecord> ABefore,
                                            std::span<const TProductRecord> AAfter) {
  std::vector<TIdentity> orderBefore;
  std::vector<TIdentity> orderAfter;
  const auto before = IndexReading(ABefore, orderBefore);
  const auto after = IndexReading(AAfter, orderAfter);
  std::vector<TProductChange> changes;
  for (const TIdentity& identity : orderBefore) {
    if (!after.contains(identity)) changes.push_back({*before.at(identity), std::nullopt});
  }
  for (const TIdentity& identity : orderAfter) {
    const TProductRecord& record = *after.at(identity);
    const auto old = before.find(identity);
    if (old == before.end()) {
      changes.push_back({std::nullopt, record});
    } else if (*old->second != record) {
      changes.push_back({*old->second, record});
    }
  }
  return changes;
}

std::string DescribeChange(const TProductChange& AChange) {
  if (!AChange.Before) return AChange.After ? "appeared  " + Printable(DescribeProduct(*AChange.After)) : std::string();
  if (!AChange.After) return "vanished  " + Printable(DescribeProduct(*AChange.Before));
  std::string details;
  for (const TRecordField& field : RecordFields(AChange.After->Kind)) {
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
