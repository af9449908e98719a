// A list that mostly has one element.
#pragma once

#include <algorithm>
#include <memory>
#include <string_view>
#include <vector>

#include "support/uTextMap.h"

namespace varcolin {

/// One element or more, in the order added. The first takes no memory of its own: indexes whose keys are nearly always
/// unique keep one of these for each key.
template <class T>
class TFewOf {
 public:
  explicit TFewOf(T AFirst) : FFirst(AFirst) {}

  [[nodiscard]] const T& First() const noexcept { return FFirst; }
  void Add(T AElement) {
    if (!FLater) FLater = std::make_unique<std::vector<T>>();
    FLater->push_back(AElement);
  }
  /// Removes an element; false, with nothing done, when it is the only one.
  [[nodiscard]] bool Remove(const T& AElement) {
    if (FFirst == AElement) {
      if (!FLater || FLater->empty()) return false;
      FFirst = FLater->front();
      FLater->erase(FLater->begin());
    } else if (FLater) {
      std::erase(*FLater, AElement);
    }
    return true;
  }
  /// The first element of which AIsWanted is true; null when there is none.
  template <class TIsWanted>
  [[nodiscard]] const T* Find(TIsWanted AIsWanted) const {
    if (AIsWanted(FFirst)) return &FFirst;
    if (!FLater) return nullptr;
    const auto found = std::find_if(FLater->begin(), FLater->end(), AIsWanted);
    return found == FLater->end() ? nullptr : &*found;
  }

 private:
  T FFirst;
  std::unique_ptr<std::vector<T>> FLater;  ///< null while there is one
};

/// Adds an element to the list under a text of a map of such lists.
template <class T>
void AddUnder(TTextMap<TFewOf<T>>& AMap, std::u16string_view AText, T AElement) {
  const auto [list, isNew] = AMap.Add(AText, TFewOf<T>(AElement));
  if (!isNew) list->Add(AElement);
}

}  // namespace varcolin
