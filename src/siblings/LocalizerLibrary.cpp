// "Localizer.dll": which of the installed languages a module speaks.
#include <algorithm>

#include "intf/intf_Localizer.h"
#include "platform/Files.h"
#include "siblings/SiblingLibrary.h"
#include "support/uInterfacedObject.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::u16string_view FallbackLanguage = u"enu";

class TLocalizer final : public TInterfacedObject<ILocalizer> {
 public:
  explicit TLocalizer(std::u16string ALanguage) : FLanguage(std::move(ALanguage)) {}

  void VARCOLIN_CALL GetLanguage(TOleString* AResult) override {
    ReturnText(AResult, [&] { return std::u16string_view(FLanguage); });
  }

 private:
  std::u16string FLanguage;
};

class TLocalizerFactory final : public TInterfacedObject<ILocalizerFactory> {
 public:
  explicit TLocalizerFactory(IFiles& AFiles) : FFiles(AFiles) {}

  void VARCOLIN_CALL CreateLocalizer(const char16_t*, const char16_t* ALanguage, const char16_t* AFolder,
                                     ILocalizer** AResult) override {
    if (AResult == nullptr) return;
    *AResult = nullptr;
    GuardedCall([&] {
      std::u16string language = LowerCase(Trim(TextOf(ALanguage)));
      if (!HasLanguage(TextOf(AFolder), language)) language = FallbackLanguage;
      *AResult = MakeObject<TLocalizer, ILocalizer>(std::move(language)).Detach();
    });
  }

 private:
  /// The language is the user's to set: anything but letters and digits could name a folder elsewhere.
  bool HasLanguage(std::u16string_view AFolder, std::u16string_view ALanguage) {
    const auto isPlain = [](char16_t AUnit) {
      return (AUnit >= u'a' && AUnit <= u'z') || (AUnit >= u'0' && AUnit <= u'9');
    };
    TFileFacts facts;
    return !AFolder.empty() && !ALanguage.empty() && std::all_of(ALanguage.begin(), ALanguage.end(), isPlain) &&
           FFiles.GetFacts(IncludeTrailingPathDelimiter(AFolder).append(ALanguage), facts) == WinError::Success &&
           facts.IsFolder();
  }

  IFiles& FFiles;
};

class TLocalizerLibrary final : public TSiblingLibrary {
 public:
  explicit TLocalizerLibrary(const TMachine& AMachine)
      : FFactory(MakeObject<TLocalizerFactory, ILocalizerFactory>(AMachine.Files)) {}

  void* FindInterface(std::u16string_view ARequest) override {
    return IsRequestFor(ARequest, ILocalizerFactory::IID) ? FFactory.Get() : nullptr;
  }

 private:
  TInterfaceRef<ILocalizerFactory> FFactory;
};

}  // namespace

std::unique_ptr<TSiblingLibrary> MakeLocalizerLibrary(const TMachine& AMachine) {
  return std::make_unique<TLocalizerLibrary>(AMachine);
}

}  // namespace varcolin
