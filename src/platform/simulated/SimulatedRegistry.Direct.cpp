// Changes of the simulated registry: their effects, their log, and the direct access without handles.
#include <utility>

#include "platform/simulated/SimulatedRegistry.Parts.h"
#include "support/uExceptions.h"

namespace varcolin {

// A change of the key's own subkeys or values: its time, and all who watch it or what it lies in.
void TSimulatedRegistry::NoteChange(TRegistryNode& ANode, std::uint32_t AFilter) {
  ANode.LastWriteTime = FClock.Now();
  ++ANode.Version;
  for (const TRegistryNode* node = &ANode; node != nullptr && !FWatches.empty(); node = node->Parent) {
    const auto [first, last] = FWatches.equal_range(node);
    for (auto watch = first; watch != last;) {
      const bool concerned = (node == &ANode || watch->second.Subtree) && (watch->second.Filter & AFilter) != 0;
      if (concerned) FSync.SignalShared(*watch->second.Signal);
      watch = concerned ? FWatches.erase(watch) : std::next(watch);
    }
  }
}

// Signals the watches that one handle (0: any) has on a key, and ends them.
void TSimulatedRegistry::SignalWatches(const TRegistryNode& ANode, std::uintptr_t AKey) {
  const auto [first, last] = FWatches.equal_range(&ANode);
  for (auto watch = first; watch != last;) {
    const bool concerned = AKey == 0 || watch->second.Key == AKey;
    if (concerned) FSync.SignalShared(*watch->second.Signal);
    watch = concerned ? FWatches.erase(watch) : std::next(watch);
  }
}

// Takes a key without subkeys out of the tree; open handles keep it in memory.
void TSimulatedRegistry::DropChild(TRegistryNode& AParent, std::u16string_view AName) {
  TRegistryNodePtr node = AParent.TakeChild(AName);
  node->Removed = true;
  node->Values.Clear();
  ++node->Version;
  SignalWatches(*node, 0);
  const TRegistryNode* key = node.get();
  if (node->Handles != 0) FRemoved.emplace(key, std::move(node));
}

// Whether links were among what it dropped.
bool TSimulatedRegistry::DropSubtree(TRegistryNode& ANode) {
  bool links = false;
  while (ANode.ChildCount() != 0) {
    TRegistryNode& child = ANode.ChildAt(ANode.ChildCount() - 1);
    links = DropSubtree(child) || child.Target || links;
    DropChild(ANode, child.Name());
  }
  return links;
}

void TSimulatedRegistry::Log(ERegistryChange AKind, const TRegistryNode& ANode, std::u16string_view AName) {
  FChanges.push_back({AKind, FullName(ANode), std::u16string(AName)});
}

std::vector<TRegistryChange> TSimulatedRegistry::Changes() {
  const std::lock_guard lock(FMutex);
  return FChanges;
}

void TSimulatedRegistry::ClearChanges() {
  const std::lock_guard lock(FMutex);
  FChanges.clear();
}

namespace {

void CheckValue(std::u16string_view AName, std::span<const std::byte> AData) {
  if (AName.size() > TStoredValue::MaxNameLength) throw Exception(u"a value name is longer than 16383 characters");
  if (AData.size() > 0xFFFFFFFF) throw Exception(u"a value is larger than 4 GB");
}

}  // namespace

void TSimulatedRegistry::AddKey(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  static_cast<void>(MakeDirect(APath, EMissing::AddOther));
}

void TSimulatedRegistry::SetValueAt(std::u16string_view APath, std::u16string_view AName, std::uint32_t AType,
                                    std::span<const std::byte> AData) {
  CheckValue(AName, AData);
  const std::lock_guard lock(FMutex);
  TRegistryNode& node = MakeDirect(APath, EMissing::AddOther);
  node.Values.Set(AName, AType, AData);
  NoteChange(node, RegNotify::ChangeLastSet);
}

void TSimulatedRegistry::SetTextAt(std::u16string_view APath, std::u16string_view AName, std::u16string_view AText,
                                   std::uint32_t AType) {
  const std::u16string text(AText);
  SetValueAt(APath, AName, AType, std::as_bytes(std::span(text.c_str(), text.size() + 1)));
}

void TSimulatedRegistry::SetDwordAt(std::u16string_view APath, std::u16string_view AName, std::uint32_t AValue) {
  SetValueAt(APath, AName, RegType::Dword, std::as_bytes(std::span(&AValue, 1)));
}

bool TSimulatedRegistry::RemoveValueAt(std::u16string_view APath, std::u16string_view AName) {
  const std::lock_guard lock(FMutex);
  TRegistryNode* node = FindDirect(APath);
  if (node == nullptr || !node->Values.Remove(AName)) return false;
  NoteChange(*node, RegNotify::ChangeLastSet);
  return true;
}

bool TSimulatedRegistry::RemoveTree(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  TRegistryNode* node = FindDirect(APath);
  if (node == nullptr) return false;
  if (node->Parent == nullptr || node->Parent == FRoot.get()) throw Exception(u"a root key cannot be removed");
  const bool links = DropSubtree(*node);
  if (IsFixed(*node)) {
    node->Values.Clear();  // a mounted hive stays, empty
    NoteChange(*node, RegNotify::ChangeName | RegNotify::ChangeLastSet);
  } else {
    TRegistryNode& parent = *node->Parent;
    DropChild(parent, node->Name());
    NoteChange(parent, RegNotify::ChangeName);
  }
  if (links) AddFixedLinks();
  return true;
}

bool TSimulatedRegistry::HasKey(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  return FindDirect(APath) != nullptr;
}

bool TSimulatedRegistry::ValueAt(std::u16string_view APath, std::u16string_view AName, TRegistryValue& AValue) {
  const std::lock_guard lock(FMutex);
  const TRegistryNode* node = FindDirect(APath);
  const TStoredValue* stored = node == nullptr ? nullptr : node->Values.Find(AName);
  if (stored == nullptr) return false;
  AValue.Name = stored->Name();
  AValue.Type = stored->Type();
  AValue.Data.assign(stored->Data().begin(), stored->Data().end());
  return true;
}

void TSimulatedRegistry::SetLastWriteTime(std::u16string_view APath, TFileTime ATime) {
  const std::lock_guard lock(FMutex);
  if (TRegistryNode* node = FindDirect(APath)) node->LastWriteTime = ATime;
}

void TSimulatedRegistry::DenyAccess(std::u16string_view APath, std::uint32_t ARights) {
  const std::lock_guard lock(FMutex);
  MakeDirect(APath, EMissing::AddOther).DeniedRights = ARights;
}

TDirectKey TSimulatedRegistry::LoadKey(std::u16string_view APath) {
  const std::lock_guard lock(FMutex);
  return TDirectKey(MakeDirect(APath, EMissing::Load));
}

void TSimulatedRegistry::LoadValue(TDirectKey AKey, std::u16string_view AName, std::uint32_t AType,
                                   std::span<const std::byte> AData) {
  CheckValue(AName, AData);
  const std::lock_guard lock(FMutex);
  AKey.FNode->Values.Set(AName, AType, AData);
  ++AKey.FNode->Version;
}

void TSimulatedRegistry::UnloadValue(TDirectKey AKey, std::u16string_view AName) {
  const std::lock_guard lock(FMutex);
  AKey.FNode->Values.Remove(AName);
  ++AKey.FNode->Version;
}

void TSimulatedRegistry::SetLastWriteTime(TDirectKey AKey, TFileTime ATime) {
  const std::lock_guard lock(FMutex);
  AKey.FNode->LastWriteTime = ATime;
}

}  // namespace varcolin
