#include "platform/simulated/PeResources.h"

#include <algorithm>
#include <tuple>

namespace varcolin {
namespace {

constexpr std::uint32_t HighBit = 0x80000000U;
constexpr std::size_t MaxSections = 96;    // the loader's own limit
constexpr std::size_t MaxLanguages = 256;  // of one resource; a bound on hostile files' cost
constexpr std::size_t DirectoryHeader = 16;
constexpr std::size_t DirectoryEntry = 8;
constexpr std::uint16_t PrimaryLanguage = 0x3FF;
constexpr std::uint16_t UsEnglish = 0x409;
constexpr unsigned StringsPerBlock = 16;
constexpr std::size_t GroupHeader = 6;
constexpr std::size_t GroupEntry = 14;
constexpr std::size_t IconFileEntry = 16;
constexpr std::uint16_t IconKind = 1;

// Little-endian numbers; past the end they read as 0.
template <class T>
T Number(std::span<const std::byte> AData, std::size_t AOffset) noexcept {
  if (AOffset > AData.size() || AData.size() - AOffset < sizeof(T)) return 0;
  T value = 0;
  for (std::size_t i = 0; i < sizeof(T); ++i) {
    value = static_cast<T>(value | static_cast<T>(std::to_integer<T>(AData[AOffset + i]) << (8 * i)));
  }
  return value;
}
std::uint16_t Word(std::span<const std::byte> AData, std::size_t AOffset) noexcept {
  return Number<std::uint16_t>(AData, AOffset);
}
std::uint32_t Long(std::span<const std::byte> AData, std::size_t AOffset) noexcept {
  return Number<std::uint32_t>(AData, AOffset);
}

// The bytes from AOffset on, at most ASize of them; empty when AOffset lies outside.
std::span<const std::byte> Clip(std::span<const std::byte> AData, std::uint64_t AOffset, std::uint64_t ASize) noexcept {
  if (AOffset >= AData.size()) return {};
  const std::size_t offset = static_cast<std::size_t>(AOffset);
  return AData.subspan(offset, static_cast<std::size_t>(std::min<std::uint64_t>(ASize, AData.size() - offset)));
}

// What icon groups and icon files say of an image in the same place; 0 stands for 256 pixels.
TIconImage ImageAt(std::span<const std::byte> AData, std::size_t AOffset) noexcept {
  const auto side = [&](std::size_t AAt) {
    const std::uint32_t value = Number<std::uint8_t>(AData, AAt);
    return value == 0 ? 256U : value;
  };
  return {side(AOffset), side(AOffset + 1), Word(AData, AOffset + 6), {}};
}

}  // namespace

std::optional<TPeResources> TPeResources::Open(std::span<const std::byte> AFile) {
  constexpr std::uint16_t DosMagic = 0x5A4D;
  constexpr std::uint32_t PeMagic = 0x4550;
  constexpr std::uint16_t Magic32 = 0x10B;
  constexpr std::uint16_t Magic64 = 0x20B;
  constexpr std::size_t ResourceDirectory = 2;
  if (Word(AFile, 0) != DosMagic) return std::nullopt;
  const std::size_t header = Long(AFile, 0x3C);
  if (Long(AFile, header) != PeMagic) return std::nullopt;
  const std::size_t optional = header + 24;
  const std::uint16_t magic = Word(AFile, optional);
  if (magic != Magic32 && magic != Magic64) return std::nullopt;

  TPeResources result;
  result.FProcessorKind = Word(AFile, header + 4);
  const std::size_t sectionCount = std::min<std::size_t>(Word(AFile, header + 6), MaxSections);
  const std::size_t table = optional + Word(AFile, header + 20);
  for (std::size_t i = 0; i < sectionCount; ++i) {
    const std::size_t at = table + i * 40;
    const std::uint32_t rawSize = Long(AFile, at + 16);
    result.FSections.push_back({Long(AFile, at + 12), Clip(AFile, Long(AFile, at + 20), rawSize)});
  }
  const std::size_t directories = optional + (magic == Magic32 ? 92 : 108);
  if (Long(AFile, directories) > ResourceDirectory) {
    const std::uint32_t address = Long(AFile, directories + 4 + ResourceDirectory * 8);
    for (const TSection& section : result.FSections) {
      if (address == 0 || address < section.Address || address - section.Address >= section.Data.size()) continue;
      result.FDirectory = section.Data.subspan(address - section.Address);
      break;
    }
  }
  return result;
}

std::size_t TPeResources::EntryCount(std::uint32_t ADirectory) const {
  const std::span<const std::byte> directory = Clip(FDirectory, ADirectory, FDirectory.size());
  if (directory.size() < DirectoryHeader) return 0;
  const std::size_t claimed = std::size_t{Word(directory, 12)} + Word(directory, 14);
  return std::min(claimed, (directory.size() - DirectoryHeader) / DirectoryEntry);
}

TPeResources::TEntry TPeResources::EntryAt(std::uint32_t ADirectory, std::size_t AIndex) const {
  const std::size_t at = ADirectory + DirectoryHeader + AIndex * DirectoryEntry;
  const std::uint32_t key = Long(FDirectory, at);
  const std::uint32_t offset = Long(FDirectory, at + 4);
  return {(key & HighBit) != 0, key & ~HighBit, (offset & HighBit) != 0, offset & ~HighBit};
}

std::optional<std::uint32_t> TPeResources::FindDirectory(std::uint32_t ADirectory, std::uint16_t AId) const {
  for (std::size_t i = 0, count = EntryCount(ADirectory); i < count; ++i) {
    const TEntry entry = EntryAt(ADirectory, i);
    if (!entry.IsNamed && entry.Key == AId && entry.IsDirectory) return entry.Offset;
  }
  return std::nullopt;
}

std::optional<std::span<const std::byte>> TPeResources::Choose(std::uint32_t ADirectory,
                                                               std::uint16_t ALanguage) const {
  const auto rank = [ALanguage](std::uint32_t AKey) {
    if (AKey == ALanguage) return 4;
    if (ALanguage != 0 && (AKey & PrimaryLanguage) == (ALanguage & PrimaryLanguage)) return 3;
    if (AKey == 0) return 2;
    return AKey == UsEnglish ? 1 : 0;
  };
  int best = -1;
  std::uint32_t chosen = 0;
  for (std::size_t i = 0, count = std::min(EntryCount(ADirectory), MaxLanguages); i < count; ++i) {
    const TEntry entry = EntryAt(ADirectory, i);
    if (entry.IsDirectory || rank(entry.Key) <= best) continue;
    best = rank(entry.Key);
    chosen = entry.Offset;
  }
  if (best < 0) return std::nullopt;
  return AtAddress(Long(FDirectory, chosen), Long(FDirectory, std::size_t{chosen} + 4));
}

std::optional<std::span<const std::byte>> TPeResources::AtAddress(std::uint32_t AAddress, std::uint32_t ASize) const {
  for (const TSection& section : FSections) {
    if (AAddress < section.Address) continue;
    const std::uint32_t offset = AAddress - section.Address;
    if (offset > section.Data.size() || section.Data.size() - offset < ASize) continue;
    return section.Data.subspan(offset, ASize);
  }
  return std::nullopt;
}

std::optional<std::span<const std::byte>> TPeResources::Find(std::uint16_t AType, std::uint16_t AId,
                                                             std::uint16_t ALanguage) const {
  const std::optional<std::uint32_t> type = FindDirectory(0, AType);
  if (!type) return std::nullopt;
  const std::optional<std::uint32_t> name = FindDirectory(*type, AId);
  return name ? Choose(*name, ALanguage) : std::nullopt;
}

std::optional<std::span<const std::byte>> TPeResources::At(std::uint16_t AType, std::size_t AIndex,
                                                           std::uint16_t ALanguage) const {
  const std::optional<std::uint32_t> type = FindDirectory(0, AType);
  if (!type || AIndex >= EntryCount(*type)) return std::nullopt;
  const TEntry entry = EntryAt(*type, AIndex);
  return entry.IsDirectory ? Choose(entry.Offset, ALanguage) : std::nullopt;
}

std::u16string TPeResources::FindString(std::uint32_t AId, std::uint16_t ALanguage) const {
  const std::uint16_t id = static_cast<std::uint16_t>(AId);
  const std::optional<std::span<const std::byte>> found =
      Find(PeResource::StringTable, static_cast<std::uint16_t>(id / StringsPerBlock + 1), ALanguage);
  if (!found) return {};
  // sixteen strings in a row, each behind its length
  std::span<const std::byte> block = *found;
  for (unsigned skip = id % StringsPerBlock; skip > 0; --skip) {
    const std::size_t size = 2 + std::size_t{Word(block, 0)} * 2;
    if (size > block.size()) return {};
    block = block.subspan(size);
  }
  const std::size_t length = Word(block, 0);
  if (block.size() < 2 || (block.size() - 2) / 2 < length) return {};
  std::u16string text;
  for (std::size_t i = 0; i < length; ++i) text += static_cast<char16_t>(Word(block, 2 + i * 2));
  return text;
}

std::vector<TIconImage> TPeResources::FindIcon(std::int32_t AIndex, std::uint16_t ALanguage) const {
  std::optional<std::span<const std::byte>> group;
  if (AIndex >= 0) {
    group = At(PeResource::GroupIcon, static_cast<std::size_t>(AIndex), ALanguage);
  } else if (AIndex >= -0xFFFF) {
    group = Find(PeResource::GroupIcon, static_cast<std::uint16_t>(-AIndex), ALanguage);
  }
  std::vector<TIconImage> images;
  if (!group || Word(*group, 2) != IconKind) return images;
  // one look at the icons' directory serves all images: a group may list thousands
  std::vector<std::pair<std::uint16_t, std::uint32_t>> icons;
  if (const std::optional<std::uint32_t> type = FindDirectory(0, PeResource::Icon)) {
    for (std::size_t i = 0, count = EntryCount(*type); i < count; ++i) {
      const TEntry entry = EntryAt(*type, i);
      if (entry.IsNamed || !entry.IsDirectory || entry.Key > 0xFFFF) continue;
      icons.emplace_back(static_cast<std::uint16_t>(entry.Key), entry.Offset);
    }
  }
  std::ranges::stable_sort(icons, {}, &std::pair<std::uint16_t, std::uint32_t>::first);
  for (std::size_t i = 0; i < Word(*group, 4); ++i) {
    const std::size_t at = GroupHeader + i * GroupEntry;
    if (at + GroupEntry > group->size()) break;
    const std::uint16_t id = Word(*group, at + 12);
    const auto icon = std::ranges::lower_bound(icons, id, {}, &std::pair<std::uint16_t, std::uint32_t>::first);
    if (icon == icons.end() || icon->first != id) continue;
    const std::optional<std::span<const std::byte>> data = Choose(icon->second, ALanguage);
    if (!data || data->empty()) continue;
    images.push_back(ImageAt(*group, at));
    images.back().Data = *data;
  }
  return images;
}

std::vector<TIconImage> ReadIconFile(std::span<const std::byte> AFile) {
  std::vector<TIconImage> images;
  if (AFile.size() < GroupHeader || Word(AFile, 0) != 0 || Word(AFile, 2) != IconKind) return images;
  for (std::size_t i = 0; i < Word(AFile, 4); ++i) {
    const std::size_t at = GroupHeader + i * IconFileEntry;
    if (at + IconFileEntry > AFile.size()) break;
    const std::uint32_t size = Long(AFile, at + 8);
    const std::span<const std::byte> data = Clip(AFile, Long(AFile, at + 12), size);
    if (data.empty() || data.size() < size) continue;
    images.push_back(ImageAt(AFile, at));
    images.back().Data = data;
  }
  return images;
}

const TIconImage* ChooseImage(std::span<const TIconImage> AImages, std::uint32_t ASize) noexcept {
  const auto rank = [ASize](const TIconImage& AImage) {
    const bool isEnough = AImage.Width >= ASize;
    // among the large enough ones the smallest is best, among the others the largest
    const std::int64_t width = AImage.Width;
    return std::tuple(isEnough, isEnough ? -width : width, AImage.BitCount);
  };
  const TIconImage* best = nullptr;
  for (const TIconImage& image : AImages) {
    if (best == nullptr || rank(image) > rank(*best)) best = &image;
  }
  return best;
}

}  // namespace varcolin
