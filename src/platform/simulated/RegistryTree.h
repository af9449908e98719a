// Keys and values of a simulated registry in memory, made small: a machine's whole registry is held at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <memory_resource>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Types.h"
#include "platform/simulated/OrderedList.h"

namespace varcolin {

class TStoredValue;
struct TDisposeValue {
  void operator()(TStoredValue* AValue) const noexcept;
};
using TStoredValuePtr = std::unique_ptr<TStoredValue, TDisposeValue>;

/// One value in one block of memory: this header, the name, the data.
class TStoredValue {
 public:
  static constexpr std::size_t MaxNameLength = 16383;

  /// AName has at most MaxNameLength units, AData less than 4 GB.
  [[nodiscard]] static TStoredValuePtr Make(std::u16string_view AName, std::uint32_t AType,
                                            std::span<const std::byte> AData, std::uint32_t ASequence);

  [[nodiscard]] std::u16string_view Name() const noexcept {
    return {reinterpret_cast<const char16_t*>(this + 1), FNameLength};
  }
  [[nodiscard]] std::span<const std::byte> Data() const noexcept {
    return {reinterpret_cast<const std::byte*>(this + 1) + FNameLength * sizeof(char16_t), FDataSize};
  }
  [[nodiscard]] std::uint32_t Type() const noexcept { return FType; }
  /// Grows from value to value of one key, in stored order.
  [[nodiscard]] std::uint32_t Sequence() const noexcept { return FSequence; }
  /// Takes new contents in place; false when their size differs.
  [[nodiscard]] bool Overwrite(std::uint32_t AType, std::span<const std::byte> AData) noexcept;

 private:
  friend struct TDisposeValue;
  TStoredValue(std::uint32_t AType, std::uint32_t ADataSize, std::uint32_t ASequence,
               std::uint16_t ANameLength) noexcept
      : FType(AType), FDataSize(ADataSize), FSequence(ASequence), FNameLength(ANameLength) {}
  [[nodiscard]] std::size_t BlockSize() const noexcept {
    return sizeof(*this) + FNameLength * sizeof(char16_t) + FDataSize;
  }

  std::uint32_t FType;
  std::uint32_t FDataSize;
  std::uint32_t FSequence;
  std::uint16_t FNameLength;
};

/// The values of one key, in stored order. Look-up is by name; an index exists from a certain number of values on.
class TValueList {
 public:
  [[nodiscard]] std::size_t Count() const noexcept { return FItems.size(); }
  [[nodiscard]] const TStoredValue& At(std::size_t AIndex) const { return *FItems[AIndex]; }
  /// Null when there is none.
  [[nodiscard]] const TStoredValue* Find(std::u16string_view AName) const;
  /// Adds a value at the end, or replaces the contents of one in its place.
  void Set(std::u16string_view AName, std::uint32_t AType, std::span<const std::byte> AData);
  /// Whether it was there.
  bool Remove(std::u16string_view AName);
  void Clear() noexcept;

 private:
  struct TCompareNames {
    int operator()(const TStoredValue* AValue, std::u16string_view AName) const noexcept;
  };
  using TIndex = TOrderedList<const TStoredValue*, TCompareNames>;
  static constexpr std::size_t IndexFrom = 24;

  [[nodiscard]] std::size_t PositionOf(const TStoredValue& AValue) const;

  std::vector<TStoredValuePtr> FItems;
  std::unique_ptr<TIndex> FIndex;
  std::uint32_t FLastSequence = 0;
};

struct TRegistryNode;
struct TDisposeNode {
  void operator()(TRegistryNode* ANode) const noexcept;
};
using TRegistryNodePtr = std::unique_ptr<TRegistryNode, TDisposeNode>;

/// One key, its name right behind it. All keys of a registry take their memory from one resource, which outlives them:
/// they lie close together, apart from the values, since a walk over the subkeys of a key touches them in an order of
/// its own.
struct TRegistryNode {
  static constexpr std::size_t MaxNameLength = 255;
  static constexpr std::size_t MaxDepth = 512;

  /// AName has at most MaxNameLength units.
  [[nodiscard]] static TRegistryNodePtr Make(std::pmr::memory_resource& AMemory, TRegistryNode* AParent,
                                             std::u16string_view AName, TFileTime ATime);

  [[nodiscard]] std::u16string_view Name() const noexcept {
    return {reinterpret_cast<const char16_t*>(this + 1), FNameLength};
  }

  /// Null when there is none.
  [[nodiscard]] TRegistryNode* FindChild(std::u16string_view AName) const;
  [[nodiscard]] std::size_t ChildCount() const noexcept { return FChildren ? FChildren->Sorted.Count() : 0; }
  [[nodiscard]] TRegistryNode& ChildAt(std::size_t AIndex) const { return *FChildren->Sorted.At(AIndex); }
  /// The length of the longest name of a child; 0 without children.
  [[nodiscard]] std::size_t LongestChildName() const;
  /// Adds a key that is not there yet.
  TRegistryNode& AddChild(std::u16string_view AName, TFileTime ATime);
  /// Removes a key that is there.
  [[nodiscard]] TRegistryNodePtr TakeChild(std::u16string_view AName);
  template <class TVisitor>
  void ForEachChild(TVisitor AVisitor) const {
    if (FChildren) FChildren->Sorted.ForEach([&](const TRegistryNodePtr& AChild) { AVisitor(*AChild); });
  }

  TRegistryNode* Parent;  ///< null for the root and for a removed key
  TValueList Values;
  TFileTime LastWriteTime;
  std::uint32_t Version = 0;       ///< grows with every change of the key's own subkeys and values
  std::uint32_t DeniedRights = 0;  ///< access rights that nobody gets
  std::uint32_t Handles = 0;       ///< open handles; they keep a removed key in memory
  bool Removed = false;
  /// For a symbolic link the path of its target from the root; the link has nothing else.
  std::unique_ptr<const std::u16string> Target;

 private:
  friend struct TDisposeNode;
  struct TCompareNames {
    int operator()(const TRegistryNodePtr& AChild, std::u16string_view AName) const noexcept;
  };

  struct TChildren {
    TOrderedList<TRegistryNodePtr, TCompareNames> Sorted;
    std::optional<std::size_t> LongestName = 0;  ///< none when it is to be found out anew
  };

  TRegistryNode(std::pmr::memory_resource& AMemory, TRegistryNode* AParent, std::size_t ANameLength,
                TFileTime ATime) noexcept
      : Parent(AParent), LastWriteTime(ATime), FMemory(AMemory), FNameLength(ANameLength) {}

  std::pmr::memory_resource& FMemory;
  const std::size_t FNameLength;
  std::unique_ptr<TChildren> FChildren;  ///< null until the first: most keys have none
};

}  // namespace varcolin
