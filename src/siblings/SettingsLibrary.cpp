// "Settings.dll": the suite's settings, of which the backup tool's are served.
//
// Whether backups are made for a program is a DWORD value named by its executable (for example "varcolin.exe") under
// HKEY_CURRENT_USER, "Software\Zentrova\Velmoran\Settings\Brismere": 0 switches them off, anything else on. Without
// the value they are on.
#include "intf/intf_Settings.h"
#include "siblings/SiblingLibrary.h"
#include "siblings/SuiteFacts.h"
#include "support/uInterfacedObject.h"
#include "support/uText.h"

namespace varcolin {
namespace {

class TBrismereSettings final : public TInterfacedObject<IBrismereSettings> {
 public:
  explicit TBrismereSettings(const TMachine& AMachine) : FMachine(AMachine) {}

  bool VARCOLIN_CALL IsEnabledFor(const char16_t* AExecutable) override {
    return Guarded(false, [&] {
      // the empty name would read the key's default value
      const std::u16string_view name = TextOf(AExecutable);
      const std::u16string key = std::u16string(Suite::RegistryRoot) + u"Settings\\Brismere";
      return !name.empty() && ReadUserNumber(FMachine, key, name).value_or(1) != 0;
    });
  }

 private:
  TMachine FMachine;
};

class TSettings final : public TInterfacedObject<ISettings> {
 public:
  explicit TSettings(const TMachine& AMachine)
      : FBrismere(MakeObject<TBrismereSettings, IBrismereSettings>(AMachine)) {}

  void VARCOLIN_CALL GetBrismereSettings(IBrismereSettings** AResult) override {
    if (AResult != nullptr) *AResult = TInterfaceRef(FBrismere).Detach();
  }

 private:
  TInterfaceRef<IBrismereSettings> FBrismere;
};

class TSettingsLibrary final : public TSiblingLibrary {
 public:
  explicit TSettingsLibrary(const TMachine& AMachine) : FSettings(MakeObject<TSettings, ISettings>(AMachine)) {}

  void* FindInterface(std::u16string_view ARequest) override {
    return IsRequestFor(ARequest, ISettings::IID) ? FSettings.Get() : nullptr;
  }

 private:
  TInterfaceRef<ISettings> FSettings;
};

}  // namespace

std::unique_ptr<TSiblingLibrary> MakeSettingsLibrary(const TMachine& AMachine) {
  return std::make_unique<TSettingsLibrary>(AMachine);
}

}  // namespace varcolin
