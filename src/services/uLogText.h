// The lines of the statistics log, as they stand in its file.
#pragma once

#include <cstddef>
#include <cstdlib>
#include <memory>
#include <span>
#include <string_view>

namespace varcolin {

/// A growing UTF-16 text: the byte-order mark, then lines that end with CR LF. All lines are one block, so that writing
/// the file needs no second copy. It grows by a quarter through the C library's reallocation, which can extend a large
/// block where it lies: the log is most of what a long scan keeps in memory. One thread at a time.
class TLogText {
 public:
  /// Removes all lines; the memory is kept for the next ones.
  void Clear() noexcept { FSize = 0; }
  /// Appends a part of a line.
  TLogText& operator<<(std::u16string_view AText);
  /// Ends the line.
  void EndLine() { *this << u"\r\n"; }
  /// Length, for ShrinkTo.
  [[nodiscard]] std::size_t Size() const noexcept { return FSize; }
  /// Drops what was appended since the text had a size.
  void ShrinkTo(std::size_t ASize) noexcept { FSize = ASize; }
  /// The file's content, until the next change.
  [[nodiscard]] std::span<const std::byte> Bytes();

 private:
  struct TFree {
    void operator()(char16_t* AMemory) const noexcept { std::free(AMemory); }
  };
  void Append(std::u16string_view AText);
  void Reserve(std::size_t ASize);

  std::unique_ptr<char16_t[], TFree> FUnits;
  std::size_t FSize = 0;
  std::size_t FCapacity = 0;
};

}  // namespace varcolin
