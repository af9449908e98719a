// Bytes that tests put together.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace varcolin::testing {

using TBytes = std::vector<std::byte>;

/// Appends a little-endian number of ASize bytes, which may be more than it needs.
inline void Put(TBytes& ABytes, std::uint64_t AValue, std::size_t ASize) {
  for (; ASize > 0; --ASize, AValue >>= 8) ABytes.push_back(static_cast<std::byte>(AValue & 0xFF));
}
/// Overwrites a little-endian number of ASize bytes.
inline void Patch(TBytes& ABytes, std::size_t AAt, std::uint64_t AValue, std::size_t ASize) {
  for (std::size_t i = 0; i < ASize; ++i) ABytes[AAt + i] = static_cast<std::byte>(AValue >> (8 * i) & 0xFF);
}
inline void Append(TBytes& ABytes, std::span<const std::byte> AMore) {
  ABytes.insert(ABytes.end(), AMore.begin(), AMore.end());
}

}  // namespace varcolin::testing
