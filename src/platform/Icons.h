// Icons and image lists.
#pragma once

#include <string_view>

#include "platform/Types.h"

namespace varcolin {

struct TImageListTag {};
struct TIconTag {};
class IIcons;

/// An image list with 32-bit colour and masks.
using TImageList = THandle<IIcons, TImageListTag>;
/// One icon.
using TIcon = THandle<IIcons, TIconTag>;

class IIcons {
 public:
  virtual ~IIcons() = default;

  /// A new, empty image list. Windows: ImageList_Create with ILC_COLOR32 | ILC_MASK; the handle value is an HIMAGELIST.
  [[nodiscard]] virtual TWinError MakeImageList(std::int32_t AWidth, std::int32_t AHeight, std::int32_t AInitial,
                                                std::int32_t AGrow, TImageList& AList) = 0;
  /// Appends an icon and gives its index. Windows: ImageList_ReplaceIcon with index -1.
  [[nodiscard]] virtual TWinError AppendIcon(const TImageList& AList, const TIcon& AIcon, std::int32_t& AIndex) = 0;
  /// Number of images. Windows: ImageList_GetImageCount.
  [[nodiscard]] virtual std::int32_t ImageCount(const TImageList& AList) = 0;
  /// A copy of image AIndex as an icon. Windows: ImageList_GetIcon with ILD_NORMAL.
  [[nodiscard]] virtual TWinError CopyImage(const TImageList& AList, std::int32_t AIndex, TIcon& AIcon) = 0;
  /// An icon group of the library's own resources, in the system's default size. Windows: LoadIconW on the library's
  /// module.
  [[nodiscard]] virtual TWinError LoadOwnIcon(std::u16string_view AName, TIcon& AIcon) = 0;
  /// The large (32x32) and small (16x16) icon number AIndex (0-based) of an executable or icon file. Either may stay
  /// empty. ResourceNameNotFound when the file has none there, FileNotFound. Windows: ExtractIconExW, one icon each.
  [[nodiscard]] virtual TWinError ExtractIcons(std::u16string_view APath, std::int32_t AIndex, TIcon& ALarge,
                                               TIcon& ASmall) = 0;

  /// Give handles back. Windows: ImageList_Destroy, DestroyIcon.
  virtual void CloseValue(TImageListTag, std::uintptr_t AList) noexcept = 0;
  virtual void CloseValue(TIconTag, std::uintptr_t AIcon) noexcept = 0;
};

}  // namespace varcolin
