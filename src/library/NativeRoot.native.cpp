#include "library/NativeRoot.h"

#include "platform/simulated/Embedded.h"
#include "platform/simulated/MachineImage.h"
#include "siblings/Siblings.h"
#include "support/uText.h"

namespace varcolin {

TInstalledMachine::TInstalledMachine(const TSimulatedFacts& AFacts) : FMachine(AFacts) {
  TSiblingLibraries::Load(FMachine.Facilities());
  for (const TSiblingExport& sibling : SiblingExports()) {
    FMachine.Modules().RegisterModule(sibling.Name, sibling.GetInstance);
  }
  constexpr std::string_view IconEnding = ".ico";
  for (const TEmbeddedFile& file : EmbeddedResources()) {
    std::string_view name = file.Path;
    if (!name.ends_with(IconEnding)) continue;
    name.remove_suffix(IconEnding.size());
    FMachine.Icons().RegisterOwnIcon(FromUtf8(name), std::as_bytes(std::span(file.Begin, file.Size)));
  }
}

TInstalledMachine::~TInstalledMachine() { TSiblingLibraries::Unload(); }

TNativeRoot::TNativeRoot(const IImageSource& AImage) : FInstalled(ReadFacts(AImage)) {
  LoadImage(AImage, Machine());
  Machine().Clock().SetMode(EClockMode::Running);
  FModules = std::make_unique<TLibraryModules>(Machine().Facilities());
}

}  // namespace varcolin
