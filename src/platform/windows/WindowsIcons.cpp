#include "platform/windows/WindowsIcons.h"

#include "platform/windows/OwnModule.h"

namespace varcolin {

namespace {

[[nodiscard]] HIMAGELIST ToList(const TImageList& AList) noexcept {
  return reinterpret_cast<HIMAGELIST>(AList.Value());
}
[[nodiscard]] std::uintptr_t ToValue(HICON AIcon) noexcept { return reinterpret_cast<std::uintptr_t>(AIcon); }

}  // namespace

TWinError TWindowsIcons::MakeImageList(std::int32_t AWidth, std::int32_t AHeight, std::int32_t AInitial,
                                       std::int32_t AGrow, TImageList& AList) {
  SetLastError(ERROR_SUCCESS);
  const HIMAGELIST list = ImageList_Create(AWidth, AHeight, ILC_COLOR32 | ILC_MASK, AInitial, AGrow);
  if (list == nullptr) return LastFailure(WinError::InvalidParameter);
  AList = TImageList(*this, reinterpret_cast<std::uintptr_t>(list));
  return WinError::Success;
}

TWinError TWindowsIcons::AppendIcon(const TImageList& AList, const TIcon& AIcon, std::int32_t& AIndex) {
  SetLastError(ERROR_SUCCESS);
  const int index = ImageList_ReplaceIcon(ToList(AList), -1, reinterpret_cast<HICON>(AIcon.Value()));
  if (index < 0) return LastFailure(WinError::InvalidParameter);
  AIndex = index;
  return WinError::Success;
}

std::int32_t TWindowsIcons::ImageCount(const TImageList& AList) { return ImageList_GetImageCount(ToList(AList)); }

TWinError TWindowsIcons::CopyImage(const TImageList& AList, std::int32_t AIndex, TIcon& AIcon) {
  SetLastError(ERROR_SUCCESS);
  const HICON icon = ImageList_GetIcon(ToList(AList), AIndex, ILD_NORMAL);
  if (icon == nullptr) return LastFailure(WinError::InvalidParameter);
  AIcon = TIcon(*this, ToValue(icon));
  return WinError::Success;
}

TWinError TWindowsIcons::LoadOwnIcon(std::u16string_view AName, TIcon& AIcon) {
  const TApiText name(AName);
  if (!name.IsWhole()) return WinError::ResourceNameNotFound;
  // Not LoadIconW itself: its icons are shared ones, which nobody may destroy.
  SetLastError(ERROR_SUCCESS);
  const HANDLE icon = LoadImageW(OwnModule(), name.Get(), IMAGE_ICON, 0, 0, LR_DEFAULTSIZE);
  if (icon == nullptr) return LastFailure(WinError::ResourceNameNotFound);
  AIcon = TIcon(*this, reinterpret_cast<std::uintptr_t>(icon));
  return WinError::Success;
}

TWinError TWindowsIcons::ExtractIcons(std::u16string_view APath, std::int32_t AIndex, TIcon& ALarge, TIcon& ASmall) {
  const TApiText path(APath);
  if (!path.IsWhole()) return WinError::FileNotFound;
  if (AIndex < 0) return WinError::ResourceNameNotFound;  // a resource id, or the question for the count
  HICON large = nullptr;
  HICON small = nullptr;
  SetLastError(ERROR_SUCCESS);
  const UINT count = ExtractIconExW(path.Get(), AIndex, &large, &small, 1);
  const TWinError failure = LastFailure(WinError::FileNotFound);
  TIcon ownedLarge = large != nullptr ? TIcon(*this, ToValue(large)) : TIcon();
  TIcon ownedSmall = small != nullptr ? TIcon(*this, ToValue(small)) : TIcon();
  if (count == static_cast<UINT>(-1)) return failure;
  if (count == 0 || (!ownedLarge && !ownedSmall)) {
    const bool exists = GetFileAttributesW(path.Get()) != INVALID_FILE_ATTRIBUTES;
    return exists ? WinError::ResourceNameNotFound : WinError::FileNotFound;
  }
  ALarge = std::move(ownedLarge);
  ASmall = std::move(ownedSmall);
  return WinError::Success;
}

void TWindowsIcons::CloseValue(TImageListTag, std::uintptr_t AList) noexcept {
  ImageList_Destroy(reinterpret_cast<HIMAGELIST>(AList));
}

void TWindowsIcons::CloseValue(TIconTag, std::uintptr_t AIcon) noexcept { DestroyIcon(reinterpret_cast<HICON>(AIcon)); }

}  // namespace varcolin
