// Builds shell link files for tests, sound ones and broken ones.
#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "common/Bytes.h"
#include "intf/intf_Base.h"

namespace varcolin::testing {

inline void PutGuid(TBytes& ABytes, const TGUID& AGuid) {
  Put(ABytes, AGuid.D1, 4);
  Put(ABytes, AGuid.D2, 2);
  Put(ABytes, AGuid.D3, 2);
  for (const std::uint8_t byte : AGuid.D4) Put(ABytes, byte, 1);
}
/// A text in UTF-16, or one byte a unit; with a terminator or without.
inline void PutText(TBytes& ABytes, std::u16string_view AText, bool AIsUnicode, bool ATerminated = true) {
  for (const char16_t unit : AText) Put(ABytes, unit, AIsUnicode ? 2 : 1);
  if (ATerminated) Put(ABytes, 0, AIsUnicode ? 2 : 1);
}

// --- item ID lists ---

/// Item of a place with a class id.
inline TBytes MakePlaceItem(const TGUID& APlace) {
  TBytes item;
  Put(item, 20, 2);
  Put(item, 0x1F, 1);
  Put(item, 0x50, 1);
  PutGuid(item, APlace);
  return item;
}
/// Item of a drive, "C:\".
inline TBytes MakeDriveItem(std::u16string_view ADrive) {
  TBytes item;
  Put(item, 25, 2);
  Put(item, 0x2F, 1);
  PutText(item, ADrive, false);
  item.resize(25);
  return item;
}
/// Item of a file or folder, with a short name in front and the long one in an extension block (version 3).
inline TBytes MakeFileItem(std::u16string_view AName, bool AIsFolder) {
  TBytes block;
  Put(block, 0, 2);
  Put(block, 3, 2);
  Put(block, 0xBEEF0004, 4);
  block.resize(20);
  PutText(block, AName, true);
  TBytes item;
  Put(item, 0, 2);
  Put(item, AIsFolder ? 0x31 : 0x32, 1);
  item.resize(12);
  Put(item, AIsFolder ? 0x10 : 0x20, 2);
  PutText(item, u"SHORT~1", false);
  if (item.size() % 2 != 0) Put(item, 0, 1);
  Put(block, item.size(), 2);
  Patch(block, 0, block.size(), 2);
  Append(item, block);
  Patch(item, 0, item.size(), 2);
  return item;
}
/// The list of a path with a drive, from the computer on.
inline TBytes MakeIDList(std::u16string_view APath) {
  constexpr TGUID computer{0x20D04FE0, 0x3AEA, 0x1069, {0xA2, 0xD8, 0x08, 0x00, 0x2B, 0x30, 0x30, 0x9D}};
  TBytes list = MakePlaceItem(computer);
  Append(list, MakeDriveItem(APath.substr(0, 3)));
  for (APath.remove_prefix(3); !APath.empty();) {
    const std::size_t end = APath.find(u'\\');
    Append(list, MakeFileItem(APath.substr(0, end), end != std::u16string_view::npos));
    APath.remove_prefix(end == std::u16string_view::npos ? APath.size() : end + 1);
  }
  Put(list, 0, 2);
  return list;
}

// --- link info ---

/// A volume with a label, in ANSI or in UTF-16.
inline TBytes MakeVolume(std::u16string_view ALabel, bool AIsUnicode = false) {
  TBytes volume;
  Put(volume, 0, 4);
  Put(volume, 3, 4);           // a fixed drive
  Put(volume, 0x1234ABCD, 4);  // its serial number
  Put(volume, AIsUnicode ? 0x14 : 0x10, 4);
  if (AIsUnicode) Put(volume, 0x14, 4);
  PutText(volume, ALabel, AIsUnicode);
  Patch(volume, 0, volume.size(), 4);
  return volume;
}
/// A share that a drive letter may stand for, in ANSI or in UTF-16.
inline TBytes MakeShare(std::u16string_view AName, std::u16string_view ADevice, bool AIsUnicode = false) {
  TBytes share;
  Put(share, 0, 4);
  Put(share, ADevice.empty() ? 2 : 3, 4);
  Put(share, AIsUnicode ? 0x1C : 0x14, 4);
  Put(share, 0, 4);
  Put(share, 0x20000, 4);
  if (AIsUnicode) {
    Put(share, 0x1C, 4);
    Put(share, 0, 4);
  }
  PutText(share, AName, AIsUnicode);
  if (!ADevice.empty()) {
    Patch(share, AIsUnicode ? 24 : 12, share.size(), 4);
    PutText(share, ADevice, AIsUnicode);
  }
  Patch(share, 0, share.size(), 4);
  return share;
}

/// What a link info section holds; what is empty is left out.
struct TLinkInfoContent {
  std::uint32_t Flags = 1;
  std::uint32_t HeaderSize = 0x1C;  ///< 0x24 and more: with the Unicode offsets
  TBytes Volume = {};
  std::u16string_view BasePath = {};
  TBytes Share = {};
  std::u16string_view Suffix = {};
  std::u16string_view BasePathUnicode = {};
  std::u16string_view SuffixUnicode = {};
};
inline TBytes MakeLinkInfo(const TLinkInfoContent& AContent) {
  TBytes info;
  for (const std::uint32_t number : {0U, AContent.HeaderSize, AContent.Flags}) Put(info, number, 4);
  info.resize(AContent.HeaderSize);
  const auto add = [&](std::size_t AField, const TBytes& APart) {
    if (APart.empty()) return;
    Patch(info, AField, info.size(), 4);
    Append(info, APart);
  };
  const auto addText = [&](std::size_t AField, std::u16string_view AText, bool AIsUnicode, bool AAlways) {
    TBytes bytes;
    if (AAlways || !AText.empty()) PutText(bytes, AText, AIsUnicode);
    add(AField, bytes);
  };
  add(12, AContent.Volume);
  addText(16, AContent.BasePath, false, false);
  add(20, AContent.Share);
  addText(24, AContent.Suffix, false, true);  // every link has it, mostly empty
  if (AContent.HeaderSize >= 0x24) {
    addText(28, AContent.BasePathUnicode, true, false);
    addText(32, AContent.SuffixUnicode, true, true);
  }
  Patch(info, 0, info.size(), 4);
  return info;
}

// --- whole links ---

/// Puts a link together; fields may be set to what no link should have.
class TLinkBuilder {
 public:
  static constexpr std::uint32_t Unicode = 0x80;

