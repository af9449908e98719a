// A list that mostly has one element.
#pragma once

#include <algorithm>
#include <vector>

namespace varcolin {

/// One element or more, in the order added. The first takes no memory of its own: indexes whose keys are nearly always
/// unique keep one of these for each key.
template <class T>
class TFewOf {
 public:
  explicit TFewOf(T AFirst) : FFirst(AFirst) {}

  [[nodiscard]] const T& First() const noexcept { return FFirst; }
  void Add(T AElement) { FLater.push_back(AElement); }
  /// Removes an element; false, with nothing done, when it is the only one.
  [[nodiscard]] bool Remove(const T& AElement) {
    if (FFirst == AElement) {
      if (FLater.empty()) return false;
      FFirst = FLater.front();
      FLater.erase(FLater.begin());
    } else {
      std::erase(FLater, AElement);
    }
    return true;
  }
  /// The first element of which AIsWanted is true; null when there is none.
  template <class TIsWanted>
  [[nodiscard]] const T* Find(TIsWanted AIsWanted) const {
    if (AIsWanted(FFirst)) return &FFirst;
    const auto found = std::find_if(FLater.begin(), FLater.end(), AIsWanted);
    return found == FLater.end() ? nullptr : &*found;
  }

 private:
  T FFirst;
  std::vector<T> FLater;
};

/// Adds an element to the list under a key of a map of such lists.
template <class TMap, class TKey, class T>
void AddUnder(TMap& AMap, TKey&& AKey, T AElement) {
  const auto [entry, isNew] = AMap.try_emplace(std::forward<TKey>(AKey), AElement);
  if (!isNew) entry->second.Add(AElement);
}

}  // namespace varcolin
