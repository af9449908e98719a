// The two image lists of one class of product.
#pragma once

#include <string>
#include <string_view>

#include "platform/Icons.h"

namespace varcolin {

/// A 16x16 and a 32x32 image list whose indices agree. Filled and read on one thread at a time; the handles may be read
/// on any thread.
class TIconLists {
 public:
  /// Creates both lists, empty. Raises EOSError when the system refuses.
  explicit TIconLists(IIcons& AIcons);

  /// Appends one icon resource of the library to the small list and one to the large list.
  void AppendOwn(std::u16string_view ASmallName, std::u16string_view ALargeName);
  /// Appends the default icon for this Windows: the Vista pictures from Vista on, the XP pictures before.
  void AppendDefault();
  /// The icon adder that programs and updates share: takes an icon location ("file,index"), looks the file up and
  /// appends its large and small icon (the one for both when the other is missing). False, with AIndex untouched, when
  /// it has none.
  [[nodiscard]] bool AppendFromLocation(const std::u16string& ALocation, std::int32_t& AIndex);
  /// Appends copies of another pair's images; false when one cannot be copied.
  [[nodiscard]] bool AppendCopy(const TIconLists& AFrom, std::int32_t AFromIndex, std::int32_t& AIndex);

  [[nodiscard]] std::uintptr_t Small() const noexcept { return FSmall.Value(); }
  [[nodiscard]] std::uintptr_t Large() const noexcept { return FLarge.Value(); }

 private:
  [[nodiscard]] bool AppendPair(const TIcon& ASmall, const TIcon& ALarge, std::int32_t& AIndex);

  IIcons& FIcons;
  TImageList FSmall;
  TImageList FLarge;
};

}  // namespace varcolin