  std::uint32_t HeaderSize = 76;
  TGUID Class{0x00021401, 0x0000, 0x0000, {0xC0, 0x00, 0x00, 0x00, 0x00, 0x00, 0x00, 0x46}};
  std::uint32_t Flags = Unicode;
  std::uint32_t Attributes = 0x20;
  std::array<std::uint64_t, 3> Times{};
  std::uint32_t FileSize = 0;
  std::int32_t IconIndex = 0;
  std::uint32_t ShowCommand = 1;
  std::uint16_t HotKey = 0;
  TBytes Tail = TBytes(4);  ///< what stands behind the blocks: the terminal one

  TLinkBuilder& IDList(TBytes AList) {
    Flags |= 1;
    FIDList = std::move(AList);
    return *this;
  }
  TLinkBuilder& LinkInfo(TBytes AInfo) {
    Flags |= 2;
    FLinkInfo = std::move(AInfo);
    return *this;
  }
  TLinkBuilder& Name(std::u16string_view AText) { return SetString(0, AText); }
  TLinkBuilder& RelativePath(std::u16string_view AText) { return SetString(1, AText); }
  TLinkBuilder& WorkingDir(std::u16string_view AText) { return SetString(2, AText); }
  TLinkBuilder& Arguments(std::u16string_view AText) { return SetString(3, AText); }
  TLinkBuilder& IconLocation(std::u16string_view AText) { return SetString(4, AText); }
  /// A block with this body; ASize, when given, is the size that it claims.
  TLinkBuilder& Block(std::uint32_t ASignature, const TBytes& ABody, std::uint64_t ASize = 0) {
    Put(FBlocks, ASize != 0 ? ASize : ABody.size() + 8, 4);
    Put(FBlocks, ASignature, 4);
    Append(FBlocks, ABody);
    return *this;
  }
  /// A block with a text in both forms.
  TLinkBuilder& TextBlock(std::uint32_t ASignature, std::u16string_view AAnsi, std::u16string_view AUnicode) {
    TBytes body;
    PutText(body, AAnsi, false);
    body.resize(260);
    PutText(body, AUnicode, true);
    body.resize(780);
    return Block(ASignature, body);
  }

  [[nodiscard]] TBytes Build() const {
    TBytes link;
    Put(link, HeaderSize, 4);
    PutGuid(link, Class);
    Put(link, Flags, 4);
    Put(link, Attributes, 4);
    for (const std::uint64_t time : Times) Put(link, time, 8);
    Put(link, FileSize, 4);
    Put(link, static_cast<std::uint32_t>(IconIndex), 4);
    Put(link, ShowCommand, 4);
    Put(link, HotKey, 2);
    link.resize(76);
    if ((Flags & 1) != 0) {
      Put(link, FIDList.size(), 2);
      Append(link, FIDList);
    }
    Append(link, FLinkInfo);
    for (std::size_t index = 0; index < FStrings.size(); ++index) {
      if ((Flags & (4U << index)) == 0) continue;
      Put(link, FStrings[index].size(), 2);
      PutText(link, FStrings[index], (Flags & Unicode) != 0, false);
    }
    Append(link, FBlocks);
    Append(link, Tail);
    return link;
  }

 private:
  TLinkBuilder& SetString(std::size_t AIndex, std::u16string_view AText) {
    Flags |= 4U << AIndex;
    FStrings[AIndex] = AText;
    return *this;
  }

  TBytes FIDList;
  TBytes FLinkInfo;
  std::array<std::u16string, 5> FStrings;
  TBytes FBlocks;
};

}  // namespace varcolin::testing
