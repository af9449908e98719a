// The set-up of the suite's services that runs when the library loads.
#pragma once

namespace varcolin {

class IMessageBoxes;
class IModules;
class ISync;
class ISystemFacts;

/// Obtains the suite's required services (a missing one ends the process with a message), warns when the suite's debug
/// mode is on, and settles the language: the user's stored one, at first the system's, corrected to what the localizer
/// of this library has. A language that cannot be read or stored is passed over. SiblingLoader, AxDebug and DLLGlobals
/// are loaded before. Runs during load, on one thread.
void LoadSuite(ISystemFacts& ASystem, IModules& AModules, ISync& ASync, IMessageBoxes& AMessages);

}  // namespace varcolin
