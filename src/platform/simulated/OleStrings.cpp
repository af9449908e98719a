// The OLE strings of the library boundary where there is no Windows: blocks of the C heap laid out like the system's, a
// 32-bit length in bytes, the text, a NUL. They are exported, so that a host frees what the library allocated.
#include <cstdlib>
#include <cstring>
#include <limits>

#include "intf/intf_Base.h"

namespace varcolin {

namespace {

using TLength = std::uint32_t;

[[nodiscard]] char* BlockOf(const char16_t* AText) noexcept {
  return reinterpret_cast<char*>(const_cast<char16_t*>(AText)) - sizeof(TLength);
}

}  // namespace

[[gnu::visibility("default")]] TOleString AllocOleString(std::u16string_view AText) noexcept {
  if (AText.size() > std::numeric_limits<std::int32_t>::max() / sizeof(char16_t)) return nullptr;
  const auto length = static_cast<TLength>(AText.size() * sizeof(char16_t));
  char* const block = static_cast<char*>(std::malloc(sizeof(TLength) + length + sizeof(char16_t)));
  if (block == nullptr) return nullptr;
  std::memcpy(block, &length, sizeof(TLength));
  char* const text = block + sizeof(TLength);
  if (length != 0) std::memcpy(text, AText.data(), length);
  std::memset(text + length, 0, sizeof(char16_t));
  return reinterpret_cast<TOleString>(text);
}

[[gnu::visibility("default")]] void FreeOleString(TOleString AText) noexcept {
  if (AText != nullptr) std::free(BlockOf(AText));
}

[[gnu::visibility("default")]] std::size_t OleStringLength(const char16_t* AText) noexcept {
  if (AText == nullptr) return 0;
  TLength length = 0;
  std::memcpy(&length, BlockOf(AText), sizeof(TLength));
  return length / sizeof(char16_t);
}

}  // namespace varcolin
