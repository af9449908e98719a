// The interface of the suite's "Localizer.dll".
#pragma once

#include "intf/intf_Base.h"

namespace varcolin {

/// The texts of one module in one language.
struct ILocalizer : IInterface {
  static constexpr TGUID IID{0x6F79FD80, 0x41BF, 0x42B9, {0x80, 0xE7, 0xD8, 0x11, 0xCE, 0x73, 0xA0, 0xD7}};

  /// 1: the three-letter abbreviation, in lower case, of the language that the localizer settled on.
  virtual void VARCOLIN_CALL GetLanguage(TOleString* AResult) = 0;

 protected:
  ~ILocalizer() = default;
};

/// Makes localizers.
struct ILocalizerFactory : IInterface {
  static constexpr TGUID IID{0x6F79FD80, 0x41BF, 0x42B9, {0x80, 0xE7, 0xD8, 0x11, 0xCE, 0x73, 0xA0, 0xD6}};

  /// 1: writes the localizer of a module for a language, with a reference of the caller's own. AFolder holds one
  /// folder a language, named by its abbreviation. When it has none for ALanguage the localizer settles on "enu".
  virtual void VARCOLIN_CALL CreateLocalizer(const char16_t* AModule, const char16_t* ALanguage,
                                             const char16_t* AFolder, ILocalizer** AResult) = 0;

 protected:
  ~ILocalizerFactory() = default;
};

}  // namespace varcolin
