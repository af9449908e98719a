// Handles and calls of the simulated registry.
#include "platform/simulated/SimulatedRegistry.h"

#include <algorithm>
#include <limits>
#include <utility>

#include "platform/simulated/SimulatedRegistry.Parts.h"
#include "support/uText.h"

namespace varcolin {

namespace {

constexpr std::uint32_t MaximumAllowed = 0x02000000;

// The rights that generic rights stand for.
std::uint32_t SpecificRights(std::uint32_t AAccess, std::uint32_t ADenied) {
  constexpr std::pair<std::uint32_t, std::uint32_t> Generic[] = {{0x80000000, KeyAccess::Read},
                                                                 {0x40000000, KeyAccess::Write},
                                                                 {0x20000000, KeyAccess::Read},
                                                                 {0x10000000, KeyAccess::AllAccess}};
  std::uint32_t rights = AAccess & ~KeyAccess::ViewMask;
  for (const auto& [generic, specific] : Generic) {
    if ((rights & generic) != 0) rights = (rights & ~generic) | specific;
  }
  if ((rights & MaximumAllowed) != 0) rights = (rights & ~MaximumAllowed) | (KeyAccess::AllAccess & ~ADenied);
  return rights;
}

void Read(const TStoredValue& AStored, TRegistryValue& AValue) {
  const auto data = AStored.Data();
  AValue.Type = AStored.Type();
  AValue.Data.assign(data.begin(), data.end());
}

}  // namespace

TSimulatedRegistry::TSimulatedRegistry(TSimulatedClock& AClock, TSimulatedSync& ASync, TSimulatedRegistryFacts AFacts)
    : FClock(AClock), FSync(ASync), FFacts([&] {
        TSimulatedRegistryFacts facts = std::move(AFacts);
        if (facts.UserSid.empty()) facts.UserSid = u".DEFAULT";
        return facts;
      }()) {
  BuildFixedKeys();
}

TSimulatedRegistry::~TSimulatedRegistry() = default;

// Opens what was found; AHandle stays on failure.
TWinError TSimulatedRegistry::Grant(TPosition& AFound, std::uint32_t AAccess, std::uintptr_t& AHandle) {
  const std::uint32_t denied = AFound.Node->DeniedRights;
  const std::uint32_t rights = SpecificRights(AAccess, denied);
  if ((rights & denied & ~KeyRight::ReadControl) != 0) return WinError::AccessDenied;
  if (AFound.Shadow != nullptr && (rights & AFound.Shadow->DeniedRights & ~KeyRight::ReadControl) != 0) {
    AFound.Shadow = nullptr;
  }
  TOpenKey open{AFound.Node, AFound.Shadow, rights, AFound.View32, false, false, 0, nullptr};
  if (AFound.Merged) {
    open.Merged = std::make_unique<TMergedView>();
    open.Merged->Path = std::move(AFound.MergedPath);
  }
  ++AFound.Node->Handles;
  if (AFound.Shadow != nullptr) ++AFound.Shadow->Handles;
  AHandle = FLastHandle += 4;
  FOpen.emplace(AHandle, std::move(open));
  return WinError::Success;
}

TWinError TSimulatedRegistry::OpenKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                      TRegistryKey& AKey) {
  std::uintptr_t handle = 0;
  {
    const std::lock_guard lock(FMutex);
    TPosition found;
    TWinError error = Locate(ABase, APath, AAccess, EMissing::Fail, found);
    if (error == WinError::Success) error = Grant(found, AAccess, handle);
    if (error != WinError::Success) return error;
  }
  AKey = TRegistryKey(*this, handle);  // outside the lock: this may close the key that was there
  return WinError::Success;
}

TWinError TSimulatedRegistry::CreateKeyPath(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                            TRegistryKey& AKey, bool& ACreated) {
  std::uintptr_t handle = 0;
  TPosition found;
  {
    const std::lock_guard lock(FMutex);
    TWinError error = Locate(ABase, APath, AAccess, EMissing::Create, found);
    if (error == WinError::Success) error = Grant(found, AAccess, handle);
    if (error != WinError::Success) return error;
  }
  AKey = TRegistryKey(*this, handle);
  ACreated = found.Created;
  return WinError::Success;
}

void TSimulatedRegistry::CloseValue(TRegistryKeyTag, std::uintptr_t AKey) noexcept {
  const std::lock_guard lock(FMutex);
  const auto found = FOpen.find(AKey);
  if (found == FOpen.end()) return;
  for (TRegistryNode* node : {found->second.Node, found->second.Shadow}) {
    if (node == nullptr) continue;
    SignalWatches(*node, AKey);
    if (--node->Handles == 0 && node->Removed) FRemoved.erase(node);
  }
  FOpen.erase(found);
}

