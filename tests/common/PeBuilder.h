// Builds small executables and icon files for tests: valid enough for Windows itself to read their resources.
#pragma once

#include <cstddef>
#include <cstdint>
#include <map>
#include <span>
#include <string_view>
#include <vector>

#include "common/Bytes.h"

namespace varcolin::testing {

/// A 32-bit picture of one colour in the form that icons have it.
inline TBytes MakePicture(std::uint8_t ASide, std::uint32_t AColour) {
  TBytes bytes;
  Put(bytes, 40, 4);
  Put(bytes, ASide, 4);
  Put(bytes, std::uint64_t{ASide} * 2, 4);  // with the mask
  Put(bytes, 1, 2);
  Put(bytes, 32, 2);
  bytes.resize(40);
  for (int i = 0; i < ASide * ASide; ++i) Put(bytes, AColour, 4);
  bytes.resize(bytes.size() + (ASide + 31U) / 32 * 4 * ASide);  // the mask: all opaque
  return bytes;
}

/// What icon files and icon groups begin with: how many pictures, and of each its facts and the number with which
/// APlace says where it lies, in APlaceSize bytes.
template <class TPlace>
TBytes MakeIconHeader(std::span<const std::uint8_t> ASides, std::size_t APlaceSize, TPlace APlace) {
  TBytes header;
  Put(header, 0, 2);
  Put(header, 1, 2);
  Put(header, ASides.size(), 2);
  for (const std::uint8_t side : ASides) {
    Put(header, side, 1);
    Put(header, side, 1);
    Put(header, 0, 2);
    Put(header, 1, 2);
    Put(header, 32, 2);
    Put(header, MakePicture(side, 0).size(), 4);
    Put(header, APlace(side), APlaceSize);
  }
  return header;
}

/// An icon file with one picture of each given size.
inline TBytes MakeIconFile(std::span<const std::uint8_t> ASides) {
  TBytes pictures;
  TBytes file = MakeIconHeader(ASides, 4, [&](std::uint8_t ASide) {
    const std::size_t at = 6 + ASides.size() * 16 + pictures.size();
    Append(pictures, MakePicture(ASide, 0xFF000000U + ASide));
    return at;
  });
  Append(file, pictures);
  return file;
}

/// Collects resources and writes an executable with them.
class TPeBuilder {
 public:
  static constexpr std::uint16_t UsEnglish = 0x409;

  void Add(std::uint16_t AType, std::uint16_t AId, TBytes AData, std::uint16_t ALanguage = UsEnglish) {
    FTypes[AType][AId][ALanguage] = std::move(AData);
  }
  /// The sixteen strings of one block; AFirstId is a multiple of 16.
  void AddStrings(std::uint32_t AFirstId, std::span<const std::u16string_view> ATexts,
                  std::uint16_t ALanguage = UsEnglish) {
    TBytes block;
    for (std::size_t i = 0; i < 16; ++i) {
      const std::u16string_view text = i < ATexts.size() ? ATexts[i] : std::u16string_view{};
      Put(block, text.size(), 2);
      for (const char16_t unit : text) Put(block, unit, 2);
    }
    Add(6, static_cast<std::uint16_t>(AFirstId / 16 + 1), std::move(block), ALanguage);
  }
  void AddIcon(std::uint16_t AGroup, std::span<const std::uint8_t> ASides) {
    Add(14, AGroup, MakeIconHeader(ASides, 2, [&](std::uint8_t ASide) {
          Add(3, ++FLastIcon, MakePicture(ASide, 0xFF000000U + AGroup));
          return FLastIcon;
        }));
  }

