#include "services/uAxDebug.h"

#include <cstddef>
#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include "platform/Files.h"
#include "platform/MessageBoxes.h"
#include "platform/Modules.h"
#include "platform/Processes.h"
#include "platform/Registry.h"
#include "platform/Sync.h"
#include "services/uDLLGlobals.h"
#include "services/uLibraryList.h"
#include "support/uExceptions.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::u16string_view DebugLibrary = u"debugmode.dll";
constexpr std::u16string_view DebugKey = u"Software\\Zentrova\\DebugMode";
constexpr std::u16string_view DebugValue = u"DebugMode";
constexpr std::u16string_view WarningMutex = u"zentrova.debugmode.globalmutex";
constexpr std::u16string_view WarningText =
    u"The program is now running in the debug mode. All of the program\u2019s activity will be logged and saved to a "
    u"file on your disk.\r\n\r\nThis may reduce the program\u2019s performance and use up the disk space.\r\n\r\nWould "
    u"you like to disable the debug mode right now? By disabling it you will not be able to create debug logs and send "
    u"them to our support team.";

struct TState {
  TInterfaceRef<IDebugLog> RealClient;
  std::once_flag NullClientMade;
  TInterfaceRef<IDebugLog> NullClient;
  TNamedMutex Mutex;
};
std::unique_ptr<TState> LoadedState;

TState& State() {
  if (LoadedState == nullptr) throw EAssertionFailed(u"uAxDebug", __LINE__);
  return *LoadedState;
}

bool IsLibraryPresent(IFiles& AFiles, IModules& AModules) {
  std::u16string host;
  if (AModules.GetHostPath(host) != WinError::Success) return false;
  TFileFacts facts;
  const std::u16string path = std::u16string(ExtractFilePath(host)).append(DebugLibrary);
  return AFiles.GetFacts(path, facts) == WinError::Success && !facts.IsFolder();
}

void SetDebugMode(IWritableRegistry& ARegistry, bool AOn) {
  TRegistryKey key;
  bool created = false;
  if (ARegistry.CreateKeyPath(ERegistryRoot::CurrentUser, DebugKey, KeyAccess::Write, key, created) !=
      WinError::Success) {
    return;
  }
  const std::byte data[4] = {std::byte{AOn}};
  // a setting that cannot be written is as good as the one that stands: the library it concerns is not there
  static_cast<void>(ARegistry.SetValue(key, DebugValue, RegType::Dword, data, sizeof data));
}

bool IsDebugModeSet(IRegistry& ARegistry) {
  TRegistryKey key;
  TRegistryValue value;
  return ARegistry.OpenKey(ERegistryRoot::CurrentUser, DebugKey, KeyAccess::Read, key) == WinError::Success &&
         ARegistry.QueryValue(key, DebugValue, value) == WinError::Success && value.Type == RegType::Dword &&
         value.Data == std::vector{std::byte{1}, std::byte{0}, std::byte{0}, std::byte{0}};
}

bool IsDebugMode(IRegistry& ARegistry, IProcesses& AProcesses) {
  if (IsDebugModeSet(ARegistry)) return true;
  const std::vector<std::u16string> arguments = AProcesses.HostArguments();
  return !arguments.empty() && SameText(arguments.front(), u"-debug");
}

void EnableDebugLog() {
  TInterfaceCache cache;
  State().RealClient = TInterfaceRef<IDebugLog>(SiblingLoader::Require<IDebugLog>(cache, Sibling::DebugLog));
  State().RealClient->SetEnabled(true);
}

}  // namespace

TResultCode VARCOLIN_CALL TNullDebugClient::QueryInterface(const TGUID& AIID, void** AObject) {
  const bool asDebugLog = AIID == IDebugLog::IID;
  return TInterfacedObject::QueryInterface(asDebugLog ? INullDebugLog::IID : AIID, AObject);
}

std::int32_t VARCOLIN_CALL TNullDebugClient::GetRefCount() {
  AddRef();
  return static_cast<std::int32_t>(Release());
}

void AxDebug::Load(IWritableRegistry& ARegistry, IFiles& AFiles, IModules& AModules, IProcesses& AProcesses) {
  LoadedState = std::make_unique<TState>();
  if (!IsLibraryPresent(AFiles, AModules)) {
    SetDebugMode(ARegistry, false);
  } else if (IsDebugMode(ARegistry, AProcesses)) {
    EnableDebugLog();
  }
}

void AxDebug::Unload() noexcept { LoadedState.reset(); }

TInterfaceRef<IDebugLog> AxDebug::DebugLog() {
  TState& state = State();
  if (state.RealClient) return state.RealClient;
  std::call_once(state.NullClientMade, [&state] { state.NullClient = MakeObject<TNullDebugClient, IDebugLog>(); });
  return state.NullClient;
}

void AxDebug::ShowWarning(ISync& ASync, IMessageBoxes& AMessages) {
  bool existed = false;
  const TWinError error = ASync.MakeNamedMutex(WarningMutex, State().Mutex, existed);
  if (error == WinError::Success && existed) return;
  TOleText maker;
  TOleText product;
  DLLGlobals::Globals()->GetMakerName(maker.Receive());
  DLLGlobals::Globals()->GetProductName(product.Receive());
  const std::u16string caption = std::u16string(maker.View()).append(u" ").append(product.View());
  constexpr std::uint32_t style =
      MessageStyle::YesNo | MessageStyle::IconQuestion | MessageStyle::TaskModal | MessageStyle::TopMost;
  if (AMessages.ShowBox(WarningText, caption, style) == MessageAnswer::Yes) DLLGlobals::Helper()->SetDebugMode(false);
}

}  // namespace varcolin
