// What the sibling libraries have in common: the shape of a library, and the guard around interface operations.
#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "intf/intf_Base.h"
#include "platform/Machine.h"

namespace varcolin {

/// One sibling library over one machine. It keeps its objects for as long as it lives.
class TSiblingLibrary {
 public:
  TSiblingLibrary() = default;
  TSiblingLibrary(const TSiblingLibrary&) = delete;
  TSiblingLibrary& operator=(const TSiblingLibrary&) = delete;
  virtual ~TSiblingLibrary() = default;

  /// The interface for a GUID text in registry form (letters of any case), without a reference of the caller's own;
  /// null for any other text. Any thread.
  [[nodiscard]] virtual void* FindInterface(std::u16string_view ARequest) = 0;
};

/// Makes the libraries; each function lives in the source of its library, so that a program links only what it serves.
/// AMachine's facilities outlive the library.
[[nodiscard]] std::unique_ptr<TSiblingLibrary> MakeHelperLibrary(const TMachine& AMachine);
[[nodiscard]] std::unique_ptr<TSiblingLibrary> MakeLocalizerLibrary(const TMachine& AMachine);
[[nodiscard]] std::unique_ptr<TSiblingLibrary> MakeSettingsLibrary(const TMachine& AMachine);
[[nodiscard]] std::unique_ptr<TSiblingLibrary> MakeTolvaneLibrary(const TMachine& AMachine);
[[nodiscard]] std::unique_ptr<TSiblingLibrary> MakeBrismereLibrary(const TMachine& AMachine);
[[nodiscard]] std::unique_ptr<TSiblingLibrary> MakeQuilletLibrary(const TMachine& AMachine);
[[nodiscard]] std::unique_ptr<TSiblingLibrary> MakeDebugModeLibrary(const TMachine& AMachine);

/// Whether ARequest is the GUID text of interface I.
[[nodiscard]] bool IsRequestFor(std::u16string_view ARequest, const TGUID& AIID) noexcept;

/// Runs an operation's body; an exception ends here and gives ADefault.
template <class T, class TBody>
[[nodiscard]] T Guarded(T ADefault, TBody&& ABody) noexcept {
  try {
    return ABody();
  } catch (...) {
    return ADefault;
  }
}

template <class TBody>
void GuardedCall(TBody&& ABody) noexcept {
  try {
    ABody();
  } catch (...) {
  }
}

/// Writes the text that ABody returns to an operation's result argument; null when it is empty or ABody raises.
template <class TBody>
void ReturnText(TOleString* AResult, TBody&& ABody) noexcept {
  if (AResult == nullptr) return;
  *AResult = nullptr;
  GuardedCall([&] {
    const auto text = ABody();
    if (!text.empty()) *AResult = AllocOleString(text);
  });
}

}  // namespace varcolin
