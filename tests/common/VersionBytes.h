// Bytes of version resources for tests.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string_view>
#include <vector>

#include "siblings/VersionResource.h"

namespace varcolin::testing {

using TBytes = std::vector<std::byte>;

inline void PutWord(TBytes& ABytes, std::size_t AWord) {
  ABytes.push_back(static_cast<std::byte>(AWord & 0xFF));
  ABytes.push_back(static_cast<std::byte>(AWord >> 8 & 0xFF));
}

inline void Align(TBytes& ABytes) { ABytes.resize((ABytes.size() + 3) & ~std::size_t{3}); }

inline TBytes Text(std::u16string_view AText) {
  TBytes bytes;
  for (const char16_t unit : AText) PutWord(bytes, unit);
  PutWord(bytes, 0);
  return bytes;
}

/// One structure; AValueLength is what it states, whatever its value's size.
inline TBytes Node(std::u16string_view AKey, std::uint16_t AKind, const TBytes& AValue, std::size_t AValueLength,
                   const std::vector<TBytes>& AChildren = {}) {
  TBytes node;
  PutWord(node, 0);
  PutWord(node, AValueLength);
  PutWord(node, AKind);
  const TBytes key = Text(AKey);
  node.insert(node.end(), key.begin(), key.end());
  Align(node);
  node.insert(node.end(), AValue.begin(), AValue.end());
  for (const TBytes& child : AChildren) {
    Align(node);
    node.insert(node.end(), child.begin(), child.end());
  }
  node[0] = static_cast<std::byte>(node.size() & 0xFF);
  node[1] = static_cast<std::byte>(node.size() >> 8);
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
    PutWord(value, translation.Language);
    PutWord(value, translation.CodePage);
  }
  value.resize(value.size() + AExtraBytes);
  return Node(u"VarFileInfo", 1, {}, 0, {Node(u"Translation", 0, value, value.size())});
}

inline TBytes Resource(const std::vector<TBytes>& AParts, std::u16string_view AKey = u"VS_VERSION_INFO") {
  return Node(AKey, 0, TBytes(52), 52, AParts);
}

}  // namespace varcolin::testing
