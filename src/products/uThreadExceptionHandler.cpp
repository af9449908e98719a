#include "products/uThreadExceptionHandler.h"

#include "platform/MessageBoxes.h"
#include "support/uExceptions.h"
#include "support/uFormat.h"

namespace varcolin {

void TThreadExceptionHandler::Load(IMessageBoxes& AMessages) noexcept { FMessages = &AMessages; }

void TThreadExceptionHandler::Unload() noexcept { FMessages = nullptr; }

void TThreadExceptionHandler::Show() noexcept {
  const std::exception_ptr current = std::current_exception();
  if (!current) return;
  try {
    std::rethrow_exception(current);
  } catch (const EAbort&) {
  } catch (...) {
    const TErrorText error = CurrentErrorText();
    try {
      FMessages->ShowBox(Format(u"Exception %s.\r\n%s", {error.ClassText, error.Message}), u"Application Error",
                         MessageStyle::IconError | MessageStyle::TaskModal);
    } catch (const std::exception&) {
      // a message that cannot be shown is lost; the caller logs the exception as well
    }
  }
}

}  // namespace varcolin