  [[nodiscard]] TBytes Build(bool AIs64 = false) const {
    constexpr std::uint32_t Address = 0x1000;
    constexpr std::uint32_t HeaderSize = 0x200;
    TBytes resources = FTypes.empty() ? TBytes{} : BuildResources(Address);
    const std::size_t used = resources.size();
    resources.resize((used + HeaderSize - 1) / HeaderSize * HeaderSize);
    const std::uint16_t optionalSize = AIs64 ? 240 : 224;
    TBytes file;
    Put(file, 0x5A4D, 2);
    file.resize(0x3C);
    Put(file, 0x40, 4);
    Put(file, 0x4550, 4);
    Put(file, AIs64 ? 0x8664 : 0x14C, 2);
    Put(file, 1, 2);  // sections
    Put(file, 0, 12);
    Put(file, optionalSize, 2);
    Put(file, 0x2102, 2);  // a 32-bit library
    const std::size_t optional = file.size();
    Put(file, AIs64 ? 0x20B : 0x10B, 2);
    file.resize(optional + optionalSize);
    const std::size_t base = optional + (AIs64 ? 24 : 28);
    Patch(file, base, 0x10000000, AIs64 ? 8 : 4);
    Patch(file, optional + 32, 0x1000, 4);  // section alignment
    Patch(file, optional + 36, HeaderSize, 4);
    Patch(file, optional + 40, 4, 2);  // system version
    Patch(file, optional + 48, 4, 2);  // subsystem version
    Patch(file, optional + 56, Address + (resources.size() + 0xFFF) / 0x1000 * 0x1000, 4);
    Patch(file, optional + 60, HeaderSize, 4);
    Patch(file, optional + 68, 2, 2);  // graphical subsystem
    const std::size_t directories = optional + (AIs64 ? 108 : 92);
    Patch(file, directories, 16, 4);
    if (used != 0) {
      Patch(file, directories + 4 + 16, Address, 4);
      Patch(file, directories + 4 + 20, used, 4);
    }
    for (const char unit : std::string_view(".rsrc\0\0\0", 8)) file.push_back(static_cast<std::byte>(unit));
    Put(file, used, 4);
    Put(file, Address, 4);
    Put(file, resources.size(), 4);
    Put(file, HeaderSize, 4);
    Put(file, 0, 12);
    Put(file, 0x40000040, 4);
    file.resize(HeaderSize);
    Append(file, resources);
    return file;
  }

 private:
  static void PutDirectory(TBytes& ABytes, std::size_t ACount) {
    Put(ABytes, 0, 12);
    Put(ABytes, 0, 2);
    Put(ABytes, ACount, 2);
  }

  [[nodiscard]] TBytes BuildResources(std::uint32_t AAddress) const {
    // all directories first, then the data entries, then the data
    std::size_t directorySize = 16 + FTypes.size() * 8;
    std::size_t dataCount = 0;
    for (const auto& [type, names] : FTypes) {
      directorySize += 16 + names.size() * 8;
      for (const auto& [name, languages] : names) {
        directorySize += 16 + languages.size() * 8;
        dataCount += languages.size();
      }
    }
    TBytes types, names, languages, entries, data;
    const std::size_t namesAt = 16 + FTypes.size() * 8;
    std::size_t languagesAt = namesAt;
    for (const auto& [type, byName] : FTypes) languagesAt += 16 + byName.size() * 8;
    PutDirectory(types, FTypes.size());
    for (const auto& [type, byName] : FTypes) {
      Put(types, type, 4);
      Put(types, 0x80000000U + namesAt + names.size(), 4);
      PutDirectory(names, byName.size());
      for (const auto& [name, byLanguage] : byName) {
        Put(names, name, 4);
        Put(names, 0x80000000U + languagesAt + languages.size(), 4);
        PutDirectory(languages, byLanguage.size());
        for (const auto& [language, bytes] : byLanguage) {
          Put(languages, language, 4);
          Put(languages, directorySize + entries.size(), 4);
          Put(entries, AAddress + directorySize + dataCount * 16 + data.size(), 4);
          Put(entries, bytes.size(), 4);
          Put(entries, 0, 8);
          Append(data, bytes);
          data.resize((data.size() + 3) & ~std::size_t{3});
        }
      }
    }
    for (const TBytes& part : {names, languages, entries, data}) Append(types, part);
    return types;
  }

  std::map<std::uint16_t, std::map<std::uint16_t, std::map<std::uint16_t, TBytes>>> FTypes;
  std::uint16_t FLastIcon = 0;
};

}  // namespace varcolin::testing
