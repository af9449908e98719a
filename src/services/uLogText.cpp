#include "services/uLogText.h"

#include <algorithm>
#include <bit>
#include <new>

namespace varcolin {
namespace {

static_assert(std::endian::native == std::endian::little, "the file is written as the units lie in memory");

constexpr std::u16string_view ByteOrderMark = u"\xFEFF";
constexpr std::size_t LeastGrowth = 4096;

}  // namespace

TLogText& TLogText::operator<<(std::u16string_view AText) {
  if (FSize == 0) Append(ByteOrderMark);
  Append(AText);
  return *this;
}

std::span<const std::byte> TLogText::Bytes() {
  if (FSize == 0) Append(ByteOrderMark);
  return std::as_bytes(std::span(FUnits.get(), FSize));
}

void TLogText::Append(std::u16string_view AText) {
  Reserve(FSize + AText.size());
  std::ranges::copy(AText, FUnits.get() + FSize);
  FSize += AText.size();
}

void TLogText::Reserve(std::size_t ASize) {
  if (ASize <= FCapacity) return;
  const std::size_t capacity = std::max(ASize, FCapacity + std::max(FCapacity / 4, LeastGrowth));
  void* const grown = std::realloc(FUnits.get(), capacity * sizeof(char16_t));
  if (grown == nullptr) throw std::bad_alloc();
  static_cast<void>(FUnits.release());  // reallocation has given the old block back
  FUnits.reset(static_cast<char16_t*>(grown));
  FCapacity = capacity;
}

}  // namespace varcolin
