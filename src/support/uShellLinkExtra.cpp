#include "support/uShellLinkExtra.h"

#include <algorithm>
#include <iterator>

#include "support/uShellLinkInfo.h"

namespace varcolin {
namespace {

using TMake = TExtraDataPtr (*)(const TShellLinkInfo&, std::uint32_t, std::uint32_t, TExtraDataType,
                                std::pmr::memory_resource&);

template <class TBlock>
TExtraDataPtr Make(const TShellLinkInfo& AOwner, std::uint32_t ASize, std::uint32_t ASign, TExtraDataType AType,
                   std::pmr::memory_resource& AMemory) {
  void* const place = AMemory.allocate(sizeof(TBlock), alignof(TBlock));
  return TExtraDataPtr(::new (place) TBlock(AOwner, ASize, ASign, AType));
}

struct TBlockKind {
  std::uint32_t Signature;
  TExtraDataType Type;
  std::uint32_t Size;  // 0: any
  TMake Make;
};

template <class TBlock>
constexpr TBlockKind Typed(std::uint32_t ASignature, TExtraDataType AType) {
  return {ASignature, AType, TBlock::BlockSize, &Make<TBlock>};
}
constexpr TBlockKind Kept(std::uint32_t ASignature, TExtraDataType AType) {
  return {ASignature, AType, 0, &Make<TExtraData>};
}

constexpr TBlockKind BlockKinds[] = {
    Typed<TExtraDataStringProps>(0xA0000001, TExtraDataType::edtEnvironmentProps),
    Typed<TExtraConsoleProps>(0xA0000002, TExtraDataType::edtConsoleProps),
    Typed<TExtraTrackerProps>(0xA0000003, TExtraDataType::edtTrackerProps),
    Typed<TExtraConsoleFEProps>(0xA0000004, TExtraDataType::edtConsoleFEProps),
    Typed<TExtraSpecialFolderProps>(0xA0000005, TExtraDataType::edtSpecialFolderProps),
    Typed<TExtraDataStringProps>(0xA0000006, TExtraDataType::edtDarwinProps),
    Typed<TExtraDataStringProps>(0xA0000007, TExtraDataType::edtIconEnvironmentPros),
    Kept(0xA0000008, TExtraDataType::edtShimProps),
    Kept(0xA0000009, TExtraDataType::edtPropertyStoreProps),
    Typed<TExtraKnowFolderProps>(0xA000000B, TExtraDataType::edtKnowFolderProps),
    Kept(0xA000000C, TExtraDataType::edtVistaAndAboveIDListProps),
};

}  // namespace

void TEndExtraData::operator()(TExtraData* ABlock) const noexcept { std::destroy_at(ABlock); }

TExtraDataPtr TExtraData::CreateExtraData(const TShellLinkInfo& AOwner, std::uint32_t ASize, std::uint32_t ASign,
                                          std::pmr::memory_resource& AMemory) {
  const TBlockKind* const kind = std::ranges::find(BlockKinds, ASign, &TBlockKind::Signature);
  if (kind == std::end(BlockKinds)) {
    return Make<TExtraData>(AOwner, ASize, ASign, TExtraDataType::edtUnknown, AMemory);
  }
  if (kind->Size != 0 && kind->Size != ASize) TShellLinkReader::FailFormat(AOwner.FileName());
  return kind->Make(AOwner, ASize, ASign, kind->Type, AMemory);
}

void TExtraData::ReadBody(TShellLinkReader& AReader) {
  // a size too small for the header wraps to one that no file has
  FExtraData = AReader.Take(FSize - static_cast<std::uint32_t>(HeaderSize));
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
