// "BrismereHelper.dll": the backup service.
//
// The service can open sessions when the machine's user switched it on (the DWORD value "Enabled", other than 0, under
// HKEY_CURRENT_USER, "Software\Zentrova\Velmoran\Brismere"), the process has administrator rights, without which it
// could not put back what it saved, and there is a data folder to keep sessions in.
#include "intf/intf_Brismere.h"
#include "platform/Files.h"
#include "platform/Processes.h"
#include "siblings/SiblingLibrary.h"
#include "siblings/SuiteFacts.h"
#include "support/uInterfacedObject.h"

namespace varcolin {
namespace {

class TBrismere final : public TInterfacedObject<IBrismere> {
 public:
  explicit TBrismere(const TMachine& AMachine) : FMachine(AMachine) {}

  bool VARCOLIN_CALL IsUserAdmin() override {
    return Guarded(false, [&] { return QueryAdmin(); });
  }

  bool VARCOLIN_CALL IsEnabled() override {
    return Guarded(false, [&] { return IsSwitchedOn() && QueryAdmin() && HasDataFolder(); });
  }

 private:
  bool QueryAdmin() {
    bool answer = false;
    return FMachine.Processes.QueryUserIsAdmin(answer) == WinError::Success && answer;
  }

  bool IsSwitchedOn() {
    const std::u16string key = std::u16string(Suite::RegistryRoot) + u"Brismere";
    return ReadUserNumber(FMachine, key, u"Enabled").value_or(0) != 0;
  }

  bool HasDataFolder() {
    TFileFacts facts;
    const std::u16string folder = SuiteDataFolder(FMachine);
    return !folder.empty() && FMachine.Files.GetFacts(folder, facts) == WinError::Success && facts.IsFolder();
  }

  TMachine FMachine;
};

class TBrismereLibrary final : public TSiblingLibrary {
 public:
  explicit TBrismereLibrary(const TMachine& AMachine) : FService(MakeObject<TBrismere, IBrismere>(AMachine)) {}

  void* FindInterface(std::u16string_view ARequest) override {
    return IsRequestFor(ARequest, IBrismere::IID) ? FService.Get() : nullptr;
  }

 private:
  TInterfaceRef<IBrismere> FService;
};

}  // namespace

std::unique_ptr<TSiblingLibrary> MakeBrismereLibrary(const TMachine& AMachine) {
  return std::make_unique<TBrismereLibrary>(AMachine);
}

}  // namespace varcolin
