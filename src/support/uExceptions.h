// The exceptions of the library. Each has a class name and a message, which the logs show.
#pragma once

#include <cstdint>
#include <exception>
#include <source_location>
#include <string>
#include <string_view>

#include "platform/Types.h"

namespace varcolin {

/// The base of the library's exceptions. what() is the message in UTF-8.
class Exception : public std::exception {
 public:
  explicit Exception(std::u16string AMessage);
  ~Exception() override;
  [[nodiscard]] virtual std::u16string_view ClassText() const noexcept { return u"Exception"; }
  [[nodiscard]] const std::u16string& Message() const noexcept { return FMessage; }
  [[nodiscard]] const char* what() const noexcept override { return FUtf8.c_str(); }

 private:
  std::u16string FMessage;
  std::string FUtf8;
};

/// The silent abort: ends the current work without a message or a log line.
class EAbort final : public Exception {
 public:
  EAbort() : Exception(u"Operation aborted") {}
  [[nodiscard]] std::u16string_view ClassText() const noexcept override { return u"EAbort"; }
};

/// A failed Windows call: "System Error.  Code: %d.\r\n%s" with the code and the system's text for it.
class EOSError final : public Exception {
 public:
  EOSError(TWinError ACode, std::u16string_view AText);
  [[nodiscard]] std::u16string_view ClassText() const noexcept override { return u"EOSError"; }
  [[nodiscard]] TWinError Code() const noexcept { return FCode; }

 private:
  TWinError FCode;
};

/// A file that does not open: "Cannot open file "%s". %s" with its name and the system's text for the error.
class EFOpenError final : public Exception {
 public:
  EFOpenError(std::u16string_view AFileName, std::u16string_view AText);
  [[nodiscard]] std::u16string_view ClassText() const noexcept override { return u"EFOpenError"; }
};

/// A broken contract inside the library: "Assertion failure (uItemProduct, line 524)".
class EAssertionFailed final : public Exception {
 public:
  EAssertionFailed(std::u16string_view AModule, int ALine);
  [[nodiscard]] std::u16string_view ClassText() const noexcept override { return u"EAssertionFailed"; }
};

/// A format string that does not fit its arguments.
class EConvertError final : public Exception {
 public:
  using Exception::Exception;
  [[nodiscard]] std::u16string_view ClassText() const noexcept override { return u"EConvertError"; }
};

/// Class name and message of any exception; for one that is not the library's own, "std::exception" and what().
struct TErrorText {
  std::u16string ClassText;
  std::u16string Message;
};
/// The texts of the exception that is being handled; empty texts when none is.
[[nodiscard]] TErrorText CurrentErrorText() noexcept;

}  // namespace varcolin
