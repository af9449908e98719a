#include "support/uShellLinkExtra.h"

#include <algorithm>
#include <iterator>

#include "support/uShellLinkInfo.h"

namespace varcolin {
namespace {

struct TBlockKind {
  TExtraDataType Type;
  std::uint32_t Size = 0;  // 0: any
};

/// The kinds of blocks by their signatures, from FirstSignature on.
constexpr std::uint32_t FirstSignature = 0xA0000001;
constexpr TBlockKind BlockKinds[] = {
    {TExtraDataType::edtEnvironmentProps, TExtraDataStringProps::BlockSize},
    {TExtraDataType::edtConsoleProps, TExtraConsoleProps::BlockSize},
    {TExtraDataType::edtTrackerProps, TExtraTrackerProps::BlockSize},
    {TExtraDataType::edtConsoleFEProps, TExtraConsoleFEProps::BlockSize},
    {TExtraDataType::edtSpecialFolderProps, TExtraSpecialFolderProps::BlockSize},
    {TExtraDataType::edtDarwinProps, TExtraDataStringProps::BlockSize},
    {TExtraDataType::edtIconEnvironmentPros, TExtraDataStringProps::BlockSize},
    {TExtraDataType::edtShimProps},
    {TExtraDataType::edtPropertyStoreProps},
    {TExtraDataType::edtUnknown},
    {TExtraDataType::edtKnowFolderProps, TExtraKnowFolderProps::BlockSize},
    {TExtraDataType::edtVistaAndAboveIDListProps},
};

}  // namespace

TExtraData TExtraData::CreateExtraData(TShellLinkReader& AReader, std::uint32_t ASize, std::uint32_t ASign) {
  const std::size_t index = ASign - FirstSignature;  // that of a smaller signature wraps to none
  const TBlockKind kind = index < std::size(BlockKinds) ? BlockKinds[index] : TBlockKind{TExtraDataType::edtUnknown};
  if (kind.Size != 0 && kind.Size != ASize) AReader.FailFormat();
  // a size too small for the header wraps to one that no file has
  return {ASize, ASign, kind.Type, AReader.Take(ASize - static_cast<std::uint32_t>(HeaderSize))};
}

template <class T>
T TExtraData::At(std::size_t AOffset) const noexcept {
  return NumberAt<T>(FExtraData, AOffset - HeaderSize);
}

std::u16string TExtraData::TextAt(std::size_t AOffset, std::size_t ASize, bool AIsUnicode) const {
  const std::span<const std::byte> field = BytesFrom(FExtraData, AOffset - HeaderSize);
  return TShellLinkInfo::TextOf(field.first(std::min(ASize, field.size())), AIsUnicode);
}

std::u16string TExtraDataStringProps::Data() const {
  std::u16string text = DataUnicode();
  return text.empty() ? DataAnsi() : text;
}

std::uint16_t TExtraConsoleProps::FillAttributes() const noexcept { return At<std::uint16_t>(8); }
std::uint16_t TExtraConsoleProps::PopupFillAttributes() const noexcept { return At<std::uint16_t>(10); }
std::int16_t TExtraConsoleProps::ScreenBufferSizeX() const noexcept { return At<std::int16_t>(12); }
std::int16_t TExtraConsoleProps::ScreenBufferSizeY() const noexcept { return At<std::int16_t>(14); }
std::int16_t TExtraConsoleProps::WindowSizeX() const noexcept { return At<std::int16_t>(16); }
std::int16_t TExtraConsoleProps::WindowSizeY() const noexcept { return At<std::int16_t>(18); }
std::int16_t TExtraConsoleProps::WindowOriginX() const noexcept { return At<std::int16_t>(20); }
std::int16_t TExtraConsoleProps::WindowOriginY() const noexcept { return At<std::int16_t>(22); }
std::uint32_t TExtraConsoleProps::FontSize() const noexcept { return At<std::uint32_t>(32); }
std::uint32_t TExtraConsoleProps::FontFamily() const noexcept { return At<std::uint32_t>(36); }
std::uint32_t TExtraConsoleProps::FontWeight() const noexcept { return At<std::uint32_t>(40); }
std::uint32_t TExtraConsoleProps::CursorSize() const noexcept { return At<std::uint32_t>(108); }
std::uint32_t TExtraConsoleProps::FullScreen() const noexcept { return At<std::uint32_t>(112); }
std::uint32_t TExtraConsoleProps::InsertMode() const noexcept { return At<std::uint32_t>(120); }
std::uint32_t TExtraConsoleProps::AutoPosition() const noexcept { return At<std::uint32_t>(124); }
std::uint32_t TExtraConsoleProps::HistoryBufferSize() const noexcept { return At<std::uint32_t>(128); }
std::uint32_t TExtraConsoleProps::NumberOfHistoryBuffers() const noexcept { return At<std::uint32_t>(132); }
std::uint32_t TExtraConsoleProps::HistoryNoDup() const noexcept { return At<std::uint32_t>(136); }
std::uint32_t TExtraConsoleProps::GetColorTable(std::size_t AIndex) const noexcept {
  return AIndex < ColorCount ? At<std::uint32_t>(140 + 4 * AIndex) : 0;
}

std::uint32_t TExtraConsoleFEProps::CodePage() const noexcept { return At<std::uint32_t>(8); }

std::uint32_t TExtraSpecialFolderProps::SpecialFolderID() const noexcept { return At<std::uint32_t>(8); }
std::uint32_t TExtraSpecialFolderProps::Offset() const noexcept { return At<std::uint32_t>(12); }

TGUID TExtraKnowFolderProps::KnownFolderID() const noexcept { return At<TGUID>(8); }
std::uint32_t TExtraKnowFolderProps::Offset() const noexcept { return At<std::uint32_t>(24); }

std::uint32_t TExtraTrackerProps::Length() const noexcept { return At<std::uint32_t>(8); }
std::uint32_t TExtraTrackerProps::Version() const noexcept { return At<std::uint32_t>(12); }
TGUID TExtraTrackerProps::Droid1() const noexcept { return At<TGUID>(32); }
TGUID TExtraTrackerProps::Droid2() const noexcept { return At<TGUID>(48); }
TGUID TExtraTrackerProps::DroidBirth1() const noexcept { return At<TGUID>(64); }
TGUID TExtraTrackerProps::DroidBirth2() const noexcept { return At<TGUID>(80); }

}  // namespace varcolin
