#include "platform/simulated/RegistryTree.h"

#include <algorithm>
#include <cstring>
#include <utility>

#include "support/uText.h"

namespace varcolin {

namespace {

/// Memory that a key takes with its name.
constexpr std::size_t BlockSize(std::size_t ANameLength) noexcept {
  return sizeof(TRegistryNode) + ANameLength * sizeof(char16_t);
}

}  // namespace

void TDisposeValue::operator()(TStoredValue* AValue) const noexcept {
  const std::size_t size = AValue->BlockSize();
  std::destroy_at(AValue);
  std::allocator<std::byte>().deallocate(reinterpret_cast<std::byte*>(AValue), size);
}

TStoredValuePtr TStoredValue::Make(std::u16string_view AName, std::uint32_t AType, std::span<const std::byte> AData,
                                   std::uint32_t ASequence) {
  const std::size_t nameSize = AName.size() * sizeof(char16_t);
  std::byte* block = std::allocator<std::byte>().allocate(sizeof(TStoredValue) + nameSize + AData.size());
  TStoredValuePtr value(::new (static_cast<void*>(block)) TStoredValue(
      AType, static_cast<std::uint32_t>(AData.size()), ASequence, static_cast<std::uint16_t>(AName.size())));
  block += sizeof(TStoredValue);
  if (nameSize != 0) std::memcpy(block, AName.data(), nameSize);
  if (!AData.empty()) std::memcpy(block + nameSize, AData.data(), AData.size());
  return value;
}

bool TStoredValue::Overwrite(std::uint32_t AType, std::span<const std::byte> AData) noexcept {
  if (AData.size() != FDataSize) return false;
  FType = AType;
  std::byte* data = reinterpret_cast<std::byte*>(this + 1) + FNameLength * sizeof(char16_t);
  if (!AData.empty()) std::memmove(data, AData.data(), AData.size());
  return true;
}

int TValueList::TCompareNames::operator()(const TStoredValue* AValue, std::u16string_view AName) const noexcept {
  return CompareText(AValue->Name(), AName);
}

const TStoredValue* TValueList::Find(std::u16string_view AName) const {
  if (FIndex) {
    const TStoredValue* const* found = FIndex->Find(AName);
    return found == nullptr ? nullptr : *found;
  }
  for (const TStoredValuePtr& item : FItems) {
    if (item->Name().size() == AName.size() && SameText(item->Name(), AName)) return item.get();
  }
  return nullptr;
}

std::size_t TValueList::PositionOf(const TStoredValue& AValue) const {
  const auto found = std::partition_point(FItems.begin(), FItems.end(), [&](const TStoredValuePtr& AItem) {
    return AItem->Sequence() < AValue.Sequence();
  });
  return static_cast<std::size_t>(found - FItems.begin());
}

void TValueList::Set(std::u16string_view AName, std::uint32_t AType, std::span<const std::byte> AData) {
  if (const TStoredValue* found = Find(AName)) {
    TStoredValuePtr& item = FItems[PositionOf(*found)];
    if (item->Overwrite(AType, AData)) return;
    TStoredValuePtr fresh = TStoredValue::Make(item->Name(), AType, AData, item->Sequence());
    if (FIndex) *FIndex->Find(AName) = fresh.get();
    item = std::move(fresh);
    return;
  }
  FItems.push_back(TStoredValue::Make(AName, AType, AData, ++FLastSequence));
  if (FIndex) {
    FIndex->Insert(AName, FItems.back().get());
  } else if (FItems.size() == IndexFrom) {
    FIndex = std::make_unique<TIndex>();
    for (const TStoredValuePtr& item : FItems) FIndex->Insert(item->Name(), item.get());
  }
}

bool TValueList::Remove(std::u16string_view AName) {
  const TStoredValue* found = Find(AName);
  if (found == nullptr) return false;
  if (FIndex) FIndex->Take(AName);
  FItems.erase(FItems.begin() + static_cast<std::ptrdiff_t>(PositionOf(*found)));
  return true;
}

void TValueList::Clear() noexcept {
  FIndex.reset();
  FItems.clear();
}

void TDisposeNode::operator()(TRegistryNode* ANode) const noexcept {
  std::pmr::memory_resource& memory = ANode->FMemory;
  const std::size_t size = BlockSize(ANode->FNameLength);
  std::destroy_at(ANode);
  memory.deallocate(ANode, size, alignof(TRegistryNode));
}

TRegistryNodePtr TRegistryNode::Make(std::pmr::memory_resource& AMemory, TRegistryNode* AParent,
                                     std::u16string_view AName, TFileTime ATime) {
  void* const block = AMemory.allocate(BlockSize(AName.size()), alignof(TRegistryNode));
  TRegistryNodePtr node(::new (block) TRegistryNode(AMemory, AParent, AName.size(), ATime));
  std::ranges::copy(AName, reinterpret_cast<char16_t*>(node.get() + 1));
  return node;
}

int TRegistryNode::TCompareNames::operator()(const TRegistryNodePtr& AChild, std::u16string_view AName) const noexcept {
  return CompareText(AChild->Name(), AName);
}

TRegistryNode* TRegistryNode::FindChild(std::u16string_view AName) const {
  if (!FChildren) return nullptr;
  const TRegistryNodePtr* found = FChildren->Sorted.Find(AName);
  return found == nullptr ? nullptr : found->get();
}

std::size_t TRegistryNode::LongestChildName() const {
  if (!FChildren) return 0;
  if (!FChildren->LongestName) {
    std::size_t longest = 0;
    ForEachChild([&](const TRegistryNode& AChild) { longest = std::max(longest, AChild.Name().size()); });
    FChildren->LongestName = longest;
  }
  return *FChildren->LongestName;
}

TRegistryNode& TRegistryNode::AddChild(std::u16string_view AName, TFileTime ATime) {
  auto child = Make(FMemory, this, AName, ATime);
  TRegistryNode& result = *child;
  if (!FChildren) FChildren = std::make_unique<TChildren>();
  FChildren->Sorted.Insert(AName, std::move(child));
  if (FChildren->LongestName) FChildren->LongestName = std::max(*FChildren->LongestName, AName.size());
  ++Version;
  return result;
}

TRegistryNodePtr TRegistryNode::TakeChild(std::u16string_view AName) {
  ++Version;
  TRegistryNodePtr child = FChildren->Sorted.Take(AName);
  if (FChildren->LongestName == child->Name().size()) FChildren->LongestName.reset();
  child->Parent = nullptr;
  return child;
}

}  // namespace varcolin
