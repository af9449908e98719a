#include "locations/uTemporaryInfo.h"

#include <algorithm>

namespace varcolin {

namespace {

/// Longest piece of a run of digits that is indexed: numbers of articles are far shorter, and a name of nothing but
/// digits must not cost the square of its length.
constexpr std::size_t MaxDigits = 64;

std::u16string PairKey(std::u16string_view AName, std::u16string_view AGuid) {
  std::u16string key(AName);
  key.push_back(u'\0');
  key.append(AGuid);
  return key;
}

std::u16string Reversed(std::u16string_view AText) {
  std::u16string text = UpperCase(AText);
  std::reverse(text.begin(), text.end());
  return text;
}

bool IsDigit(char16_t AUnit) noexcept { return AUnit >= u'0' && AUnit <= u'9'; }

bool ContainsNumber(const TTemporaryInfo& AInfo, std::u16string_view ANumber) {
  return AInfo.FDisplayName.find(ANumber) != std::u16string::npos ||
         AInfo.FInternalName.find(ANumber) != std::u16string::npos;
}

}  // namespace

std::unique_ptr<TTemporaryInfo> TTemporaryInfo::Clone() const {
  auto copy = std::make_unique<TTemporaryInfo>();
  copy->FInternalName = FInternalName;
  copy->FGUID = FGUID;
  copy->FDisplayName = FDisplayName;
  for (const std::u16string& key : FRegistryKeys) copy->AddKey(key);
  copy->FReleaseType = FReleaseType;
  copy->FParentKeyName = FParentKeyName;
  copy->FParentDisplayName = FParentDisplayName;
  return copy;
}

bool TTemporaryInfo::AddKey(std::u16string_view AKeyText) {
  if (FKeyViews.contains(AKeyText)) return false;
  FKeyViews.insert(FRegistryKeys.emplace_back(AKeyText));
  return true;
}

TTemporaryInfo& TTemporaryList::Append(std::unique_ptr<TTemporaryInfo> AInfo) {
  TTemporaryInfo& info = AppendWithoutGuid(std::move(AInfo));
  if (!info.FGUID.empty()) IndexGuid(info.FGUID, info);
  return info;
}

TTemporaryInfo& TTemporaryList::AppendWithoutGuid(std::unique_ptr<TTemporaryInfo> AInfo) {
  TTemporaryInfo& info = *AInfo;
  const TPosition position = FInfos.size();
  FInfos.push_back(std::move(AInfo));
  FPositions.emplace(&info, position);
  FByName[info.FDisplayName].push_back(position);
  if (!SameText(info.FDisplayName, info.FInternalName)) FByName[info.FInternalName].push_back(position);
  if (FHasKeyIndex) {
    for (const std::u16string& key : info.FRegistryKeys) IndexKeyText(key, position);
  }
  if (FHasDigitIndex) {
    IndexDigits(info.FDisplayName, position);
    IndexDigits(info.FInternalName, position);
  }
  if (FHasPairIndex) FByPair[PairKey(info.FDisplayName, info.FGUID)].push_back(position);
  return info;
}

void TTemporaryList::IndexGuid(std::u16string_view AGuid, TTemporaryInfo& AInfo) {
  if (FByGuid.emplace(AGuid, &AInfo).second) FGuidsOf[&AInfo].emplace_back(AGuid);
}

void TTemporaryList::AdoptGuid(std::u16string_view AGuid, TTemporaryInfo& AInfo) {
  if (AGuid.empty() || !AInfo.FGUID.empty()) return;
  AInfo.FGUID = AGuid;
  IndexGuid(AGuid, AInfo);
}

void TTemporaryList::AddKey(std::u16string_view AKeyText, TTemporaryInfo& AInfo) {
  if (AInfo.AddKey(AKeyText) && FHasKeyIndex) IndexKeyText(AKeyText, PositionOf(AInfo));
}

void TTemporaryList::Remove(TTemporaryInfo& AInfo) {
  if (const auto guids = FGuidsOf.find(&AInfo); guids != FGuidsOf.end()) {
    for (const std::u16string& guid : guids->second) FByGuid.erase(guid);
    FGuidsOf.erase(guids);
  }
  const auto position = FPositions.find(&AInfo);
  const TPosition index = position->second;
  FPositions.erase(position);
  FInfos[index].reset();
}

void TTemporaryList::Clear() {
  FPositions.clear();
  FByGuid.clear();
  FGuidsOf.clear();
  FByName.clear();
  FByKeyEnd.clear();
  FKeyAnswers.clear();
  FByDigits.clear();
  FByPair.clear();
  FInfos.clear();
  FHasKeyIndex = FHasDigitIndex = FHasPairIndex = false;
}

TTemporaryInfo* TTemporaryList::Find(std::u16string_view AGuid, std::u16string_view AName) const {
  if (const auto found = FByGuid.find(AGuid); found != FByGuid.end()) return found->second;
  if (AName.empty()) return nullptr;
  const auto named = FByName.find(AName);
  if (named == FByName.end()) return nullptr;
  for (const TPosition position : named->second) {
    if (FInfos[position]) return FInfos[position].get();
  }
  return nullptr;
}

TTemporaryInfo* TTemporaryList::FindByRegistryKey(std::u16string_view AEnd) {
  if (!FHasKeyIndex) {
    FHasKeyIndex = true;
    for (TPosition position = 0; position < FInfos.size(); ++position) {
      if (!FInfos[position]) continue;
      for (const std::u16string& key : FInfos[position]->FRegistryKeys) IndexKeyText(key, position);
    }
  }
  std::u16string reversed = Reversed(AEnd);
  // an answer stays the first one for as long as its record is listed: records found later stand behind it, and
  // IndexKeyText corrects it when an earlier record gains a key
  if (const auto known = FKeyAnswers.find(reversed); known != FKeyAnswers.end() && FInfos[known->second]) {
    return FInfos[known->second].get();
  }
  TTemporaryInfo* const first = FirstWithPrefix(FByKeyEnd, reversed);
  if (first != nullptr) FKeyAnswers.insert_or_assign(std::move(reversed), PositionOf(*first));
  return first;
}

TTemporaryInfo* TTemporaryList::FindByNumber(std::u16string_view ANumber) {
  if (ANumber.size() > MaxDigits) {
    const auto found = std::find_if(FInfos.begin(), FInfos.end(),
                                    [&](const auto& info) { return info && ContainsNumber(*info, ANumber); });
    return found == FInfos.end() ? nullptr : found->get();
  }
  if (!FHasDigitIndex) {
    FHasDigitIndex = true;
    for (TPosition position = 0; position < FInfos.size(); ++position) {
      if (!FInfos[position]) continue;
      IndexDigits(FInfos[position]->FDisplayName, position);
      IndexDigits(FInfos[position]->FInternalName, position);
    }
  }
  return FirstWithPrefix(FByDigits, ANumber);
}

TTemporaryInfo* TTemporaryList::FindByNameAndGuid(std::u16string_view AName, std::u16string_view AGuid) {
  if (!FHasPairIndex) {
    FHasPairIndex = true;
    for (TPosition position = 0; position < FInfos.size(); ++position) {
      if (const auto& info = FInfos[position]) FByPair[PairKey(info->FDisplayName, info->FGUID)].push_back(position);
    }
  }
  const auto found = FByPair.find(PairKey(AName, AGuid));
  if (found == FByPair.end()) return nullptr;
  for (const TPosition position : found->second) {
    if (FInfos[position]) return FInfos[position].get();
  }
  return nullptr;
}

void TTemporaryList::ForEach(const std::function<void(TTemporaryInfo&)>& AVisit) const {
  for (const auto& info : FInfos) {
    if (info) AVisit(*info);
  }
}

TTemporaryInfo* TTemporaryList::FirstWithPrefix(const TPrefixIndex& AIndex, std::u16string_view APrefix) const {
  TPosition first = FInfos.size();
  for (auto entry = AIndex.lower_bound(APrefix); entry != AIndex.end() && entry->first.starts_with(APrefix); ++entry) {
    if (entry->second < first && FInfos[entry->second]) first = entry->second;
  }
  return first == FInfos.size() ? nullptr : FInfos[first].get();
}

void TTemporaryList::IndexKeyText(std::u16string_view AKeyText, TPosition APosition) {
  std::u16string reversed = Reversed(AKeyText);
  // a new key of an earlier record may take an answer over
  for (std::size_t length = 1; !FKeyAnswers.empty() && length <= reversed.size(); ++length) {
    const auto known = FKeyAnswers.find(reversed.substr(0, length));
    if (known != FKeyAnswers.end() && known->second > APosition) known->second = APosition;
  }
  FByKeyEnd.emplace(std::move(reversed), APosition);
}

void TTemporaryList::IndexDigits(std::u16string_view AName, TPosition APosition) {
  for (std::size_t index = 0; index < AName.size(); ++index) {
    if (!IsDigit(AName[index])) continue;
    std::size_t end = index;
    while (end < AName.size() && end - index < MaxDigits && IsDigit(AName[end])) ++end;
    FByDigits.emplace(std::u16string(AName.substr(index, end - index)), APosition);
  }
}

}  // namespace varcolin
