// "helper.dll": the host helper, the shell helper, the suite's facts and the options store.
#include "siblings/HelperParts.h"
#include "siblings/SiblingLibrary.h"

namespace varcolin {
namespace {

class THelperLibrary final : public TSiblingLibrary {
 public:
  explicit THelperLibrary(const TMachine& AMachine)
      : FHelper(MakeHostHelper(AMachine)),
        FShellHelper(MakeShellHelper(AMachine)),
        FGlobals(MakeGlobals(AMachine)),
        FOptions(MakeOptions(AMachine)) {}

  void* FindInterface(std::u16string_view ARequest) override {
    if (IsRequestFor(ARequest, IHelper::IID)) return FHelper.Get();
    if (IsRequestFor(ARequest, iShellHelper::IID)) return FShellHelper.Get();
    if (IsRequestFor(ARequest, IGlobals::IID)) return FGlobals.Get();
    if (IsRequestFor(ARequest, IOptions::IID)) return FOptions.Get();
    return nullptr;
  }

 private:
  TInterfaceRef<IHelper> FHelper;
  TInterfaceRef<iShellHelper> FShellHelper;
  TInterfaceRef<IGlobals> FGlobals;
  TInterfaceRef<IOptions> FOptions;
};

}  // namespace

std::unique_ptr<TSiblingLibrary> MakeHelperLibrary(const TMachine& AMachine) {
  return std::make_unique<THelperLibrary>(AMachine);
}

}  // namespace varcolin
