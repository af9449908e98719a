#include "support/uShellLinkParts.h"

#include <algorithm>

#include "platform/Shell.h"
#include "support/uFormat.h"
#include "support/uGuid.h"
#include "support/uShellLinkInfo.h"
#include "support/uText.h"

namespace varcolin {
namespace {

using TBytes = std::span<const std::byte>;

constexpr std::uint32_t HeaderSize = 76;
constexpr TGUID LinkClass{0x00021401, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
/// As some writers have it: the two bytes of the fourth group swapped.
constexpr TGUID SwappedLinkClass{0x00021401, 0x0000, 0x0000, {0x00, 0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};

/// Offsets in the link info section.
namespace LinkInfoField {
constexpr std::size_t HeaderSize = 4;
constexpr std::size_t Flags = 8;
constexpr std::size_t VolumeID = 12;
constexpr std::size_t LocalBasePath = 16;
constexpr std::size_t NetworkRelative = 20;
constexpr std::size_t CommonPathSuffix = 24;
constexpr std::size_t LocalBasePathUnicode = 28;
constexpr std::size_t CommonPathSuffixUnicode = 32;
constexpr std::uint32_t Size = 0x1C;
constexpr std::uint32_t SizeWithUnicode = 0x24;
}  // namespace LinkInfoField
constexpr std::uint32_t HasVolumeAndLocalPath = 0x1;
constexpr std::uint32_t HasNetworkAndSuffix = 0x2;

/// Offsets in the volume's part.
namespace VolumeField {
constexpr std::size_t DriveType = 4;
constexpr std::size_t SerialNumber = 8;
constexpr std::size_t Label = 12;
constexpr std::size_t LabelUnicode = 16;
constexpr std::uint32_t Size = 16;
constexpr std::uint32_t SizeWithUnicode = 20;
}  // namespace VolumeField
/// The offset of an ANSI label that says that there is a Unicode one instead.
constexpr std::uint32_t LabelIsUnicode = 0x14;

/// Offsets in the network's part.
namespace NetworkField {
constexpr std::size_t Flags = 4;
constexpr std::size_t NetName = 8;
constexpr std::size_t DeviceName = 12;
constexpr std::size_t ProviderType = 16;
constexpr std::size_t NetNameUnicode = 20;
constexpr std::size_t DeviceNameUnicode = 24;
constexpr std::uint32_t Size = 20;
constexpr std::uint32_t SizeWithUnicode = 28;
}  // namespace NetworkField
constexpr std::uint32_t ValidDevice = 0x1;
constexpr std::uint32_t ValidNetType = 0x2;
/// The largest offset of an ANSI net name; a larger one says that there are Unicode names instead.
constexpr std::uint32_t LastAnsiNetName = 0x14;

std::uint32_t WordAt(TBytes ABlock, std::size_t AOffset) noexcept { return NumberAt<std::uint32_t>(ABlock, AOffset); }

/// Whether a NUL ends the text inside its block. An offset of the block's very end is one of an empty text.
bool EndsInside(TBytes ABlock, std::size_t AOffset, bool AIsUnicode) noexcept {
  if (AOffset > ABlock.size()) return false;
  const TBytes text = ABlock.subspan(AOffset);
  if (text.empty()) return true;
  return AIsUnicode ? UnitsToNul(text) < text.size() / 2 : BytesToNul(text).size() < text.size();
}

/// Takes the part of a section that begins with its own size; nothing when it has not at least AMinimum bytes or
/// reaches past the section's end.
TBytes SizedPart(TBytes ASection, std::size_t AOffset, std::uint32_t AMinimum) noexcept {
  const TBytes rest = BytesFrom(ASection, AOffset);
  const std::uint32_t size = WordAt(rest, 0);
  return size >= AMinimum && size <= rest.size() ? rest.first(size) : TBytes{};
}

bool HasUnicodeLabel(TBytes AVolume) noexcept { return WordAt(AVolume, VolumeField::Label) == LabelIsUnicode; }
bool HasUnicodeNames(TBytes ANetwork) noexcept { return WordAt(ANetwork, NetworkField::NetName) > LastAnsiNetName; }

}  // namespace

// --- header ---

void THeaderInfo::Read(TShellLinkReader& AReader) {
  FHeaderInfo = AReader.Take(HeaderSize);
  const std::u16string_view name = AReader.FileName();
  if (const std::uint32_t size = WordAt(FHeaderInfo, 0); size != HeaderSize) {
    throw TShellLinkInfoException(
        Format(u"Invalid header size \"%d\", expected \"%d\" (%s).", {size, HeaderSize, name}));
  }
  if (const TGUID guid = GUID(); guid != LinkClass && guid != SwappedLinkClass) {
    throw TShellLinkInfoException(
        Format(u"Invalid file GUID \"%s\", expected \"%s\" or \"%s\" (%s).",
               {GuidToText(guid), GuidToText(SwappedLinkClass), GuidToText(LinkClass), name}));
  }
}

TGUID THeaderInfo::GUID() const noexcept { return NumberAt<TGUID>(FHeaderInfo, 4); }
std::uint32_t THeaderInfo::LinkFlags() const noexcept { return WordAt(FHeaderInfo, 20); }
std::uint32_t THeaderInfo::FileAttributes() const noexcept { return WordAt(FHeaderInfo, 24); }
TDateTime THeaderInfo::CreationTime() const { return TimeAt(28); }
TDateTime THeaderInfo::AccessTime() const { return TimeAt(36); }
TDateTime THeaderInfo::WriteTime() const { return TimeAt(44); }
std::int64_t THeaderInfo::TargetFileSize() const noexcept { return WordAt(FHeaderInfo, 52); }
std::int32_t THeaderInfo::IconIndex() const noexcept { return NumberAt<std::int32_t>(FHeaderInfo, 56); }
std::uint32_t THeaderInfo::ShowCommand() const noexcept { return WordAt(FHeaderInfo, 60); }
std::uint16_t THeaderInfo::HotKey() const noexcept { return NumberAt<std::uint16_t>(FHeaderInfo, 64); }

TDateTime THeaderInfo::TimeAt(std::size_t AOffset) const {
  if (FHeaderInfo.empty()) return TShellLinkInfo::MinimumDateTime;
  return TShellLinkInfo::LocalDateTime(NumberAt<std::uint64_t>(FHeaderInfo, AOffset));
}

// --- item ID list ---

void TLinkTargetIDList::Read(TShellLinkReader& AReader) {
  FItemIDList = AReader.Take(AReader.TakeNumber<std::uint16_t>());
}

bool TLinkTargetIDList::IsExists() const noexcept {
  return (FOwner.HeaderInfo().LinkFlags() & ShellLinkFlag::HasLinkTargetIDList) != 0;
}

std::u16string TLinkTargetIDList::Path() const {
  return TShellLinkInfo::DisplayNameOf(FItemIDList, DisplayNameForm::ForParsing);
}

std::u16string TLinkTargetIDList::DisplayName() const {
  return TShellLinkInfo::DisplayNameOf(FItemIDList, DisplayNameForm::InFolder);
}

// --- link info ---

void TLinkInfo::Read(TShellLinkReader& AReader) {
  FLinkInfo = AReader.TakeSized();
  if (!IsSound() || !TakeVolumeID() || !TakeNetworkRelative()) {
    throw TShellLinkInfoException(Format(u"Invalid LinkInfo section format (%s).", {AReader.FileName()}));
  }
}

bool TLinkInfo::IsSound() const noexcept {
  if (FLinkInfo.size() < LinkInfoField::Size) return false;
  const std::uint32_t headerSize = WordAt(FLinkInfo, LinkInfoField::HeaderSize);
  if (headerSize > FLinkInfo.size()) return false;
  if (headerSize != LinkInfoField::Size && headerSize < LinkInfoField::SizeWithUnicode) return false;

  const auto leadsOut = [&](std::size_t AField) { return WordAt(FLinkInfo, AField) > FLinkInfo.size(); };
  const auto isText = [&](std::size_t AField, bool AIsUnicode) {
    const std::uint32_t offset = WordAt(FLinkInfo, AField);
    return offset == 0 || EndsInside(FLinkInfo, offset, AIsUnicode);
  };
  if (leadsOut(LinkInfoField::VolumeID) || leadsOut(LinkInfoField::LocalBasePath) ||
      leadsOut(LinkInfoField::NetworkRelative) || leadsOut(LinkInfoField::CommonPathSuffix)) {
    return false;
  }
  if (HasUnicodeOffsets() &&
      (leadsOut(LinkInfoField::LocalBasePathUnicode) || leadsOut(LinkInfoField::CommonPathSuffixUnicode))) {
    return false;
  }
  // texts that no property reads may be anything
  if (!Has(HasVolumeAndLocalPath)) return true;
  if (!isText(LinkInfoField::LocalBasePath, false) || !isText(LinkInfoField::CommonPathSuffix, false)) return false;
  return !HasUnicodeOffsets() ||
         (isText(LinkInfoField::LocalBasePathUnicode, true) && isText(LinkInfoField::CommonPathSuffixUnicode, true));
}

bool TLinkInfo::TakeVolumeID() noexcept {
  const std::uint32_t offset = WordAt(FLinkInfo, LinkInfoField::VolumeID);
  if (!Has(HasVolumeAndLocalPath) || offset == 0) return true;
  FVolumeID = SizedPart(FLinkInfo, offset, VolumeField::Size);
  if (FVolumeID.empty()) return false;
  if (!HasUnicodeLabel(FVolumeID)) return EndsInside(FVolumeID, WordAt(FVolumeID, VolumeField::Label), false);
  return FVolumeID.size() >= VolumeField::SizeWithUnicode &&
         EndsInside(FVolumeID, WordAt(FVolumeID, VolumeField::LabelUnicode), true);
}

bool TLinkInfo::TakeNetworkRelative() noexcept {
  const std::uint32_t offset = WordAt(FLinkInfo, LinkInfoField::NetworkRelative);
  if (!Has(HasNetworkAndSuffix) || offset == 0) return true;
  FNetworkRelative = SizedPart(FLinkInfo, offset, NetworkField::Size);
  if (FNetworkRelative.empty()) return false;
  const bool isUnicode = HasUnicodeNames(FNetworkRelative);
  if (isUnicode && FNetworkRelative.size() < NetworkField::SizeWithUnicode) return false;
  const auto isText = [&](std::size_t AField) {
    return EndsInside(FNetworkRelative, WordAt(FNetworkRelative, AField), isUnicode);
  };
  if (!isText(isUnicode ? NetworkField::NetNameUnicode : NetworkField::NetName)) return false;
  const bool hasDevice = (WordAt(FNetworkRelative, NetworkField::Flags) & ValidDevice) != 0;
  return !hasDevice || isText(isUnicode ? NetworkField::DeviceNameUnicode : NetworkField::DeviceName);
}

bool TLinkInfo::Has(std::uint32_t AFlag) const noexcept {
  return (WordAt(FLinkInfo, LinkInfoField::Flags) & AFlag) != 0;
}

bool TLinkInfo::HasUnicodeOffsets() const noexcept {
  return WordAt(FLinkInfo, LinkInfoField::HeaderSize) >= LinkInfoField::SizeWithUnicode;
}

bool TLinkInfo::Counts(std::uint32_t AFlag) const noexcept {
  return Has(AFlag) && (FOwner.HeaderInfo().LinkFlags() & ShellLinkFlag::ForceNoLinkInfo) == 0;
}

bool TLinkInfo::IsExists() const noexcept {
  return (FOwner.HeaderInfo().LinkFlags() & ShellLinkFlag::HasLinkInfo) != 0;
}

bool TLinkInfo::IsLocalLink() const noexcept { return Counts(HasVolumeAndLocalPath); }
bool TLinkInfo::IsNetworkLink() const noexcept { return Counts(HasNetworkAndSuffix); }

std::u16string TLinkInfo::TextAt(std::size_t AUnicodeField, std::size_t AAnsiField) const {
  if (!IsLocalLink()) return {};
  const std::uint32_t unicode = HasUnicodeOffsets() ? WordAt(FLinkInfo, AUnicodeField) : 0;
  const std::uint32_t offset = unicode != 0 ? unicode : WordAt(FLinkInfo, AAnsiField);
  return offset == 0 ? std::u16string{} : TShellLinkInfo::TextOf(BytesFrom(FLinkInfo, offset), unicode != 0);
}

std::u16string TLinkInfo::LocalBasePath() const {
  return TextAt(LinkInfoField::LocalBasePathUnicode, LinkInfoField::LocalBasePath);
}

std::u16string TLinkInfo::CommonPathSuffix() const {
  return TextAt(LinkInfoField::CommonPathSuffixUnicode, LinkInfoField::CommonPathSuffix);
}

std::uint32_t TLinkInfo::DriveType() const noexcept {
  return IsLocalLink() ? WordAt(FVolumeID, VolumeField::DriveType) : 0;
}

std::uint32_t TLinkInfo::DriveSerialNumber() const noexcept {
  return IsLocalLink() ? WordAt(FVolumeID, VolumeField::SerialNumber) : 0;
}

std::u16string TLinkInfo::DriveVolumeLabel() const {
  if (!IsLocalLink() || FVolumeID.empty()) return {};
  const bool isUnicode = HasUnicodeLabel(FVolumeID);
  const std::uint32_t offset = WordAt(FVolumeID, isUnicode ? VolumeField::LabelUnicode : VolumeField::Label);
  return TShellLinkInfo::TextOf(BytesFrom(FVolumeID, offset), isUnicode);
}

std::u16string TLinkInfo::NetName() const {
  if (!IsNetworkLink() || FNetworkRelative.empty()) return {};
  const bool isUnicode = HasUnicodeNames(FNetworkRelative);
  const std::uint32_t offset =
      WordAt(FNetworkRelative, isUnicode ? NetworkField::NetNameUnicode : NetworkField::NetName);
  return TShellLinkInfo::TextOf(BytesFrom(FNetworkRelative, offset), isUnicode);
}

std::u16string TLinkInfo::DeviceName() const {
  if (!IsNetworkLink() || (WordAt(FNetworkRelative, NetworkField::Flags) & ValidDevice) == 0) return {};
  const bool isUnicode = HasUnicodeNames(FNetworkRelative);
  const std::uint32_t offset =
      WordAt(FNetworkRelative, isUnicode ? NetworkField::DeviceNameUnicode : NetworkField::DeviceName);
  return TShellLinkInfo::TextOf(BytesFrom(FNetworkRelative, offset), isUnicode);
}

std::uint32_t TLinkInfo::NetworkProviderType() const noexcept {
  const bool isValid = (WordAt(FNetworkRelative, NetworkField::Flags) & ValidNetType) != 0;
  return IsNetworkLink() && isValid ? WordAt(FNetworkRelative, NetworkField::ProviderType) : 0;
}

// --- counted strings ---

void TStringData::Read(TShellLinkReader& AReader) {
  constexpr std::array<std::uint32_t, 5> flags = {ShellLinkFlag::HasName, ShellLinkFlag::HasRelativePath,
                                                  ShellLinkFlag::HasWorkingDir, ShellLinkFlag::HasArguments,
                                                  ShellLinkFlag::HasIconLocation};
  const THeaderInfo& header = FOwner.HeaderInfo();
  const std::size_t unit = header.IsUnicode() ? 2 : 1;
  for (std::size_t index = 0; index < flags.size(); ++index) {
    if ((header.LinkFlags() & flags[index]) == 0) continue;
    FStrings[index] = AReader.Take(AReader.TakeNumber<std::uint16_t>() * unit);
  }
}

std::u16string TStringData::NameStringResolve() const { return TShellLinkInfo::ResolveText(NameString()); }

std::u16string TStringData::TextOf(EString AString) const {
  return TShellLinkInfo::TextOf(FStrings[static_cast<std::size_t>(AString)], FOwner.HeaderInfo().IsUnicode());
}

}  // namespace varcolin
