#include "locations/uRegistryWatch.h"

#include <string_view>

#include "support/uAxWinVersionInfo.h"
#include "support/uExceptions.h"

namespace varcolin {

namespace {

struct TWatchedKey {
  ERegistryRoot Root;
  std::u16string_view Path;
};

constexpr ERegistryRoot User = ERegistryRoot::CurrentUser;
constexpr ERegistryRoot Machine = ERegistryRoot::LocalMachine;

constexpr TWatchedKey WatchedKeys[] = {
    {User, u"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall"},
    {Machine, u"Software\\Microsoft\\Windows\\CurrentVersion\\Uninstall"},
    {User, u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\Products"},
    {Machine, u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\Products"},
    {ERegistryRoot::ClassesRoot, u"Installer\\Products"},
    {User, u"Software\\Microsoft\\Installer\\Products"},
    {Machine, u"Software\\Microsoft\\Installer\\Products"},
    {User, u"Software\\Microsoft\\Windows NT\\CurrentVersion\\HotFix"},
    {Machine, u"Software\\Microsoft\\Windows NT\\CurrentVersion\\HotFix"},
    {User, u"Software\\Microsoft\\Updates"},
    {Machine, u"Software\\Microsoft\\Updates"},
    {User, u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\Managed"},
    {Machine, u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\Managed"},
    {User, u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData"},
    {Machine, u"Software\\Microsoft\\Windows\\CurrentVersion\\Installer\\UserData"},
};

}  // namespace

TRegistryWatch::TRegistryWatch(IRegistry& ARegistry, ISync& ASync) : FRegistry(ARegistry), FSync(ASync) {
  const TWinError code = FSync.MakeEvent(false, FWaitEvent);
  if (code != WinError::Success) throw EOSError(code, u"The event of the registry watch was refused.");
}

void TRegistryWatch::Arm() {
  FWaitRegHandle.clear();  // closing a watched key may signal the event, so the reset comes after it
  FSync.ResetSignal(FWaitEvent);
  const auto watchAll = [this](std::uint32_t AView) {
    for (const TWatchedKey& watched : WatchedKeys) {
      TRegistryKey key;
      if (FRegistry.OpenKey(watched.Root, watched.Path, KeyAccess::Read | AView, key) != WinError::Success) continue;
      constexpr std::uint32_t Filter = RegNotify::ChangeName | RegNotify::ChangeLastSet;
      if (FRegistry.NotifyChange(key, true, Filter, FWaitEvent) != WinError::Success) continue;
      FWaitRegHandle.push_back(std::move(key));
    }
  };
  watchAll(0);
  if (WinVersionInfo::IsWow64Process()) watchAll(KeyAccess::Wow64_64Key);
}

bool TRegistryWatch::IsSignaled() { return FSync.WaitForEvent(FWaitEvent, 0) == EWaitResult::Signaled; }

}  // namespace varcolin
