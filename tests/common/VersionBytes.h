// Bytes of version resources for tests.
#pragma once

#include <string_view>

#include "common/Bytes.h"
#include "siblings/VersionResource.h"

namespace varcolin::testing {

inline void Align(TBytes& ABytes) { ABytes.resize((ABytes.size() + 3) & ~std::size_t{3}); }

inline TBytes Text(std::u16string_view AText) {
  TBytes bytes;
  for (const char16_t unit : AText) Put(bytes, unit, 2);
  Put(bytes, 0, 2);
  return bytes;
}

/// One structure; AValueLength is what it states, whatever its value's size.
inline TBytes Node(std::u16string_view AKey, std::uint16_t AKind, const TBytes& AValue, std::size_t AValueLength,
                   const std::vector<TBytes>& AChildren = {}) {
  TBytes node;
  for (const std::size_t word : {std::size_t{0}, AValueLength, std::size_t{AKind}}) Put(node, word, 2);
  Append(node, Text(AKey));
  Align(node);
  Append(node, AValue);
  for (const TBytes& child : AChildren) {
    Align(node);
    Append(node, child);
  }
  Patch(node, 0, node.size(), 2);
  return node;
}

inline TBytes String(std::u16string_view AName, std::u16string_view AValue) {
  return Node(AName, 1, Text(AValue), AValue.size() + 1);
}

inline TBytes Table(std::u16string_view AKey, const std::vector<TBytes>& AStrings) {
  return Node(AKey, 1, {}, 0, AStrings);
}

inline TBytes Strings(const std::vector<TBytes>& ATables) { return Node(u"StringFileInfo", 1, {}, 0, ATables); }

inline TBytes Translations(const std::vector<TVersionTranslation>& AList, std::size_t AExtraBytes = 0) {
  TBytes value;
  for (const TVersionTranslation& translation : AList) {
    Put(value, translation.Language, 2);
    Put(value, translation.CodePage, 2);
  }
  value.resize(value.size() + AExtraBytes);
  return Node(u"VarFileInfo", 1, {}, 0, {Node(u"Translation", 0, value, value.size())});
}

inline TBytes Resource(const std::vector<TBytes>& AParts, std::u16string_view AKey = u"VS_VERSION_INFO") {
  return Node(AKey, 0, TBytes(52), 52, AParts);
}

/// A version resource with the fixed part only.
inline TBytes MakeVersion(std::uint16_t AMajor, std::uint16_t AMinor) {
  TBytes fixed;
  Put(fixed, 0xFEEF04BD, 4);
  Put(fixed, 0x10000, 4);
  for (int i = 0; i < 2; ++i) {
    Put(fixed, AMinor, 2);
    Put(fixed, AMajor, 2);
    Put(fixed, 0, 4);
  }
  fixed.resize(52);
  return Node(u"VS_VERSION_INFO", 0, fixed, 52);
}

}  // namespace varcolin::testing
