#include "services/uSuiteSetup.h"

#include <exception>
#include <string>
#include <string_view>

#include "intf/intf_Localizer.h"
#include "platform/Modules.h"
#include "platform/SystemFacts.h"
#include "services/uAxDebug.h"
#include "services/uDLLGlobals.h"
#include "services/uLibraryList.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

constexpr const char16_t* LanguageOption = u"Language";
constexpr const char16_t* ModuleName = u"Varcolin.dll";

/// The user's language, three letters in lower case; empty when the system does not tell it.
std::u16string UserLanguage(ISystemFacts& ASystem) {
  std::u16string language;
  if (ASystem.GetLocaleText(LocaleInfo::UserDefault, LocaleInfo::AbbreviatedLanguage, language) != WinError::Success) {
    return {};
  }
  return LowerCase(language);
}

/// The language of the options store, which is made to hold one.
std::u16string ReadLanguage(IOptions& AOptions, IGlobals& AGlobals, ISystemFacts& ASystem) {
  TOleText root;
  AGlobals.GetRegistryRoot(root.Receive());
  const std::u16string key = std::u16string(root.View()).append(u"Settings");
  // A store that does not open is empty, and answers with the default.
  AOptions.OpenStore(key.c_str());
  AOptions.SetDefault(LanguageOption, UserLanguage(ASystem).c_str());
  TOleText text;
  AOptions.ReadText(LanguageOption, text.Receive());
  const std::u16string language(text.View());
  AOptions.WriteText(LanguageOption, language.c_str());
  AOptions.Save();
  return language;
}

/// The language that the localizer of this library settles on; empty when there is no localizer.
std::u16string LocalizerLanguage(ILocalizerFactory& AFactory, IModules& AModules, const std::u16string& ALanguage) {
  std::u16string host;
  if (AModules.GetHostPath(host) != WinError::Success) return {};
  const std::u16string folder = std::u16string(ExtractFilePath(host)).append(u"Lang");
  TInterfaceRef<ILocalizer> localizer;
  AFactory.CreateLocalizer(ModuleName, ALanguage.c_str(), folder.c_str(), localizer.Receive());
  TOleText language;
  if (localizer) localizer->GetLanguage(language.Receive());
  return std::u16string(language.View());
}

}  // namespace

void LoadSuite(ISystemFacts& ASystem, IModules& AModules, ISync& ASync, IMessageBoxes& AMessages) {
  const TInterfaceRef<IGlobals> globals = DLLGlobals::Globals();
  const TInterfaceRef<IHelper> helper = DLLGlobals::Helper();
  TInterfaceCache factoryCache;
  auto* const factory = SiblingLoader::Require<ILocalizerFactory>(factoryCache, Sibling::Localizer);

  if (helper->IsDebugMode()) AxDebug::ShowWarning(ASync, AMessages);

  TInterfaceCache optionsCache;
  auto* const options = SiblingLoader::Require<IOptions>(optionsCache, Sibling::Options);
  std::u16string language;
  try {
    language = ReadLanguage(*options, *globals, ASystem);
  } catch (const std::exception&) {
    // the localizer still settles on a language of its own
  }
  const std::u16string settled = LocalizerLanguage(*factory, AModules, language);
  if (!settled.empty() && !SameText(settled, language)) {
    options->WriteText(LanguageOption, settled.c_str());
    options->Save();
  }
}

}  // namespace varcolin
