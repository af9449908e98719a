// The exception handler that the library's worker threads share.
#pragma once

namespace varcolin {

class IMessageBoxes;

/// Class operations only, any thread.
class TThreadExceptionHandler {
 public:
  static void Load(IMessageBoxes& AMessages) noexcept;
  static void Unload() noexcept;

  /// Shows the exception that is being handled to the user, with its class and message; the silent abort and the
  /// absence of an exception are passed over. Waits until the user has closed the message.
  static void Show() noexcept;

 private:
  static inline IMessageBoxes* FMessages = nullptr;
};

}  // namespace varcolin
