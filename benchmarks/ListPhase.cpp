#include "benchmarks/ListPhase.h"

#include <thread>
#include <utility>

#include "benchmarks/UninstallKeys.h"
#include "locations/uLocationUninstall.h"
#include "platform/Com.h"
#include "products/uItemProgram.h"
#include "support/uExceptions.h"

namespace varcolin::benchmarks {

namespace {

/// What any reader of uninstall keys asks for.
constexpr std::u16string_view QueriedNames[] = {
    u"DisplayName",     u"DisplayVersion", u"Publisher",       u"InstallDate",  u"InstallLocation", u"EstimatedSize",
    u"UninstallString", u"DisplayIcon",    u"SystemComponent", u"URLInfoAbout", u"HelpLink",        u"NoModify",
};

void Check(TWinError ACode) {
  if (ACode != WinError::Success) throw EOSError(ACode, u"An uninstall key cannot be read.");
}

}  // namespace

TListPhase::TListPhase(const TMachine& AMachine) : FMachine(AMachine), FModules(AMachine) {}

void TListPhase::RunReader() {
  TLocationUninstall::Refresh();
  while (TLocationUninstall::State() == TVRCState::vrcsListLoading) std::this_thread::yield();
  TLocationUninstall::Cancel();
}

void TListPhase::Run() const {
  const TComScope com(FMachine.Com, ECom::Apartment);
  for (const auto kind : {TTypeUninstallLocation::ulRegistryUninstall, TTypeUninstallLocation::ulVistaUpdate}) {
    TLocationUninstall::Location(kind)->ReadLocation();
  }
}

std::size_t TListPhase::ProgramCount() const { return TItemProgram::List().Count(); }

TBareWalk::TBareWalk(IRegistry& ARegistry) {
  constexpr std::pair<ERegistryRoot, std::uint32_t> Places[] = {{ERegistryRoot::LocalMachine, KeyAccess::Wow64_64Key},
                                                                {ERegistryRoot::LocalMachine, KeyAccess::Wow64_32Key},
                                                                {ERegistryRoot::CurrentUser, 0}};
  for (const auto& [root, view] : Places) {
    TRegistryKey parent;
    if (ARegistry.OpenKey(root, UninstallPath, KeyAccess::Read | view, parent) != WinError::Success) continue;
    TPlace& place = FPlaces.emplace_back(TPlace{root, view, {}});
    std::u16string name;
    while (ARegistry.EnumKey(parent, static_cast<std::uint32_t>(place.Names.size()), name) == WinError::Success) {
      place.Names.push_back(name);
    }
  }
}

void TBareWalk::Run(IRegistry& ARegistry) const {
  TRegistryValue value;
  for (const TPlace& place : FPlaces) {
    TRegistryKey parent;
    Check(ARegistry.OpenKey(place.Root, UninstallPath, KeyAccess::Read | place.View, parent));
    for (const std::u16string& name : place.Names) {
      TRegistryKey key;
      Check(ARegistry.OpenKey(parent, name, KeyAccess::Read | place.View, key));
      for (const std::u16string_view queried : QueriedNames) {
        // a value that a key does not have is asked for all the same
        static_cast<void>(ARegistry.QueryValue(key, queried, value));
      }
    }
  }
}

TWinError TCountingRegistry::OpenKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                     TRegistryKey& AKey) {
  const TWinError error = TForwardingRegistry::OpenKey(ABase, APath, AAccess, AKey);
  // a handle goes back to the inner registry by itself: its closing is counted when it is given out
  if (error == WinError::Success) ++FCalls;
  return error;
}

TWinError TCountingRegistry::Admit(const TCall&) {
  ++FCalls;
  return WinError::Success;
}

TMachine WithRegistry(const TMachine& AMachine, IWritableRegistry& ARegistry) noexcept {
  return {AMachine.Sync,     ARegistry,      AMachine.Files,     AMachine.System, AMachine.Modules,
          AMachine.Shell,    AMachine.Icons, AMachine.Processes, AMachine.Starts, AMachine.Windows,
          AMachine.Messages, AMachine.Com,   AMachine.Xml,       AMachine.Apps};
}

}  // namespace varcolin::benchmarks
