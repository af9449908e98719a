// The process-wide list of one class of product.
#pragma once

#include <algorithm>
#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "products/uItemProduct.h"
#include "support/uFewOf.h"
#include "support/uTextMap.h"

namespace varcolin {

/// Records in insertion order, with indexes by identity and by display name, so that no look-up walks the list. The
/// list shares ownership: a record that is taken out lives on for whoever still holds it. Operations take the lock by
/// themselves; it is re-entrant, so a caller may hold it over several of them.
template <class TItem>
class TProductList {
 public:
  using TPointer = std::shared_ptr<TItem>;

  void Lock() { FLock.lock(); }
  void Unlock() { FLock.unlock(); }
  [[nodiscard]] std::recursive_mutex& Mutex() noexcept { return FLock; }

  /// Number of records; takes no lock.
  [[nodiscard]] std::size_t Count() const noexcept { return FCount; }
  /// The record at an index; null when there is none.
  [[nodiscard]] TPointer At(std::size_t AIndex) {
    const std::lock_guard lock(FLock);
    return AIndex < FItems.size() ? FItems[AIndex] : nullptr;
  }
  /// The records as they stand now. A walk over the copy is safe whatever happens to the list meanwhile.
  [[nodiscard]] std::vector<TPointer> Snapshot() {
    const std::lock_guard lock(FLock);
    return FItems;
  }
  /// Makes room for so many records in all.
  void Expect(std::size_t ACount) {
    const std::lock_guard lock(FLock);
    FItems.reserve(ACount);
    FByIdentity.Reserve(ACount);
    FByDisplayName.Reserve(ACount);
  }
  /// Appends a record, whose identity and display name no longer change.
  void Append(TPointer AItem) {
    const std::lock_guard lock(FLock);
    const TItem* const item = AItem.get();
    AddUnder(FByIdentity, IdentityOf(*AItem), item);
    AddUnder(FByDisplayName, AItem->FDisplayName, item);
    FItems.push_back(std::move(AItem));
    FCount = FItems.size();
  }
  /// The first record with this identity; null when there is none.
  [[nodiscard]] TPointer Find(std::u16string_view AGuid, std::u16string_view AName, TTypeUninstallLocation ALocation) {
    const std::lock_guard lock(FLock);
    return First(FByIdentity, Identity(AGuid, AName, ALocation));
  }
  /// The first record with this package code; null when there is none. Records with a code are found by it alone.
  [[nodiscard]] TPointer FindByCode(std::u16string_view ACode, TTypeUninstallLocation ALocation) {
    const std::lock_guard lock(FLock);
    return First(FByIdentity, CodeIdentity(ACode, ALocation));
  }
  /// The first record with this display name; null when there is none.
  [[nodiscard]] TPointer FindByDisplayName(std::u16string_view AName) {
    const std::lock_guard lock(FLock);
    return First(FByDisplayName, AName);
  }
  /// Takes out every record that AIsGone names, asked from the last record to the first, in one pass. An exception of
  /// AIsGone leaves the list as far as it had been asked.
  void RemoveWhere(const std::function<bool(const TItem&)>& AIsGone) {
    std::vector<TPointer> removed;  // they go when the list is free again: the end of a record may take its time
    const std::lock_guard lock(FLock);
    std::vector<bool> gone(FItems.size());
    const auto sweep = [&] {
      std::size_t kept = 0;
      for (std::size_t index = 0; index < FItems.size(); ++index) {
        if (gone[index]) {
          Forget(*FItems[index]);
          removed.push_back(std::move(FItems[index]));
        } else {
          if (kept != index) FItems[kept] = std::move(FItems[index]);
          ++kept;
        }
      }
      FItems.resize(kept);
      FCount = kept;
    };
    try {
      for (std::size_t index = FItems.size(); index-- > 0;) gone[index] = AIsGone(*FItems[index]);
    } catch (...) {
      sweep();
      throw;
    }
    sweep();
  }
  /// Takes one record out; false when it is not in the list.
  bool Remove(const TItem& AItem) {
    TPointer removed;  // as above
    const std::lock_guard lock(FLock);
    const auto found =
        std::find_if(FItems.begin(), FItems.end(), [&](const auto& item) { return item.get() == &AItem; });
    if (found == FItems.end()) return false;
    Forget(AItem);
    removed = std::move(*found);
    FItems.erase(found);
    FCount = FItems.size();
    return true;
  }
  void Clear() {
    const std::lock_guard lock(FLock);
    FByIdentity.Clear();
    FByDisplayName.Clear();
    FItems.clear();
    FCount = 0;
  }

 private:
  using TIndex = TTextMap<TFewOf<const TItem*>>;

  [[nodiscard]] static std::u16string Identity(std::u16string_view AGuid, std::u16string_view AName,
                                               TTypeUninstallLocation ALocation) {
    std::u16string key(AGuid);
    key.push_back(u'\0');
    key.push_back(static_cast<char16_t>(u'0' + static_cast<int>(ALocation)));
    key.append(AName);
    return key;
  }
  /// No GUID begins with a NUL.
  [[nodiscard]] static std::u16string CodeIdentity(std::u16string_view ACode, TTypeUninstallLocation ALocation) {
    return Identity({u"\0code", 5}, ACode, ALocation);
  }
  [[nodiscard]] static std::u16string IdentityOf(const TItem& AItem) {
    if constexpr (requires { AItem.FPackageCode; }) {
      if (!AItem.FPackageCode.empty()) return CodeIdentity(AItem.FPackageCode, AItem.FLocation);
    }
    return Identity(AItem.FGUID, AItem.FDisplayNameNative, AItem.FLocation);
  }
  [[nodiscard]] TPointer First(const TIndex& AIndex, std::u16string_view AKey) const {
    const auto* const found = AIndex.Find(AKey);
    if (found == nullptr) return nullptr;
    const auto shared = found->First()->shared_from_this();
    return std::const_pointer_cast<TItem>(std::static_pointer_cast<const TItem>(shared));
  }
  void Forget(const TItem& AItem) {
    Unindex(FByIdentity, IdentityOf(AItem), AItem);
    Unindex(FByDisplayName, AItem.FDisplayName, AItem);
  }
  static void Unindex(TIndex& AIndex, std::u16string_view AKey, const TItem& AItem) {
    if (!AIndex.Find(AKey)->Remove(&AItem)) AIndex.Remove(AKey);
  }

  std::recursive_mutex FLock;
  std::vector<TPointer> FItems;
  TIndex FByIdentity;
  TIndex FByDisplayName;
  std::atomic<std::size_t> FCount{0};
};

}  // namespace varcolin
