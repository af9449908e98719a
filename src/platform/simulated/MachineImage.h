// Machine images: a simulated machine described by registry exports and file trees.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/simulated/Embedded.h"
#include "platform/simulated/ImageError.h"
#include "platform/simulated/SimulatedFacts.h"

namespace varcolin {

class TSimulatedMachine;

/// A file or folder of an image.
struct TImageEntry {
  std::string Path;  ///< UTF-8, relative to the image, with slashes
  bool IsFolder = false;
  std::uint64_t Size = 0;  ///< bytes; 0 for folders
};

/// Where an image's files come from. Raises EImageError, naming the file, for what cannot be read.
class IImageSource {
 public:
  virtual ~IImageSource() = default;

  /// Everything below a folder of the image, in no certain order; nothing when there is no such folder.
  [[nodiscard]] virtual std::vector<TImageEntry> List(std::string_view AFolder) const = 0;
  /// Whether there is a file APath.
  [[nodiscard]] virtual bool HasFile(std::string_view APath) const = 0;
  /// The bytes of a file. ABuffer keeps them when the source does not itself.
  [[nodiscard]] virtual std::span<const std::byte> Read(std::string_view APath,
                                                        std::vector<std::byte>& ABuffer) const = 0;
  /// Where a file lies on the computer's disk; empty when Read's bytes live as long as the program.
  [[nodiscard]] virtual std::filesystem::path HostPath(std::string_view APath) const = 0;
};

/// An image in a folder of the computer's disk. Nothing outside the folder is ever read: a symbolic link is taken as
/// the file that it leads to when that lies in the image, and is an error otherwise, as are devices and pipes.
class TFolderImage final : public IImageSource {
 public:
  /// EImageError when there is no such folder.
  explicit TFolderImage(const std::filesystem::path& AFolder);

  [[nodiscard]] std::vector<TImageEntry> List(std::string_view AFolder) const override;
  [[nodiscard]] bool HasFile(std::string_view APath) const override;
  [[nodiscard]] std::span<const std::byte> Read(std::string_view APath, std::vector<std::byte>& ABuffer) const override;
  [[nodiscard]] std::filesystem::path HostPath(std::string_view APath) const override;

 private:
  [[nodiscard]] bool IsPlainFile(const std::filesystem::path& APath, std::string_view AName) const;

  std::filesystem::path FRoot;  // canonical
};

/// An image that is built into the program.
class TEmbeddedImage final : public IImageSource {
 public:
  explicit TEmbeddedImage(std::span<const TEmbeddedFile> AFiles) noexcept : FFiles(AFiles) {}

  [[nodiscard]] std::vector<TImageEntry> List(std::string_view AFolder) const override;
  [[nodiscard]] bool HasFile(std::string_view APath) const override;
  [[nodiscard]] std::span<const std::byte> Read(std::string_view APath, std::vector<std::byte>& ABuffer) const override;
  [[nodiscard]] std::filesystem::path HostPath(std::string_view) const override { return {}; }

 private:
  [[nodiscard]] const TEmbeddedFile* Find(std::string_view APath) const noexcept;

  std::span<const TEmbeddedFile> FFiles;
};

/// What the image's machine.json says, over the defaults; an image without one describes the default machine.
/// EImageError names the line at fault.
[[nodiscard]] TSimulatedFacts ReadFacts(const IImageSource& AImage);

/// Reads the text of a machine.json. AFileName is for messages.
[[nodiscard]] TSimulatedFacts ParseFacts(std::span<const std::byte> AText, std::string_view AFileName);

/// Puts the image's registry exports, in the order of their names, and its drives on a machine that was made from the
/// image's facts. EImageError names the file (and line) at fault; the machine is then not to be used. A folder image
/// must stay on the disk as long as the machine is used, for its files are read when they are asked for.
void LoadImage(const IImageSource& AImage, TSimulatedMachine& AMachine);

}  // namespace varcolin
