#include "services/uLibraryList.h"

#include <utility>

#include "platform/MessageBoxes.h"
#include "platform/Processes.h"
#include "support/uExceptions.h"
#include "support/uFormat.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::u16string_view MissingLibraryText =
    u"An error occurred while loading library %s. \r\n\r\nIt may have been removed. Please reinstall the application. "
    u"If the problem persists, contact technical support.";

struct TState {
  IModules& Modules;
  IMessageBoxes& Messages;
  IProcesses& Processes;
  TLibraryList Libraries;

  TState(IModules& AModules, IMessageBoxes& AMessages, IProcesses& AProcesses) noexcept
      : Modules(AModules), Messages(AMessages), Processes(AProcesses), Libraries(AModules) {}
};
std::unique_ptr<TState> LoadedState;

TState& State() {
  if (LoadedState == nullptr) throw EAssertionFailed(u"uLibraryList", __LINE__);
  return *LoadedState;
}

/// What the sibling's entry point answers; null when the library or its entry point is missing.
void* AskSibling(std::u16string_view ALibrary, std::u16string_view AText, std::uint32_t AParam) {
  TState& state = State();
  const TModule* const library = state.Libraries.GetLibraryHandle(ALibrary);
  TProcedure entry = nullptr;
  if (library == nullptr || state.Modules.FindExport(*library, "GetInstance", entry) != WinError::Success) {
    return nullptr;
  }
  return reinterpret_cast<TGetInstance>(entry)(std::u16string(AText).c_str(), AParam);
}

}  // namespace

TLibraryList::~TLibraryList() {
  for (const auto& handle : FHandles) handle->Close();
}

const TModule* TLibraryList::GetLibraryHandle(std::u16string_view AName) {
  for (std::size_t i = 0; i < FNames.size(); ++i) {
    if (SameText(FNames[i], AName)) return FHandles[i].get();
  }
  TModule library;
  if (FModules.LoadModule(AName, library) != WinError::Success) return nullptr;
  FNames.emplace_back(AName);
  FHandles.push_back(std::make_unique<TModule>(std::move(library)));
  return FHandles.back().get();
}

void SiblingLoader::Load(IModules& AModules, IMessageBoxes& AMessages, IProcesses& AProcesses) {
  LoadedState = std::make_unique<TState>(AModules, AMessages, AProcesses);
}

void SiblingLoader::Unload() noexcept { LoadedState.reset(); }

void* SiblingLoader::LoadInterface(TInterfaceCache& ACache, const TSiblingInterface& ASibling, std::uint32_t AParam) {
  if (!ACache.Asked) {
    ACache.Asked = true;
    ACache.Interface = AskSibling(ASibling.Library, ASibling.Guid, AParam);
  }
  return ACache.Interface;
}

void SiblingLoader::CheckLibraryInterface(const void* AInterface, std::u16string_view ALabel) {
  if (AInterface != nullptr) return;
  State().Messages.ShowBox(Format(MissingLibraryText, {ALabel}), u"Error", MessageStyle::IconError);
  State().Processes.EndOwnProcess(1);
}

void SiblingLoader::SendCommand(std::u16string_view ALibrary, std::u16string_view ACommand) {
  AskSibling(ALibrary, ACommand, 0);
}

}  // namespace varcolin
