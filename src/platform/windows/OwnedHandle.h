// Kernel handles: their values and ownership inside the Windows implementation.
#pragma once

#include <memory>

#include "platform/windows/WindowsApi.h"

namespace varcolin {

/// Kernel handles as the seam's handle classes keep them.
[[nodiscard]] inline HANDLE ToHandle(std::uintptr_t AValue) noexcept { return reinterpret_cast<HANDLE>(AValue); }
[[nodiscard]] inline std::uintptr_t ToValue(HANDLE AHandle) noexcept {
  return reinterpret_cast<std::uintptr_t>(AHandle);
}

/// Waits for one handle; ATimeout in milliseconds.
[[nodiscard]] inline EWaitResult WaitForHandle(HANDLE AHandle, std::uint32_t ATimeout) noexcept {
  switch (WaitForSingleObject(AHandle, ATimeout)) {
    case WAIT_OBJECT_0:
      return EWaitResult::Signaled;
    case WAIT_TIMEOUT:
      return EWaitResult::TimedOut;
    default:
      return EWaitResult::Failed;
  }
}

struct TCloseHandle {
  void operator()(HANDLE AHandle) const noexcept {
    if (AHandle != INVALID_HANDLE_VALUE) CloseHandle(AHandle);
  }
};
/// Owns a kernel handle, or holds null or INVALID_HANDLE_VALUE.
using TOwnedHandle = std::unique_ptr<void, TCloseHandle>;

struct TLocalFree {
  void operator()(void* AMemory) const noexcept { LocalFree(AMemory); }
};
/// Owns memory that a Windows call has allocated with LocalAlloc.
template <class T>
using TLocalMemory = std::unique_ptr<T, TLocalFree>;

}  // namespace varcolin
