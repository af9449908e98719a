// The resources of Windows executables, read from the file's bytes. Everything in a file may lie: each offset, count
// and length is checked against the bytes that are there, and the three levels of directories are walked by number, so
// no file can lead the reader astray or make it run long.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace varcolin {

/// Numbers of resource types.
namespace PeResource {
inline constexpr std::uint16_t Icon = 3;
inline constexpr std::uint16_t StringTable = 6;
inline constexpr std::uint16_t GroupIcon = 14;
inline constexpr std::uint16_t Version = 16;
}  // namespace PeResource

/// One image of an icon, as it lies in the file.
struct TIconImage {
  std::uint32_t Width = 0;   ///< pixels
  std::uint32_t Height = 0;  ///< pixels
  std::uint16_t BitCount = 0;
  std::span<const std::byte> Data;  ///< a bitmap without file header, or a PNG picture
};

/// The resource section of one executable. It refers to the file's bytes, which must outlive it.
class TPeResources {
 public:
  /// Nothing unless AFile is a 32-bit or 64-bit executable of the PE format. Without resources it is one all the same.
  [[nodiscard]] static std::optional<TPeResources> Open(std::span<const std::byte> AFile);

  [[nodiscard]] bool HasResources() const noexcept { return !FDirectory.empty(); }
  /// The kind of processor that the executable is for (0x14C: 32-bit x86).
  [[nodiscard]] std::uint16_t ProcessorKind() const noexcept { return FProcessorKind; }

  /// Data of the resource with a number. Of several languages ALanguage is taken, then one of the same primary
  /// language, then the neutral one, then US English, then the first.
  [[nodiscard]] std::optional<std::span<const std::byte>> Find(std::uint16_t AType, std::uint16_t AId,
                                                               std::uint16_t ALanguage = 0) const;
  /// Data of the resource at a position (from 0) among those of its type, named ones included.
  [[nodiscard]] std::optional<std::span<const std::byte>> At(std::uint16_t AType, std::size_t AIndex,
                                                             std::uint16_t ALanguage = 0) const;
  /// A string of the string tables; empty when there is none. AId: its low 16 bits count.
  [[nodiscard]] std::u16string FindString(std::uint32_t AId, std::uint16_t ALanguage = 0) const;
  /// The images of an icon group: by position when AIndex is 0 or more, else by number -AIndex. Empty when there is
  /// none; images whose data is missing are left out.
  [[nodiscard]] std::vector<TIconImage> FindIcon(std::int32_t AIndex, std::uint16_t ALanguage = 0) const;

 private:
  struct TSection {
    std::uint32_t Address = 0;
    std::span<const std::byte> Data;
  };
  struct TEntry {
    bool IsNamed = false;
    std::uint32_t Key = 0;
    bool IsDirectory = false;
    std::uint32_t Offset = 0;
  };

  [[nodiscard]] std::size_t EntryCount(std::uint32_t ADirectory) const;
  [[nodiscard]] TEntry EntryAt(std::uint32_t ADirectory, std::size_t AIndex) const;
  [[nodiscard]] std::optional<std::uint32_t> FindDirectory(std::uint32_t ADirectory, std::uint16_t AId) const;
  [[nodiscard]] std::optional<std::span<const std::byte>> Choose(std::uint32_t ADirectory,
                                                                 std::uint16_t ALanguage) const;
  [[nodiscard]] std::optional<std::span<const std::byte>> AtAddress(std::uint32_t AAddress, std::uint32_t ASize) const;

  std::uint16_t FProcessorKind = 0;
  std::vector<TSection> FSections;
  std::span<const std::byte> FDirectory;  // from the root directory to the end of its section
};

/// The images of an icon file (.ico); empty when AFile is none. Images whose data is missing are left out.
[[nodiscard]] std::vector<TIconImage> ReadIconFile(std::span<const std::byte> AFile);

/// The image that Windows would show at a size: the smallest one that is at least as large, else the largest; of equal
/// ones that with more colours. Null when there is none.
[[nodiscard]] const TIconImage* ChooseImage(std::span<const TIconImage> AImages, std::uint32_t ASize) noexcept;

}  // namespace varcolin
