// Ownership of kernel handles inside the Windows implementation.
#pragma once

#include <memory>

#include "platform/windows/WindowsApi.h"

namespace varcolin {

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
