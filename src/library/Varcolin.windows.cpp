// The export of the Windows library, and its life: the modules load with the library and unload with it.
#include <cstdint>
#include <memory>

#include "library/uModules.h"
#include "library/uVarcolin.h"
#include "platform/windows/WindowsMachine.h"

namespace {

struct TLoadedLibrary {
  varcolin::TWindowsMachine Machine;
  varcolin::TLibraryModules Modules{Machine.Facilities()};
};

std::unique_ptr<TLoadedLibrary>& Loaded() {
  static std::unique_ptr<TLoadedLibrary> loaded;
  return loaded;
}

}  // namespace

/// The system's call at load and unload; a load that fails makes LoadLibrary fail.
extern "C" int __stdcall DllMain(void* /*AModule*/, std::uint32_t AReason, void* AProcessEnds) {
  constexpr std::uint32_t Detach = 0;
  constexpr std::uint32_t Attach = 1;
  if (AReason == Attach) {
    try {
      Loaded() = std::make_unique<TLoadedLibrary>();
    } catch (const std::exception&) {
      return 0;
    }
  } else if (AReason == Detach) {
    // a process that ends has ended its other threads wherever they stood, perhaps inside a lock: leave everything
    if (AProcessEnds == nullptr) {
      Loaded().reset();
    } else {
      static_cast<void>(Loaded().release());
    }
  }
  return 1;
}

extern "C" void* __stdcall GetInstance(const char16_t* AGuid, std::uint32_t /*AParam*/) {
  try {
    return varcolin::TVarcolin::Instance(AGuid);
  } catch (const std::exception&) {
    return nullptr;
  }
}
