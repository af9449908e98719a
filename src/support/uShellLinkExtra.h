// The extra-data blocks of a shell link file. Like its sections, they are views of the bytes that the TShellLinkInfo
// holds.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>

#include "intf/intf_Base.h"

namespace varcolin {

class TShellLinkReader;

enum class TExtraDataType : std::uint8_t {
  edtUnknown,
  edtConsoleProps,
  edtConsoleFEProps,
  edtDarwinProps,
  edtEnvironmentProps,
  edtIconEnvironmentPros,
  edtKnowFolderProps,
  edtPropertyStoreProps,
  edtShimProps,
  edtSpecialFolderProps,
  edtTrackerProps,
  edtVistaAndAboveIDListProps,
};

/// A block: a view of its body, to be had and passed on by value. The classes below read the fields of the types that
/// have some, and are made of a block of such a type.
class TExtraData {
 public:
  /// The block of ASize bytes whose body comes next in the file. Raises TShellLinkInfoException when the file has fewer
  /// bytes, or the signature stands for a type that has blocks of another size only.
  [[nodiscard]] static TExtraData CreateExtraData(TShellLinkReader& AReader, std::uint32_t ASize, std::uint32_t ASign);

  [[nodiscard]] TExtraDataType DataType() const noexcept { return FDataType; }
  /// Size of the block with its size and signature, in bytes.
  [[nodiscard]] std::uint32_t Size() const noexcept { return FSize; }
  [[nodiscard]] std::uint32_t Signature() const noexcept { return FSignature; }

 protected:
  /// Size of what stands in front of the body. Offsets below are the format's own, from the start of the block.
  static constexpr std::size_t HeaderSize = 8;

  template <class T>
  [[nodiscard]] T At(std::size_t AOffset) const noexcept;
  /// The text of a field, up to its first NUL.
  [[nodiscard]] std::u16string TextAt(std::size_t AOffset, std::size_t ASize, bool AIsUnicode) const;

 private:
  TExtraData(std::uint32_t ASize, std::uint32_t ASign, TExtraDataType ADataType,
             std::span<const std::byte> AExtraData) noexcept
      : FSize(ASize), FSignature(ASign), FDataType(ADataType), FExtraData(AExtraData) {}

  std::uint32_t FSize;
  std::uint32_t FSignature;
  TExtraDataType FDataType;
  std::span<const std::byte> FExtraData;
};

/// A path or text with %NAME% references as they stand: target, icon or installer descriptor.
class TExtraDataStringProps final : public TExtraData {
 public:
  static constexpr std::uint32_t BlockSize = 788;
  explicit TExtraDataStringProps(const TExtraData& ABlock) noexcept : TExtraData(ABlock) {}
  [[nodiscard]] std::u16string DataAnsi() const { return TextAt(8, 260, false); }
  [[nodiscard]] std::u16string DataUnicode() const { return TextAt(268, 520, true); }
  /// The Unicode form, or the ANSI form when that is empty.
  [[nodiscard]] std::u16string Data() const;
};

/// The look of a console window.
class TExtraConsoleProps final : public TExtraData {
 public:
  static constexpr std::uint32_t BlockSize = 204;
  static constexpr std::size_t ColorCount = 16;
  explicit TExtraConsoleProps(const TExtraData& ABlock) noexcept : TExtraData(ABlock) {}
  [[nodiscard]] std::uint16_t FillAttributes() const noexcept;
  [[nodiscard]] std::uint16_t PopupFillAttributes() const noexcept;
  [[nodiscard]] std::int16_t ScreenBufferSizeX() const noexcept;
  [[nodiscard]] std::int16_t ScreenBufferSizeY() const noexcept;
  [[nodiscard]] std::int16_t WindowSizeX() const noexcept;
  [[nodiscard]] std::int16_t WindowSizeY() const noexcept;
  [[nodiscard]] std::int16_t WindowOriginX() const noexcept;
  [[nodiscard]] std::int16_t WindowOriginY() const noexcept;
  [[nodiscard]] std::uint32_t FontSize() const noexcept;
  [[nodiscard]] std::uint32_t FontFamily() const noexcept;
  [[nodiscard]] std::uint32_t FontWeight() const noexcept;
  [[nodiscard]] std::u16string FaceName() const { return TextAt(44, 64, true); }
  [[nodiscard]] std::uint32_t CursorSize() const noexcept;
  [[nodiscard]] std::uint32_t FullScreen() const noexcept;
  [[nodiscard]] std::uint32_t InsertMode() const noexcept;
  [[nodiscard]] std::uint32_t AutoPosition() const noexcept;
  [[nodiscard]] std::uint32_t HistoryBufferSize() const noexcept;
  [[nodiscard]] std::uint32_t NumberOfHistoryBuffers() const noexcept;
  [[nodiscard]] std::uint32_t HistoryNoDup() const noexcept;
  /// Colour AIndex of the table (0x00BBGGRR); 0 for an index past its end.
  [[nodiscard]] std::uint32_t GetColorTable(std::size_t AIndex) const noexcept;
};

/// The code page of a console window.
class TExtraConsoleFEProps final : public TExtraData {
 public:
  static constexpr std::uint32_t BlockSize = 12;
  explicit TExtraConsoleFEProps(const TExtraData& ABlock) noexcept : TExtraData(ABlock) {}
  [[nodiscard]] std::uint32_t CodePage() const noexcept;
};

/// The special folder that the target lies in.
class TExtraSpecialFolderProps final : public TExtraData {
 public:
  static constexpr std::uint32_t BlockSize = 16;
  explicit TExtraSpecialFolderProps(const TExtraData& ABlock) noexcept : TExtraData(ABlock) {}
  [[nodiscard]] std::uint32_t SpecialFolderID() const noexcept;
  /// Where in the item ID list the first item below that folder begins, in bytes.
  [[nodiscard]] std::uint32_t Offset() const noexcept;
};

/// The known folder that the target lies in.
class TExtraKnowFolderProps final : public TExtraData {
 public:
  static constexpr std::uint32_t BlockSize = 28;
  explicit TExtraKnowFolderProps(const TExtraData& ABlock) noexcept : TExtraData(ABlock) {}
  [[nodiscard]] TGUID KnownFolderID() const noexcept;
  [[nodiscard]] std::uint32_t Offset() const noexcept;
};

/// What the link tracking service knows of the target: the ids of its volume and file, now and when it was made.
class TExtraTrackerProps final : public TExtraData {
 public:
  static constexpr std::uint32_t BlockSize = 96;
  explicit TExtraTrackerProps(const TExtraData& ABlock) noexcept : TExtraData(ABlock) {}
  [[nodiscard]] std::uint32_t Length() const noexcept;
  [[nodiscard]] std::uint32_t Version() const noexcept;
  [[nodiscard]] std::u16string MachineID() const { return TextAt(16, 16, false); }
  [[nodiscard]] TGUID Droid1() const noexcept;
  [[nodiscard]] TGUID Droid2() const noexcept;
  [[nodiscard]] TGUID DroidBirth1() const noexcept;
  [[nodiscard]] TGUID DroidBirth2() const noexcept;
};

}  // namespace varcolin
