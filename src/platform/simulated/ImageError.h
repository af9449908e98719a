// The error of a broken machine image.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "support/uExceptions.h"
#include "support/uText.h"

namespace varcolin {

/// A machine image that cannot be read. The message is "FILE:LINE: message", without a line "FILE: message".
class EImageError final : public Exception {
 public:
  /// AFileName: UTF-8. ALine: counted from 1, 0 when the error concerns the whole file.
  EImageError(std::string_view AFileName, std::size_t ALine, std::u16string_view AMessage)
      : Exception(Compose(AFileName, ALine, AMessage)), FFileName(AFileName), FLine(ALine) {}
  [[nodiscard]] std::u16string_view ClassText() const noexcept override { return u"EImageError"; }
  [[nodiscard]] const std::string& FileName() const noexcept { return FFileName; }
  [[nodiscard]] std::size_t Line() const noexcept { return FLine; }

 private:
  static std::u16string Compose(std::string_view AFileName, std::size_t ALine, std::u16string_view AMessage) {
    std::u16string text = FromUtf8(AFileName);
    if (ALine != 0) text.append(u":").append(IntToStr(static_cast<std::int64_t>(ALine)));
    return text.append(u": ").append(AMessage);
  }

  std::string FFileName;
  std::size_t FLine;
};

}  // namespace varcolin
