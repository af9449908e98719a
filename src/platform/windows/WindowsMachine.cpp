#include "platform/windows/WindowsMachine.h"

#include "platform/windows/WindowsAppManager.h"
#include "platform/windows/WindowsCom.h"
#include "platform/windows/WindowsFiles.h"
#include "platform/windows/WindowsIcons.h"
#include "platform/windows/WindowsMessageBoxes.h"
#include "platform/windows/WindowsModules.h"
#include "platform/windows/WindowsProcessStart.h"
#include "platform/windows/WindowsProcesses.h"
#include "platform/windows/WindowsRegistry.h"
#include "platform/windows/WindowsShell.h"
#include "platform/windows/WindowsSync.h"
#include "platform/windows/WindowsSystemFacts.h"
#include "platform/windows/WindowsTopWindows.h"
#include "platform/windows/WindowsXml.h"

namespace varcolin {

struct TWindowsMachine::TParts {
  TWindowsSync Sync;
  TWindowsRegistry Registry;
  TWindowsFiles Files;
  TWindowsSystemFacts System;
  TWindowsModules Modules;
  TWindowsShell Shell;
  TWindowsIcons Icons;
  TWindowsProcesses Processes;
  TWindowsProcessStart Starts{Processes};
  TWindowsTopWindows Windows{Icons};
  TWindowsMessageBoxes Messages;
  TWindowsCom Com;
  TWindowsXml Xml;
  TWindowsAppManager Apps;
};

TWindowsMachine::TWindowsMachine() : FParts(std::make_unique<TParts>()) {}

TWindowsMachine::~TWindowsMachine() = default;

TMachine TWindowsMachine::Facilities() noexcept {
  TParts& parts = *FParts;
  return {parts.Sync,      parts.Registry, parts.Files,   parts.System,   parts.Modules, parts.Shell, parts.Icons,
          parts.Processes, parts.Starts,   parts.Windows, parts.Messages, parts.Com,     parts.Xml,   parts.Apps};
}

}  // namespace varcolin
