// IIcons over the real Windows calls.
#pragma once

#include "platform/Icons.h"

namespace varcolin {

class TWindowsIcons final : public IIcons {
 public:
  [[nodiscard]] TWinError MakeImageList(std::int32_t AWidth, std::int32_t AHeight, std::int32_t AInitial,
                                        std::int32_t AGrow, TImageList& AList) override;
  [[nodiscard]] TWinError AppendIcon(const TImageList& AList, const TIcon& AIcon, std::int32_t& AIndex) override;
  [[nodiscard]] std::int32_t ImageCount(const TImageList& AList) override;
  [[nodiscard]] TWinError CopyImage(const TImageList& AList, std::int32_t AIndex, TIcon& AIcon) override;
  [[nodiscard]] TWinError LoadOwnIcon(std::u16string_view AName, TIcon& AIcon) override;
  [[nodiscard]] TWinError ExtractIcons(std::u16string_view APath, std::int32_t AIndex, TIcon& ALarge,
                                       TIcon& ASmall) override;
  void CloseValue(TImageListTag, std::uintptr_t AList) noexcept override;
  void CloseValue(TIconTag, std::uintptr_t AIcon) noexcept override;
};

}  // namespace varcolin
