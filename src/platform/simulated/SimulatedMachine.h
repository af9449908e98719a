// One coherent simulated Windows machine.
#pragma once

#include <cstddef>

#include "platform/Machine.h"
#include "platform/simulated/SimulatedAppManager.h"
#include "platform/simulated/SimulatedClock.h"
#include "platform/simulated/SimulatedCom.h"
#include "platform/simulated/SimulatedFacts.h"
#include "platform/simulated/SimulatedFiles.h"
#include "platform/simulated/SimulatedIcons.h"
#include "platform/simulated/SimulatedMessages.h"
#include "platform/simulated/SimulatedModules.h"
#include "platform/simulated/SimulatedProcessStart.h"
#include "platform/simulated/SimulatedProcesses.h"
#include "platform/simulated/SimulatedRegistry.h"
#include "platform/simulated/SimulatedShell.h"
#include "platform/simulated/SimulatedSync.h"
#include "platform/simulated/SimulatedSystem.h"
#include "platform/simulated/SimulatedTopWindows.h"
#include "platform/simulated/SimulatedXml.h"

namespace varcolin {

/// All facilities over one set of facts, one clock, one registry and one set of drives. A new machine has the folders
/// of a fresh Windows and no file. Its accessors may be used from any thread.
class TSimulatedMachine {
 public:
  explicit TSimulatedMachine(const TSimulatedFacts& AFacts = {});
  TSimulatedMachine(const TSimulatedMachine&) = delete;
  TSimulatedMachine& operator=(const TSimulatedMachine&) = delete;

  /// The facilities as the library receives them; the machine outlives them.
  [[nodiscard]] TMachine Facilities() noexcept;

  [[nodiscard]] const TSimulatedFacts& Facts() const noexcept { return FFacts; }
  [[nodiscard]] TSimulatedClock& Clock() noexcept { return FClock; }
  [[nodiscard]] TSimulatedSync& Sync() noexcept { return FSync; }
  [[nodiscard]] TSimulatedRegistry& Registry() noexcept { return FRegistry; }
  [[nodiscard]] TSimulatedFiles& Files() noexcept { return FFiles; }
  [[nodiscard]] TSimulatedSystem& System() noexcept { return FSystem; }
  [[nodiscard]] TSimulatedModules& Modules() noexcept { return FModules; }
  [[nodiscard]] TSimulatedShell& Shell() noexcept { return FShell; }
  [[nodiscard]] TSimulatedIcons& Icons() noexcept { return FIcons; }
  [[nodiscard]] TSimulatedProcesses& Processes() noexcept { return FProcesses; }
  [[nodiscard]] TSimulatedTopWindows& Windows() noexcept { return FWindows; }
  [[nodiscard]] TSimulatedProcessStart& Starts() noexcept { return FStarts; }
  [[nodiscard]] TSimulatedMessages& Messages() noexcept { return FMessages; }
  [[nodiscard]] TSimulatedCom& Com() noexcept { return FCom; }
  [[nodiscard]] TSimulatedAppManager& Apps() noexcept { return FApps; }

  /// What the library holds open in all facilities together; 0 after it has unloaded.
  [[nodiscard]] std::size_t OpenHandleCount();
  /// Sets the path of the host's executable for the facilities that tell it.
  void SetHostPath(std::u16string_view APath);

 private:
  void AddStandardFolders();

  const TSimulatedFacts FFacts;
  TSimulatedClock FClock;
  TSimulatedSync FSync;
  TSimulatedRegistry FRegistry;
  TSimulatedFiles FFiles;
  TSimulatedSystem FSystem;
  TSimulatedModules FModules;
  TSimulatedShell FShell;
  TSimulatedIcons FIcons;
  TSimulatedProcesses FProcesses;
  TSimulatedTopWindows FWindows;
  TSimulatedProcessStart FStarts;
  TSimulatedMessages FMessages;
  TSimulatedCom FCom;
  TSimulatedXml FXml;
  TSimulatedAppManager FApps;
};

}  // namespace varcolin
