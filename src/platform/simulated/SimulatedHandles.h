// The open handles of one simulated facility.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <unordered_map>
#include <utility>

namespace varcolin {

/// Objects by handle value. Values are never used again, so a stale handle finds nothing. No lock of its own.
template <class T>
class THandleTable {
 public:
  /// AFirst keeps the values of different tables apart.
  explicit THandleTable(std::uintptr_t AFirst) noexcept : FNext(AFirst) {}

  std::uintptr_t Add(T AObject) {
    const std::uintptr_t value = FNext;
    FObjects.emplace(value, std::move(AObject));
    FNext += 4;
    return value;
  }
  /// Null for a value that is no open handle.
  [[nodiscard]] T* Find(std::uintptr_t AValue) noexcept {
    const auto found = FObjects.find(AValue);
    return found == FObjects.end() ? nullptr : &found->second;
  }
  void Remove(std::uintptr_t AValue) noexcept { FObjects.erase(AValue); }
  [[nodiscard]] std::size_t Count() const noexcept { return FObjects.size(); }
  template <class TPredicate>
  [[nodiscard]] std::size_t CountIf(TPredicate APredicate) const {
    return static_cast<std::size_t>(
        std::ranges::count_if(FObjects, [&](const auto& AEntry) { return APredicate(AEntry.second); }));
  }

 private:
  std::unordered_map<std::uintptr_t, T> FObjects;
  std::uintptr_t FNext;
};

}  // namespace varcolin
