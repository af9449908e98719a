// Manifests of servicing packages.
#include "products/uManifest.h"

#include "fuzz/Fuzz.h"
#include "platform/simulated/SimulatedCom.h"
#include "platform/simulated/SimulatedXml.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* AData, std::size_t ASize) {
  using namespace varcolin;
  static TSimulatedCom com;
  static TSimulatedXml xml(com);
  const TComScope joined(com, ECom::Apartment);
  TManifestReader reader(xml);
  TManifest manifest;
  manifest.Language = u"untouched";
  if (reader.Read(fuzz::AsInput(AData, ASize), manifest) != WinError::Success) {
    fuzz::Check(manifest.Language == u"untouched", "a manifest that cannot be read leaves the result alone");
  }
  return 0;
}
