#include "platform/windows/WindowsMachine.h"
#include "siblings/SiblingEntry.h"

extern "C" void* VARCOLIN_CALL GetInstance(const char16_t* AGuid, std::uint32_t) {
  return varcolin::SiblingInstance<varcolin::TWindowsMachine>(&varcolin::MakeDebugModeLibrary, AGuid);
}
