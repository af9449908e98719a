// Little-endian numbers in bytes that come from anywhere.
#pragma once

#include <cstddef>
#include <cstring>
#include <span>
#include <type_traits>

namespace varcolin {

/// The number (or plain record) of type T at AOffset; zero when it does not lie wholly inside AData.
template <class T>
[[nodiscard]] T NumberAt(std::span<const std::byte> AData, std::size_t AOffset) noexcept {
  static_assert(std::is_trivially_copyable_v<T>);
  T value{};
  if (AOffset <= AData.size() && AData.size() - AOffset >= sizeof(T)) {
    std::memcpy(&value, AData.data() + AOffset, sizeof(T));
  }
  return value;
}

/// What stands from AOffset on; nothing when that lies past the end.
[[nodiscard]] inline std::span<const std::byte> BytesFrom(std::span<const std::byte> AData,
                                                          std::size_t AOffset) noexcept {
  return AOffset < AData.size() ? AData.subspan(AOffset) : std::span<const std::byte>{};
}

/// What stands in front of the first zero byte; everything when there is none.
[[nodiscard]] inline std::span<const std::byte> BytesToNul(std::span<const std::byte> AData) noexcept {
  const void* const end = AData.empty() ? nullptr : std::memchr(AData.data(), 0, AData.size());
  if (end == nullptr) return AData;
  return AData.first(static_cast<std::size_t>(static_cast<const std::byte*>(end) - AData.data()));
}

}  // namespace varcolin
