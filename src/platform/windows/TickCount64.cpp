// The compiler's thread library imports GetTickCount64, which Windows XP does not have: with that import no library of
// the suite would load there. This object gives the linker a replacement for the imported pointer; the build asks for
// it by that pointer's name.
#include <atomic>

#include "platform/windows/WindowsApi.h"

namespace varcolin {

namespace {

/// Milliseconds since the system started: the 32-bit count, and how often it was seen to start again. Used before
/// static objects are made.
ULONGLONG WINAPI ReplacedTickCount64() {
  static constinit std::atomic<std::uint64_t> last{0};
  std::uint64_t seen = last.load();
  for (;;) {
    std::uint64_t now = (seen & ~std::uint64_t{0xFFFFFFFF}) | GetTickCount();
    if (now < seen) now += std::uint64_t{1} << 32;
    if (last.compare_exchange_weak(seen, now)) return now;
  }
}

}  // namespace

extern "C" {
extern ULONGLONG(WINAPI* const ImportedTickCount64)() __asm__("__imp__GetTickCount64@0");
ULONGLONG(WINAPI* const ImportedTickCount64)() = &ReplacedTickCount64;
}

}  // namespace varcolin
