// Reads a shell link file from front to end.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>

#include "support/uBytes.h"
#include "support/uExceptions.h"

namespace varcolin {

/// A shell link file that is none. The one exception of the parser.
class TShellLinkInfoException final : public Exception {
 public:
  using Exception::Exception;
  [[nodiscard]] std::u16string_view ClassText() const noexcept override { return u"TShellLinkInfoException"; }
};

/// Hands out the bytes of a link one part after the other. The bytes and the file's name outlive it and the parts.
class TShellLinkReader {
 public:
  TShellLinkReader(std::span<const std::byte> AData, std::u16string_view AFileName) noexcept
      : FLeft(AData), FFileName(AFileName) {}

  [[nodiscard]] std::u16string_view FileName() const noexcept { return FFileName; }
  [[nodiscard]] bool AtEnd() const noexcept { return FLeft.empty(); }
  /// The next ASize bytes; fails when there are fewer.
  [[nodiscard]] std::span<const std::byte> Take(std::size_t ASize) {
    if (ASize > FLeft.size()) FailFormat();
    const std::span<const std::byte> part = FLeft.first(ASize);
    FLeft = FLeft.subspan(ASize);
    return part;
  }
  template <class T>
  [[nodiscard]] T TakeNumber() {
    return NumberAt<T>(Take(sizeof(T)), 0);
  }
  /// The next part, which begins with its own size in 4 bytes; at least those.
  [[nodiscard]] std::span<const std::byte> TakeSized() {
    const std::span<const std::byte> from = FLeft;
    const auto size = TakeNumber<std::uint32_t>();
    if (size > sizeof(size)) static_cast<void>(Take(size - sizeof(size)));
    return from.first(from.size() - FLeft.size());
  }

  /// Fail with the message about a file of the wrong size or form.
  [[noreturn]] void FailFormat() const { FailFormat(FFileName); }
  [[noreturn]] static void FailFormat(std::u16string_view AFileName);

 private:
  std::span<const std::byte> FLeft;
  std::u16string_view FFileName;
};

}  // namespace varcolin
