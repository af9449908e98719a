// The sections of a shell link file (".lnk"). Each is a view of the bytes that its TShellLinkInfo holds and decodes a
// property when it is read; texts come as UTF-16, those in ANSI through the system's code page. One that was not read,
// or is absent from the file, answers with zeros and empty texts.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "intf/intf_Base.h"

namespace varcolin {

class TShellLinkInfo;
class TShellLinkReader;

/// Bits of the header's LinkFlags that matter here.
namespace ShellLinkFlag {
inline constexpr std::uint32_t HasLinkTargetIDList = 0x1;
inline constexpr std::uint32_t HasLinkInfo = 0x2;
inline constexpr std::uint32_t HasName = 0x4;
inline constexpr std::uint32_t HasRelativePath = 0x8;
inline constexpr std::uint32_t HasWorkingDir = 0x10;
inline constexpr std::uint32_t HasArguments = 0x20;
inline constexpr std::uint32_t HasIconLocation = 0x40;
inline constexpr std::uint32_t IsUnicode = 0x80;
inline constexpr std::uint32_t ForceNoLinkInfo = 0x100;
}  // namespace ShellLinkFlag

/// The header.
class THeaderInfo {
 public:
  [[nodiscard]] TGUID GUID() const noexcept;
  [[nodiscard]] std::uint32_t LinkFlags() const noexcept;
  /// Whether the counted strings are UTF-16.
  [[nodiscard]] bool IsUnicode() const noexcept { return (LinkFlags() & ShellLinkFlag::IsUnicode) != 0; }
  [[nodiscard]] std::uint32_t FileAttributes() const noexcept;
  /// Local times of the target; the smallest date-time (0100-01-01) without a header and for a time that has no local
  /// form, 0 for one before 1899-12-30 (a link that tells no time has 0 there).
  [[nodiscard]] TDateTime CreationTime() const;
  [[nodiscard]] TDateTime AccessTime() const;
  [[nodiscard]] TDateTime WriteTime() const;
  /// Size of the target in bytes, its low 32 bits.
  [[nodiscard]] std::int64_t TargetFileSize() const noexcept;
  [[nodiscard]] std::int32_t IconIndex() const noexcept;
  [[nodiscard]] std::uint32_t ShowCommand() const noexcept;
  /// Low byte: virtual-key code; high byte: modifiers.
  [[nodiscard]] std::uint16_t HotKey() const noexcept;

 private:
  friend TShellLinkInfo;
  void Read(TShellLinkReader& AReader);
  void Clear() noexcept { FHeaderInfo = {}; }
  [[nodiscard]] TDateTime TimeAt(std::size_t AOffset) const;

  std::span<const std::byte> FHeaderInfo;
};

/// The target as an item ID list of the shell.
class TLinkTargetIDList {
 public:
  explicit TLinkTargetIDList(const TShellLinkInfo& AOwner) noexcept : FOwner(AOwner) {}

  [[nodiscard]] bool IsExists() const noexcept;
  /// The list as it lies in the file: nothing has walked or checked its items.
  [[nodiscard]] std::span<const std::byte> IDList() const noexcept { return FItemIDList; }
  /// The path, or the name that a person sees, of what the list leads to; empty when the shell does not tell. Raises
  /// EOSError when the shell's desktop cannot be had.
  [[nodiscard]] std::u16string Path() const;
  [[nodiscard]] std::u16string DisplayName() const;

 private:
  friend TShellLinkInfo;
  void Read(TShellLinkReader& AReader);
  void Clear() noexcept { FItemIDList = {}; }

  const TShellLinkInfo& FOwner;
  std::span<const std::byte> FItemIDList;
};

/// Where the target was: on a volume of the computer, on the network, or on a share of the computer's own.
class TLinkInfo {
 public:
  explicit TLinkInfo(const TShellLinkInfo& AOwner) noexcept : FOwner(AOwner) {}

  [[nodiscard]] bool IsExists() const noexcept;
  /// Whether it names a local (network) target; false when the header says that it does not count.
  [[nodiscard]] bool IsLocalLink() const noexcept;
  [[nodiscard]] bool IsNetworkLink() const noexcept;
  [[nodiscard]] std::u16string LocalBasePath() const;
  [[nodiscard]] std::u16string CommonPathSuffix() const;
  [[nodiscard]] std::uint32_t DriveType() const noexcept;
  [[nodiscard]] std::uint32_t DriveSerialNumber() const noexcept;
  [[nodiscard]] std::u16string DriveVolumeLabel() const;
  [[nodiscard]] std::u16string NetName() const;
  [[nodiscard]] std::u16string DeviceName() const;
  [[nodiscard]] std::uint32_t NetworkProviderType() const noexcept;

 private:
  friend TShellLinkInfo;
  using TBytes = std::span<const std::byte>;

  void Read(TShellLinkReader& AReader);
  void Clear() noexcept { FLinkInfo = FVolumeID = FNetworkRelative = {}; }
  /// Whether the section's own fields and texts lie inside it.
  [[nodiscard]] bool IsSound() const noexcept;
  /// Set the views of the two parts when the section has them; false for a broken part.
  [[nodiscard]] bool TakeVolumeID() noexcept;
  [[nodiscard]] bool TakeNetworkRelative() noexcept;
  [[nodiscard]] bool Has(std::uint32_t AFlag) const noexcept;
  [[nodiscard]] bool HasUnicodeOffsets() const noexcept;
  /// Has, unless the header says that the section does not count.
  [[nodiscard]] bool Counts(std::uint32_t AFlag) const noexcept;
  /// The text that the Unicode offset leads to, else the one of the ANSI offset.
  [[nodiscard]] std::u16string TextAt(std::size_t AUnicodeField, std::size_t AAnsiField) const;

  const TShellLinkInfo& FOwner;
  TBytes FLinkInfo;  // the whole section
  TBytes FVolumeID;  // each of its own declared size
  TBytes FNetworkRelative;
};

/// The counted strings.
class TStringData {
 public:
  explicit TStringData(const TShellLinkInfo& AOwner) noexcept : FOwner(AOwner) {}

  [[nodiscard]] std::u16string NameString() const { return TextOf(EString::Name); }
  /// The name; the text that it stands for when it is an indirect resource reference.
  [[nodiscard]] std::u16string NameStringResolve() const;
  [[nodiscard]] std::u16string RelativePath() const { return TextOf(EString::RelativePath); }
  [[nodiscard]] std::u16string Arguments() const { return TextOf(EString::Arguments); }
  [[nodiscard]] std::u16string WorkingDir() const { return TextOf(EString::WorkingDir); }
  [[nodiscard]] std::u16string IconLocation() const { return TextOf(EString::IconLocation); }

 private:
  friend TShellLinkInfo;
  /// In the order of the file.
  enum class EString { Name, RelativePath, WorkingDir, Arguments, IconLocation };

  void Read(TShellLinkReader& AReader);
  void Clear() noexcept { FStrings = {}; }
  [[nodiscard]] std::u16string TextOf(EString AString) const;

  const TShellLinkInfo& FOwner;
  std::array<std::span<const std::byte>, 5> FStrings;
};

}  // namespace varcolin
