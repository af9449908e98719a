// All facilities of one machine together. Only the code that wires components takes a TMachine; a component receives
// the facilities that it uses.
#pragma once

namespace varcolin {

class IWritableRegistry;
class ISync;
class IWritableFiles;
class ISystemFacts;
class IModules;
class IShell;
class IIcons;
class IProcesses;
class IProcessStart;
class ITopWindows;
class IMessageBoxes;
class ICom;
class IXml;
class IAppManager;

/// References to the facilities of one machine, which outlives them.
struct TMachine {
  ISync& Sync;
  IWritableRegistry& Registry;
  IWritableFiles& Files;
  ISystemFacts& System;
  IModules& Modules;
  IShell& Shell;
  IIcons& Icons;
  IProcesses& Processes;
  IProcessStart& Starts;
  ITopWindows& Windows;
  IMessageBoxes& Messages;
  ICom& Com;
  IXml& Xml;
  IAppManager& Apps;
};

}  // namespace varcolin
