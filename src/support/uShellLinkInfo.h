// Reads shell link files (".lnk", the published Shell Link Binary File Format) without asking the shell to resolve
// them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "support/uShellLinkExtra.h"
#include "support/uShellLinkParts.h"
#include "support/uShellLinkReader.h"

namespace varcolin {

class IFiles;
class IShell;
class ISystemFacts;

/// One shell link file: empty, or wholly loaded. One thread at a time; different objects on different threads.
class TShellLinkInfo {
 public:
  /// Files above this many bytes are refused.
  static constexpr std::size_t LargestFile = 0x500000;

  /// 0100-01-01: what a link without a header answers for its times.
  static constexpr TDateTime MinimumDateTime = -657434;

  /// Resolves an indirect resource reference; other text comes back unchanged.
  using TResolveText = std::u16string (*)(std::u16string_view);

  /// What all links are read with. The facilities outlive Unload.
  static void Load(IFiles& AFiles, IShell& AShell, ISystemFacts& ASystem, TResolveText AResolveText);
  static void Unload() noexcept;

  /// Reads the file. Raises what SetFileName raises.
  explicit TShellLinkInfo(std::u16string_view AFileName);
  /// Reads bytes that the caller has from elsewhere; AFileName is checked like a file's name and used in messages.
  TShellLinkInfo(std::u16string_view AFileName, std::vector<std::byte> AData);
  /// The same with a name and bytes that stay the caller's and must outlive the object.
  TShellLinkInfo(std::u16string_view AFileName, std::span<const std::byte> AData);
  TShellLinkInfo(const TShellLinkInfo&) = delete;
  TShellLinkInfo& operator=(const TShellLinkInfo&) = delete;

  [[nodiscard]] std::u16string_view FileName() const noexcept { return FFileName; }
  /// Forgets what was read and reads another file, while nobody may write to it; an empty name reads none, and the
  /// same name (without regard to case) changes nothing. Raises TShellLinkInfoException when the file is no link, and
  /// EFOpenError when it does not open; the object is empty then.
  void SetFileName(std::u16string_view AFileName);

  /// Size of the link file in bytes; 0 when none was read.
  [[nodiscard]] std::int64_t LinkFileSize() const noexcept { return static_cast<std::int64_t>(FData.size()); }
  [[nodiscard]] const THeaderInfo& HeaderInfo() const noexcept { return FHeaderInfo; }
  [[nodiscard]] const TLinkTargetIDList& LinkTargetIDList() const noexcept { return FLinkTargetIDList; }
  [[nodiscard]] const TLinkInfo& LinkInfo() const noexcept { return FLinkInfo; }
  [[nodiscard]] const TStringData& StringData() const noexcept { return FStringData; }
  [[nodiscard]] std::size_t ExtraDataCount() const noexcept { return FExtraData.size(); }
  /// The block at a position of the file's order, which must be below the count.
  [[nodiscard]] const TExtraData& ExtraData(std::size_t AIndex) const { return FExtraData.at(AIndex); }
  /// The first block of a type; null when there is none.
  [[nodiscard]] const TExtraData* ExtraDataByType(TExtraDataType AType) const noexcept;

  /// The target's path; %NAME% references in it are not expanded. Empty when the link names none.
  [[nodiscard]] std::u16string PathName() const;
  [[nodiscard]] std::u16string Arguments() const { return FStringData.Arguments(); }
  /// The link's comment, resolved when it is an indirect resource reference.
  [[nodiscard]] std::u16string Description() const { return FStringData.NameStringResolve(); }
  [[nodiscard]] std::u16string WorkingDirectory() const { return FStringData.WorkingDir(); }
  /// The icon's file; %NAME% references in it are not expanded.
  [[nodiscard]] std::u16string IconLocation() const;
  [[nodiscard]] std::int32_t IconIndex() const noexcept { return FHeaderInfo.IconIndex(); }
  [[nodiscard]] std::uint32_t ShowCmd() const noexcept { return FHeaderInfo.ShowCommand(); }
  [[nodiscard]] std::uint16_t HotKey() const noexcept { return FHeaderInfo.HotKey(); }

 private:
  friend THeaderInfo;
  friend TLinkTargetIDList;
  friend TLinkInfo;
  friend TStringData;
  friend TExtraData;

  // what the parts ask of the system

  /// The text of bytes up to their first NUL.
  [[nodiscard]] static std::u16string TextOf(std::span<const std::byte> ABytes, bool AIsUnicode);
  [[nodiscard]] static std::u16string DisplayNameOf(std::span<const std::byte> AIDList, std::uint32_t AForm);
  [[nodiscard]] static std::u16string ResolveText(const std::u16string& AText);
  /// Local date-time of a universal file time; the smallest date-time when it has none.
  [[nodiscard]] static TDateTime LocalDateTime(std::uint64_t ATicks);

  void CheckExtension() const;
  [[nodiscard]] std::vector<std::byte> ReadFile() const;
  void LoadData();
  void ReadExtraData(TShellLinkReader& AReader);
  [[nodiscard]] std::u16string StringProps(TExtraDataType AType) const;
  void Clear() noexcept;

  std::u16string FOwnFileName;  // empty when the name is the caller's
  std::u16string_view FFileName;
  std::vector<std::byte> FOwnData;   // empty when the bytes are the caller's
  std::span<const std::byte> FData;  // the whole file, which all parts are views of
  THeaderInfo FHeaderInfo;
  TLinkTargetIDList FLinkTargetIDList{*this};
  TLinkInfo FLinkInfo{*this};
  TStringData FStringData{*this};
  std::vector<TExtraData> FExtraData;
};

}  // namespace varcolin
