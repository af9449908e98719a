// The module that this code is linked into: the library, or a program that contains it.
#pragma once

#include "platform/windows/WindowsApi.h"

/// The linker's name for the address at which the module lies.
extern "C" IMAGE_DOS_HEADER __ImageBase;

namespace varcolin {

[[nodiscard]] inline HMODULE OwnModule() noexcept { return reinterpret_cast<HMODULE>(&__ImageBase); }

}  // namespace varcolin
