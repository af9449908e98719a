// A whole machine behind one gate.
#pragma once

#include "platform/Machine.h"
#include "platform/decorators/ForwardingAppManager.h"
#include "platform/decorators/ForwardingFiles.h"
#include "platform/decorators/ForwardingModules.h"
#include "platform/decorators/ForwardingPrograms.h"
#include "platform/decorators/ForwardingRegistry.h"
#include "platform/decorators/ForwardingSystem.h"
#include "platform/decorators/ForwardingXml.h"

namespace varcolin {

/// Puts a gate in front of a machine's registry, files, system facts, modules, shell, icons, processes, program
/// starts, windows, XML parser and application manager. Waiting, message boxes and COM pass as they are. The inner
/// machine and the gate outlive it.
class TForwardingMachine {
 public:
  TForwardingMachine(const TMachine& AInner, ICallGate& AGate)
      : FInner(AInner),
        FRegistry(AInner.Registry, AGate),
        FFiles(AInner.Files, AGate),
        FSystem(AInner.System, AGate),
        FModules(AInner.Modules, AGate),
        FShell(AInner.Shell, AGate),
        FIcons(AInner.Icons, AGate),
        FProcesses(AInner.Processes, AGate),
        FStarts(AInner.Starts, AGate),
        FWindows(AInner.Windows, AGate),
        FXml(AInner.Xml, AGate),
        FApps(AInner.Apps, AGate) {}

  [[nodiscard]] TMachine Facilities() noexcept {
    return {FInner.Sync, FRegistry, FFiles,   FSystem,         FModules,   FShell, FIcons,
            FProcesses,  FStarts,   FWindows, FInner.Messages, FInner.Com, FXml,   FApps};
  }

 private:
  TMachine FInner;
  TForwardingRegistry FRegistry;
  TForwardingFiles FFiles;
  TForwardingSystemFacts FSystem;
  TForwardingModules FModules;
  TForwardingShell FShell;
  TForwardingIcons FIcons;
  TForwardingProcesses FProcesses;
  TForwardingProcessStart FStarts;
  TForwardingTopWindows FWindows;
  TForwardingXml FXml;
  TForwardingAppManager FApps;
};

}  // namespace varcolin
