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
  copy->FKeys = FKeys;
  copy->FReleaseType = FReleaseType;
  copy->FParentKeyName = FParentKeyName;
  copy->FParentDisplayName = FParentDisplayName;
  return copy;
}

bool TTemporaryInfo::AddKey(TKey AKey) {
  constexpr std::size_t FewKeys = 8;
  if (FKeys.size() < FewKeys) {
    for (const TKey& known : FKeys) {
      if (SameText(known.Text, AKey.Text)) return false;
    }
  } else {
    if (!FManyKeys) {
      FManyKeys = std::make_unique<std::unordered_set<std::u16string, TTextHash, TTextEqual>>();
      for (const TKey& known : FKeys) FManyKeys->insert(known.Text);
    }
    if (!FManyKeys->insert(AKey.Text).second) return false;
  }
  FKeys.push_back(std::move(AKey));
  return true;
}

void TTemporaryList::Expect(std::size_t ACount) {
  const std::size_t total = FInfos.size() + ACount;
  if (total <= FInfos.capacity()) return;
  // twice as much as is wanted now: several places are read one after another
  FInfos.reserve(2 * total);
  FByName.Reserve(2 * total);
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
  info.FPosition = position;
  AddUnder(FByName, info.FDisplayName, position);
  if (!SameText(info.FDisplayName, info.FInternalName)) AddUnder(FByName, info.FInternalName, position);
  if (FHasKeyIndex) {
    for (const TTemporaryInfo::TKey& key : info.FKeys) IndexKeyText(key.Text, position);
  }
  if (FHasDigitIndex) {
    IndexDigits(info.FDisplayName, position);
    IndexDigits(info.FInternalName, position);
  }
  if (FHasPairIndex) AddUnder(FByPair, PairKey(info.FDisplayName, info.FGUID), position);
  return info;
}

void TTemporaryList::IndexGuid(std::u16string_view AGuid, TTemporaryInfo& AInfo) {
  const auto [position, isNew] = FByGuid.Add(AGuid, AInfo.FPosition);
  if (!isNew && !FInfos[*position]) *position = AInfo.FPosition;
}

void TTemporaryList::AdoptGuid(std::u16string_view AGuid, TTemporaryInfo& AInfo) {
  if (AGuid.empty() || !AInfo.FGUID.empty()) return;
  AInfo.FGUID = AGuid;
  IndexGuid(AGuid, AInfo);
}

void TTemporaryList::AddKey(TTemporaryInfo::TKey AKey, TTemporaryInfo& AInfo) {
  if (AInfo.AddKey(std::move(AKey)) && FHasKeyIndex) IndexKeyText(AInfo.FKeys.back().Text, AInfo.FPosition);
}

void TTemporaryList::Remove(TTemporaryInfo& AInfo) { FInfos[AInfo.FPosition].reset(); }

void TTemporaryList::Clear() {
  FByGuid.Clear();
  FByName.Clear();
  FByKeyEnd.clear();
  FKeyAnswers.clear();
  FByDigits.clear();
  FByPair.Clear();
  FInfos.clear();
  FHasKeyIndex = FHasDigitIndex = FHasPairIndex = false;
}

TTemporaryInfo* TTemporaryList::Find(std::u16string_view AGuid, std::u16string_view AName) const {
  const TPosition* const found = FByGuid.Find(AGuid);
  if (found != nullptr && FInfos[*found]) return FInfos[*found].get();
  if (AName.empty()) return nullptr;
  return FirstUnder(FByName, AName);
}

TTemporaryInfo* TTemporaryList::FindByRegistryKey(std::u16string_view AEnd) {
  if (!FHasKeyIndex) {
    FHasKeyIndex = true;
    ForEach([this](const TTemporaryInfo& AInfo) {
      for (const TTemporaryInfo::TKey& key : AInfo.FKeys) IndexKeyText(key.Text, AInfo.FPosition);
    });
  }
  std::u16string reversed = Reversed(AEnd);
  // an answer stays the first one for as long as its record is listed: records found later stand behind it, and
  // IndexKeyText corrects it when an earlier record gains a key
  if (const auto known = FKeyAnswers.find(reversed); known != FKeyAnswers.end() && FInfos[known->second]) {
    return FInfos[known->second].get();
  }
  TTemporaryInfo* const first = FirstWithPrefix(FByKeyEnd, reversed);
  if (first != nullptr) FKeyAnswers.insert_or_assign(std::move(reversed), first->FPosition);
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
    ForEach([this](const TTemporaryInfo& AInfo) {
      IndexDigits(AInfo.FDisplayName, AInfo.FPosition);
      IndexDigits(AInfo.FInternalName, AInfo.FPosition);
    });
  }
  return FirstWithPrefix(FByDigits, ANumber);
}

TTemporaryInfo* TTemporaryList::FindByNameAndGuid(std::u16string_view AName, std::u16string_view AGuid) {
  if (!FHasPairIndex) {
    FHasPairIndex = true;
    ForEach([this](const TTemporaryInfo& AInfo) {
      AddUnder(FByPair, PairKey(AInfo.FDisplayName, AInfo.FGUID), AInfo.FPosition);
    });
  }
  return FirstUnder(FByPair, PairKey(AName, AGuid));
}

TTemporaryInfo* TTemporaryList::FirstUnder(const TNameIndex& AIndex, std::u16string_view AKey) const {
  const TFewOf<TPosition>* const found = AIndex.Find(AKey);
  if (found == nullptr) return nullptr;
  const TPosition* const position = found->Find([this](TPosition APosition) { return FInfos[APosition] != nullptr; });
  return position == nullptr ? nullptr : FInfos[*position].get();
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