TWinError TSimulatedRegistry::Access(const TRegistryKey& AKey, std::uint32_t ARight, TOpenKey*& AOpen) {
  const auto found = FOpen.find(AKey.Value());
  if (found == FOpen.end()) return WinError::InvalidHandle;
  if ((found->second.Access & ARight) == 0) return WinError::AccessDenied;
  if (found->second.Node->Removed) return WinError::KeyDeleted;
  AOpen = &found->second;
  if (AOpen->Shadow != nullptr) Merge(*AOpen);
  return WinError::Success;
}

// Brings the merged lists of a key that user and machine both have up to date.
void TSimulatedRegistry::Merge(TOpenKey& AOpen) {
  const TRegistryNode& first = *AOpen.Node;
  const TRegistryNode& second = *AOpen.Shadow;
  TMergedView& view = *AOpen.Merged;
  if (view.Valid && view.NodeVersion == first.Version && view.ShadowVersion == second.Version) return;
  view.Valid = true;
  view.NodeVersion = first.Version;
  view.ShadowVersion = second.Version;
  view.Keys.clear();
  first.ForEachChild([&](const TRegistryNode& AChild) { view.Keys.push_back(&AChild); });
  const auto middle = static_cast<std::ptrdiff_t>(view.Keys.size());
  second.ForEachChild([&](const TRegistryNode& AChild) {
    if (first.FindChild(AChild.Name()) == nullptr) view.Keys.push_back(&AChild);
  });
  std::inplace_merge(view.Keys.begin(), view.Keys.begin() + middle, view.Keys.end(),
                     [](const TRegistryNode* AFirst, const TRegistryNode* ASecond) {
                       return CompareText(AFirst->Name(), ASecond->Name()) < 0;
                     });
  view.Values.clear();
  for (std::size_t i = 0; i < first.Values.Count(); ++i) view.Values.push_back(&first.Values.At(i));
  for (std::size_t i = 0; i < second.Values.Count(); ++i) {
    const TStoredValue& value = second.Values.At(i);
    if (first.Values.Find(value.Name()) == nullptr) view.Values.push_back(&value);
  }
}

TWinError TSimulatedRegistry::QueryKeyInfo(const TRegistryKey& AKey, TRegistryKeyInfo& AInfo) {
  const std::lock_guard lock(FMutex);
  TOpenKey* open = nullptr;
  if (const TWinError error = Access(AKey, KeyAccess::QueryValue, open); error != WinError::Success) return error;
  TRegistryKeyInfo info;
  const auto countValue = [&](const TStoredValue& AValue) {
    ++info.ValueCount;
    info.MaxValueNameLength = std::max(info.MaxValueNameLength, static_cast<std::uint32_t>(AValue.Name().size()));
    info.MaxValueDataSize = std::max(info.MaxValueDataSize, static_cast<std::uint32_t>(AValue.Data().size()));
  };
  if (open->Shadow != nullptr) {
    info.SubKeyCount = static_cast<std::uint32_t>(open->Merged->Keys.size());
    for (const TRegistryNode* key : open->Merged->Keys) {
      info.MaxSubKeyLength = std::max(info.MaxSubKeyLength, static_cast<std::uint32_t>(key->Name().size()));
    }
    for (const TStoredValue* value : open->Merged->Values) countValue(*value);
  } else {
    info.SubKeyCount = static_cast<std::uint32_t>(open->Node->ChildCount());
    info.MaxSubKeyLength = static_cast<std::uint32_t>(open->Node->LongestChildName());
    for (std::size_t i = 0; i < open->Node->Values.Count(); ++i) countValue(open->Node->Values.At(i));
  }
  info.LastWriteTime = open->Node->LastWriteTime;
  AInfo = info;
  return WinError::Success;
}

TWinError TSimulatedRegistry::EnumKey(const TRegistryKey& AKey, std::uint32_t AIndex, std::u16string& AName) {
  const std::lock_guard lock(FMutex);
  TOpenKey* open = nullptr;
  if (const TWinError error = Access(AKey, KeyRight::EnumerateSubKeys, open); error != WinError::Success) return error;
  const bool merged = open->Shadow != nullptr;
  if (AIndex >= (merged ? open->Merged->Keys.size() : open->Node->ChildCount())) return WinError::NoMoreItems;
  AName = merged ? open->Merged->Keys[AIndex]->Name() : open->Node->ChildAt(AIndex).Name();
  return WinError::Success;
}

