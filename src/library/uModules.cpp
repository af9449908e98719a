#include "library/uModules.h"

#include <iterator>
#include <memory>

#include "library/uVarcolin.h"
#include "library/uWindowsFeatures.h"
#include "locations/uLocationExeInfo.h"
#include "locations/uLocationRegistryUninstall.h"
#include "locations/uLocationUninstall.h"
#include "locations/uLocationVistaUpdate.h"
#include "locations/uRefreshARPCache.h"
#include "platform/AppManager.h"
#include "platform/Com.h"
#include "platform/Files.h"
#include "platform/Icons.h"
#include "platform/MessageBoxes.h"
#include "platform/Modules.h"
#include "platform/ProcessStart.h"
#include "platform/Processes.h"
#include "platform/Registry.h"
#include "platform/Shell.h"
#include "platform/Sync.h"
#include "platform/SystemFacts.h"
#include "platform/TopWindows.h"
#include "platform/Xml.h"
#include "products/uExecuteActionThread.h"
#include "products/uItemFolder.h"
#include "products/uItemProductIntf.h"
#include "products/uItemProgram.h"
#include "products/uItemUpdate.h"
#include "products/uThreadExceptionHandler.h"
#include "products/uWindowTop.h"
#include "services/uAxDebug.h"
#include "services/uDLLGlobals.h"
#include "services/uDLLStringsLocalized.h"
#include "services/uFileUtils.h"
#include "services/uLibraryList.h"
#include "services/uStatisticsLog.h"
#include "services/uSuiteSetup.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uShellLinkInfo.h"
#include "support/uWindowsExt.h"

namespace varcolin {

namespace {

struct TModuleRow {
  void (*Load)(const TMachine& AMachine);
  void (*Unload)() noexcept;
};

void NothingToUnload() noexcept {}

void LoadLocations(const TMachine& AMachine) {
  TLocationUninstall::Load(AMachine.Registry, AMachine.Sync, AMachine.Com);
  TLocationRegistryUninstall::Load(AMachine.Registry);
  TLocationVistaUpdate::Load(AMachine.Registry, AMachine.Files, AMachine.Com, AMachine.Xml);
  TLocationUninstall::RegisterClass([&registry = AMachine.Registry, &files = AMachine.Files] {
    return std::make_unique<TLocationExeInfo>(registry, files);
  });
  TLocationUninstall::RegisterClass([] { return std::make_unique<TLocationRegistryUninstall>(); });
  TLocationUninstall::RegisterClass([] { return std::make_unique<TLocationVistaUpdate>(); });
}

void UnloadLocations() noexcept {
  TLocationUninstall::Unload();
  TLocationRegistryUninstall::Unload();
  TLocationVistaUpdate::Unload();
}

/// Each row may use the rows above it.
constexpr TModuleRow ModuleTable[] = {
    {[](const TMachine& M) { WinVersionInfo::Load(M.System, M.Shell, M.Modules); }, &WinVersionInfo::Unload},
    {[](const TMachine& M) { WindowsExt::Load(M.Processes, M.Starts, M.Windows, M.System, M.Sync); },
     &WindowsExt::Unload},
    {[](const TMachine&) { DLLStringsLocalized::Load(); }, &DLLStringsLocalized::Unload},
    {[](const TMachine& M) { SiblingLoader::Load(M.Modules, M.Messages, M.Processes); }, &SiblingLoader::Unload},
    {[](const TMachine& M) { DLLGlobals::Load(M.System, M.Modules); }, &DLLGlobals::Unload},
    {[](const TMachine& M) {
       TShellLinkInfo::Load(M.Files, M.Shell, M.System, &DLLGlobals::ExtractResourceDescription);
     },
     &TShellLinkInfo::Unload},
    {[](const TMachine& M) { AxDebug::Load(M.Registry, M.Files, M.Modules, M.Processes); }, &AxDebug::Unload},
    {[](const TMachine& M) { LoadSuite(M.System, M.Modules, M.Sync, M.Messages); }, &NothingToUnload},
    {[](const TMachine& M) { FileUtils::Load(M.Files, M.System, M.Registry); }, &FileUtils::Unload},
    {[](const TMachine& M) { StatisticsLog::Load(M.Registry, M.Files, M.System, M.Modules, M.Com); },
     &StatisticsLog::Unload},
    {[](const TMachine& M) { TThreadExceptionHandler::Load(M.Messages); }, &TThreadExceptionHandler::Unload},
    {[](const TMachine& M) { TWindowTopCollection::Load(M.Windows, M.Processes, M.Icons); },
     &TWindowTopCollection::Unload},
    {[](const TMachine& M) { TExecuteActionThread::Load(M.Sync, M.Processes, M.Com); }, &TExecuteActionThread::Unload},
    {[](const TMachine& M) { TItemProduct::Load(M.System); }, &TItemProduct::Unload},
    {[](const TMachine&) { TItemFolder::Load(); }, &TItemFolder::Unload},
    {[](const TMachine& M) { TItemProgram::Load(M.Registry, M.Files, M.Icons); }, &TItemProgram::Unload},
    {[](const TMachine& M) { TItemUpdate::Load(M.Icons); }, &TItemUpdate::Unload},
    {[](const TMachine& M) { TItemProductIntf::Load(M.Modules); }, &TItemProductIntf::Unload},
    {&LoadLocations, &UnloadLocations},
    {[](const TMachine& M) { TRefreshARPCache::Load(M.Apps, M.System, M.Sync, M.Com); }, &TRefreshARPCache::Unload},
    {[](const TMachine& M) { WindowsFeatures::Load(M.Sync, M.Starts); }, &WindowsFeatures::Unload},
    {[](const TMachine&) { TVarcolin::Load(); }, &TVarcolin::Unload},
};

}  // namespace

TLibraryModules::TLibraryModules(const TMachine& AMachine) {
  try {
    for (; FLoaded < std::size(ModuleTable); ++FLoaded) ModuleTable[FLoaded].Load(AMachine);
  } catch (...) {
    UnloadAll();
    throw;
  }
}

TLibraryModules::~TLibraryModules() { UnloadAll(); }

void TLibraryModules::UnloadAll() noexcept {
  while (FLoaded > 0) ModuleTable[--FLoaded].Unload();
}

}  // namespace varcolin
