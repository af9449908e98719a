// Icons and image lists of a simulated machine. There is nothing to draw on: icons keep the bytes of their picture, and
// become pixels when somebody wants to see them.
#pragma once

#include <cstddef>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Icons.h"
#include "platform/simulated/IconPixels.h"
#include "platform/simulated/SimulatedFiles.h"
#include "support/uText.h"

namespace varcolin {

/// An icon as it would be shown.
struct TSimulatedIcon {
  std::uint32_t Width = 0;   ///< pixels it is shown at
  std::uint32_t Height = 0;  ///< pixels it is shown at
  /// The chosen image as it lay in its file: a bitmap without file header, or a PNG picture.
  std::shared_ptr<const std::vector<std::byte>> Picture;
};

/// The size of a list's images in pixels.
struct TImageSize {
  std::uint32_t Width = 0;
  std::uint32_t Height = 0;
};

/// Any thread.
class TSimulatedIcons final : public IIcons {
 public:
  explicit TSimulatedIcons(TSimulatedFiles& AFiles) : FFiles(AFiles), FLists(0x30000), FIcons(0x40000) {}
  TSimulatedIcons(const TSimulatedIcons&) = delete;
  TSimulatedIcons& operator=(const TSimulatedIcons&) = delete;

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

  /// Gives the library an icon resource. AIconFile: the bytes of an icon file (.ico).
  void RegisterOwnIcon(std::u16string_view AName, std::span<const std::byte> AIconFile);
  /// A new icon.
  [[nodiscard]] TIcon MakeIcon(TSimulatedIcon AIcon);
  /// The images of a list by its handle value; empty for a value that is no list.
  [[nodiscard]] std::vector<TSimulatedIcon> ImagesOf(std::uintptr_t AList);
  /// Zeros for a value that is no list.
  [[nodiscard]] TImageSize SizeOf(std::uintptr_t AList);
  /// Image AIndex of a list as it is shown, at the list's size. Nothing for a value that is no list, an index out of
  /// range, and a picture whose bytes are broken.
  [[nodiscard]] std::optional<TIconPixels> Draw(std::uintptr_t AList, std::int32_t AIndex);
  [[nodiscard]] std::size_t OpenHandleCount();

 private:
  struct TList {
    std::uint32_t Width;
    std::uint32_t Height;
    std::vector<TSimulatedIcon> Images;
  };

  TSimulatedFiles& FFiles;
  std::mutex FMutex;
  std::map<std::u16string, std::vector<std::byte>, TTextLess> FOwnIcons;
  THandleTable<TList> FLists;
  THandleTable<TSimulatedIcon> FIcons;
};

}  // namespace varcolin
