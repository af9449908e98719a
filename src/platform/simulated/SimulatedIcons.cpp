#include "platform/simulated/SimulatedIcons.h"

#include <optional>
#include <utility>

#include "platform/simulated/PeResources.h"

namespace varcolin {
namespace {

constexpr std::uint32_t LargeIcon = 32;
constexpr std::uint32_t SmallIcon = 16;

bool ChooseIcon(std::span<const TIconImage> AImages, std::uint32_t ASize, TSimulatedIcon& AIcon) {
  const TIconImage* const image = ChooseImage(AImages, ASize);
  if (image == nullptr) return false;
  AIcon = {ASize, ASize, std::make_shared<const std::vector<std::byte>>(image->Data.begin(), image->Data.end())};
  return true;
}

}  // namespace

TIcon TSimulatedIcons::MakeIcon(TSimulatedIcon AIcon) {
  std::uintptr_t handle = 0;
  {
    const std::lock_guard lock(FMutex);
    handle = FIcons.Add(std::move(AIcon));
  }
  return TIcon(*this, handle);
}

TWinError TSimulatedIcons::MakeImageList(std::int32_t AWidth, std::int32_t AHeight, std::int32_t AInitial,
                                         std::int32_t AGrow, TImageList& AList) {
  if (AWidth <= 0 || AHeight <= 0 || AInitial < 0 || AGrow < 0) return WinError::InvalidParameter;
  std::uintptr_t handle = 0;
  {
    const std::lock_guard lock(FMutex);
    handle = FLists.Add({static_cast<std::uint32_t>(AWidth), static_cast<std::uint32_t>(AHeight), {}});
  }
  AList = TImageList(*this, handle);
  return WinError::Success;
}

TWinError TSimulatedIcons::AppendIcon(const TImageList& AList, const TIcon& AIcon, std::int32_t& AIndex) {
  const std::lock_guard lock(FMutex);
  TList* const list = FLists.Find(AList.Value());
  const TSimulatedIcon* const icon = FIcons.Find(AIcon.Value());
  if (list == nullptr || icon == nullptr) return WinError::InvalidHandle;
  list->Images.push_back({list->Width, list->Height, icon->Picture});
  AIndex = static_cast<std::int32_t>(list->Images.size()) - 1;
  return WinError::Success;
}

std::int32_t TSimulatedIcons::ImageCount(const TImageList& AList) {
  const std::lock_guard lock(FMutex);
  const TList* const list = FLists.Find(AList.Value());
  return list == nullptr ? 0 : static_cast<std::int32_t>(list->Images.size());
}

TWinError TSimulatedIcons::CopyImage(const TImageList& AList, std::int32_t AIndex, TIcon& AIcon) {
  TSimulatedIcon copy;
  {
    const std::lock_guard lock(FMutex);
    const TList* const list = FLists.Find(AList.Value());
    if (list == nullptr) return WinError::InvalidHandle;
    if (AIndex < 0 || static_cast<std::size_t>(AIndex) >= list->Images.size()) return WinError::InvalidParameter;
    copy = list->Images[static_cast<std::size_t>(AIndex)];
  }
  AIcon = MakeIcon(std::move(copy));
  return WinError::Success;
}

TWinError TSimulatedIcons::LoadOwnIcon(std::u16string_view AName, TIcon& AIcon) {
  TSimulatedIcon icon;
  {
    const std::lock_guard lock(FMutex);
    const auto found = FOwnIcons.find(AName);
    if (found == FOwnIcons.end()) return WinError::ResourceNameNotFound;
    if (!ChooseIcon(ReadIconFile(found->second), LargeIcon, icon)) return WinError::ResourceDataNotFound;
  }
  AIcon = MakeIcon(std::move(icon));
  return WinError::Success;
}

TWinError TSimulatedIcons::ExtractIcons(std::u16string_view APath, std::int32_t AIndex, TIcon& ALarge, TIcon& ASmall) {
  TFileBytes bytes;
  const TWinError error = FFiles.LoadBytes(APath, bytes);
  if (error == WinError::PathNotFound) return WinError::FileNotFound;
  if (error != WinError::Success) return error;
  std::vector<TIconImage> images;
  if (const std::optional<TPeResources> resources = TPeResources::Open(bytes.Data)) {
    images = resources->FindIcon(AIndex);
  } else if (AIndex == 0) {
    images = ReadIconFile(bytes.Data);
  }
  TSimulatedIcon large, small;
  if (!ChooseIcon(images, LargeIcon, large) || !ChooseIcon(images, SmallIcon, small)) {
    return WinError::ResourceNameNotFound;
  }
  ALarge = MakeIcon(std::move(large));
  ASmall = MakeIcon(std::move(small));
  return WinError::Success;
}

void TSimulatedIcons::CloseValue(TImageListTag, std::uintptr_t AList) noexcept {
  const std::lock_guard lock(FMutex);
  FLists.Remove(AList);
}

void TSimulatedIcons::CloseValue(TIconTag, std::uintptr_t AIcon) noexcept {
  const std::lock_guard lock(FMutex);
  FIcons.Remove(AIcon);
}

void TSimulatedIcons::RegisterOwnIcon(std::u16string_view AName, std::span<const std::byte> AIconFile) {
  const std::lock_guard lock(FMutex);
  FOwnIcons.insert_or_assign(std::u16string(AName), std::vector<std::byte>(AIconFile.begin(), AIconFile.end()));
}

std::vector<TSimulatedIcon> TSimulatedIcons::ImagesOf(std::uintptr_t AList) {
  const std::lock_guard lock(FMutex);
  const TList* const list = FLists.Find(AList);
  return list == nullptr ? std::vector<TSimulatedIcon>{} : list->Images;
}

TImageSize TSimulatedIcons::SizeOf(std::uintptr_t AList) {
  const std::lock_guard lock(FMutex);
  const TList* const list = FLists.Find(AList);
  return list == nullptr ? TImageSize{} : TImageSize{list->Width, list->Height};
}

std::optional<TIconPixels> TSimulatedIcons::Draw(std::uintptr_t AList, std::int32_t AIndex) {
  TSimulatedIcon icon;
  {
    const std::lock_guard lock(FMutex);
    const TList* const list = FLists.Find(AList);
    if (list == nullptr || AIndex < 0 || static_cast<std::size_t>(AIndex) >= list->Images.size()) return std::nullopt;
    icon = list->Images[static_cast<std::size_t>(AIndex)];
  }
  if (!icon.Picture) return std::nullopt;
  const std::optional<TIconPixels> pixels = DecodeIconPicture(*icon.Picture);
  return pixels ? std::optional(ScalePixels(*pixels, icon.Width, icon.Height)) : std::nullopt;
}

std::size_t TSimulatedIcons::OpenHandleCount() {
  const std::lock_guard lock(FMutex);
  return FLists.Count() + FIcons.Count();
}

}  // namespace varcolin
