// Exports of the registry editor: each loads or is refused with an error that names the file, and what has loaded once
// loads again.
#include "fuzz/Fuzz.h"
#include "platform/simulated/RegistryText.h"
#include "platform/simulated/SimulatedClock.h"
#include "platform/simulated/SimulatedRegistry.h"
#include "platform/simulated/SimulatedSync.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* AData, std::size_t ASize) {
  using namespace varcolin;
  const std::span<const std::byte> input = fuzz::AsInput(AData, ASize);
  TSimulatedClock clock(TFileTime{});
  TSimulatedSync sync(clock);
  TSimulatedRegistry registry(clock, sync, {.Is64BitWindows = true, .IsWow64 = true, .UserSid = u"S-1-5-21-1"});
  bool hasLoaded = false;
  try {
    LoadRegistryText(input, "fuzz.reg", registry);
    hasLoaded = true;
    LoadRegistryText(input, "fuzz.reg", registry);
  } catch (const EImageError& error) {
    fuzz::Check(!hasLoaded, "an export that has loaded loads again");
    fuzz::Check(error.Message().find(u"fuzz.reg") != std::u16string::npos, "an error names the file");
  }
  return 0;
}
