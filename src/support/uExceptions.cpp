#include "support/uExceptions.h"

#include <utility>

#include "support/uFormat.h"
#include "support/uText.h"

namespace varcolin {

Exception::Exception(std::u16string AMessage) : FMessage(std::move(AMessage)), FUtf8(ToUtf8(FMessage)) {}

Exception::~Exception() = default;

EOSError::EOSError(TWinError ACode, std::u16string_view AText)
    : Exception(Format(u"System Error.  Code: %d.\r\n%s", {static_cast<std::int32_t>(ACode), AText})), FCode(ACode) {}

EFOpenError::EFOpenError(std::u16string_view AFileName, std::u16string_view AText)
    : Exception(Format(u"Cannot open file \"%s\". %s", {AFileName, AText})) {}

EAssertionFailed::EAssertionFailed(std::u16string_view AModule, int ALine)
    : Exception(Format(u"Assertion failure (%s, line %d)", {AModule, ALine})) {}

TErrorText CurrentErrorText() noexcept {
  const std::exception_ptr error = std::current_exception();
  if (error == nullptr) return {};
  try {
    try {
      std::rethrow_exception(error);
    } catch (const Exception& e) {
      return {std::u16string(e.ClassText()), e.Message()};
    } catch (const std::exception& e) {
      return {u"std::exception", FromUtf8(e.what())};
    } catch (...) {
      return {u"unknown exception", {}};
    }
  } catch (...) {  // no memory for the texts
    return {};
  }
}

}  // namespace varcolin