TWinError TSimulatedRegistry::EnumValue(const TRegistryKey& AKey, std::uint32_t AIndex, TRegistryValue& AValue) {
  const std::lock_guard lock(FMutex);
  TOpenKey* open = nullptr;
  if (const TWinError error = Access(AKey, KeyAccess::QueryValue, open); error != WinError::Success) return error;
  const bool merged = open->Shadow != nullptr;
  const TValueList& values = open->Node->Values;
  if (AIndex >= (merged ? open->Merged->Values.size() : values.Count())) return WinError::NoMoreItems;
  const TStoredValue& stored = merged ? *open->Merged->Values[AIndex] : values.At(AIndex);
  AValue.Name = stored.Name();
  Read(stored, AValue);
  return WinError::Success;
}

TWinError TSimulatedRegistry::QueryValue(const TRegistryKey& AKey, std::u16string_view AName, TRegistryValue& AValue) {
  if (HasNul(AName)) return WinError::InvalidParameter;
  const std::lock_guard lock(FMutex);
  TOpenKey* open = nullptr;
  if (const TWinError error = Access(AKey, KeyAccess::QueryValue, open); error != WinError::Success) return error;
  const TStoredValue* stored = open->Node->Values.Find(AName);
  if (stored == nullptr && open->Shadow != nullptr) stored = open->Shadow->Values.Find(AName);
  if (stored == nullptr) return WinError::FileNotFound;
  AValue.Name = AName;
  Read(*stored, AValue);
  return WinError::Success;
}

TWinError TSimulatedRegistry::SetValue(const TRegistryKey& AKey, std::u16string_view AName, std::uint32_t AType,
                                       const void* AData, std::size_t ASize) {
  if (HasNul(AName) || AName.size() > TStoredValue::MaxNameLength ||
      ASize > std::numeric_limits<std::uint32_t>::max() || (AData == nullptr && ASize != 0)) {
    return WinError::InvalidParameter;
  }
  const std::lock_guard lock(FMutex);
  TOpenKey* open = nullptr;
  if (const TWinError error = Access(AKey, KeyRight::SetValue, open); error != WinError::Success) return error;
  open->Node->Values.Set(AName, AType, {static_cast<const std::byte*>(AData), ASize});
  Log(ERegistryChange::ValueSet, *open->Node, AName);
  NoteChange(*open->Node, RegNotify::ChangeLastSet);
  return WinError::Success;
}

TWinError TSimulatedRegistry::RemoveValue(const TRegistryKey& AKey, std::u16string_view AName) {
  if (HasNul(AName)) return WinError::InvalidParameter;
  const std::lock_guard lock(FMutex);
  TOpenKey* open = nullptr;
  if (const TWinError error = Access(AKey, KeyRight::SetValue, open); error != WinError::Success) return error;
  if (!open->Node->Values.Remove(AName)) return WinError::FileNotFound;
  Log(ERegistryChange::ValueRemoved, *open->Node, AName);
  NoteChange(*open->Node, RegNotify::ChangeLastSet);
  return WinError::Success;
}

TWinError TSimulatedRegistry::RemoveKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AView) {
  const std::lock_guard lock(FMutex);
  TPosition found;
  const TWinError error = Locate(ABase, APath, AView & KeyAccess::ViewMask, EMissing::Fail, found);
  if (error != WinError::Success) return error;
  TRegistryNode& node = *found.Node;
  if (IsFixed(node) || node.ChildCount() != 0 || (node.DeniedRights & KeyRight::Remove) != 0) {
    return WinError::AccessDenied;
  }
  Log(ERegistryChange::KeyRemoved, node, {});
  TRegistryNode& parent = *node.Parent;
  DropChild(parent, node.Name());
  NoteChange(parent, RegNotify::ChangeName);
  return WinError::Success;
}

TWinError TSimulatedRegistry::NotifyChange(const TRegistryKey& AKey, bool ASubtree, std::uint32_t AFilter,
                                           const TEvent& AEvent) {
  const auto signal = FSync.ShareEvent(AEvent);
  if (!signal) return WinError::InvalidHandle;
  const std::lock_guard lock(FMutex);
  TOpenKey* open = nullptr;
  if (const TWinError error = Access(AKey, KeyAccess::Notify, open); error != WinError::Success) return error;
  if (!open->Watching) {
    open->Watching = true;
    open->WatchSubtree = ASubtree;
    open->WatchFilter = AFilter;
  }
  for (const TRegistryNode* node : {open->Node, open->Shadow}) {
    if (node == nullptr || node->Removed) continue;
    const auto [first, last] = FWatches.equal_range(node);
    const bool pending = std::any_of(first, last, [&](const auto& AEntry) {
      return AEntry.second.Key == AKey.Value() && AEntry.second.Signal == signal;
    });
    if (!pending) FWatches.emplace(node, TWatch{AKey.Value(), open->WatchSubtree, open->WatchFilter, signal});
  }
  return WinError::Success;
}

std::size_t TSimulatedRegistry::OpenHandleCount() {
  const std::lock_guard lock(FMutex);
  return FOpen.size();
}

}  // namespace varcolin
