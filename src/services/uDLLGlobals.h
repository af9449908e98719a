// Access to the sibling services, and the small conversions that need them.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>

#include "intf/intf_Base.h"
#include "intf/intf_Brismere.h"
#include "intf/intf_Helper.h"
#include "intf/intf_Settings.h"
#include "intf/intf_Tolvane.h"
#include "intf/intf_Varcolin.h"
#include "platform/Types.h"

namespace varcolin {

class ISystemFacts;
class IModules;

/// Class operations only, any thread. The first use of a missing service ends the process with a message.
class DLLGlobals {
 public:
  /// Clears the references; SiblingLoader is loaded before.
  static void Load(ISystemFacts& ASystem, IModules& AModules);
  static void Unload() noexcept;

  [[nodiscard]] static TInterfaceRef<IHelper> Helper();
  [[nodiscard]] static TInterfaceRef<iShellHelper> ShellHelper();
  [[nodiscard]] static TInterfaceRef<IGlobals> Globals();
  [[nodiscard]] static TInterfaceRef<ISettings> Settings();
  [[nodiscard]] static TInterfaceRef<ITolvane> Tolvane();
  [[nodiscard]] static TInterfaceRef<IBrismere> BrismereService();

  /// Whether backups are enabled for "varcolin.exe".
  [[nodiscard]] static bool IsBrismereEnabled();
  /// Resolves an indirect string ("@file,-id"); other text comes back unchanged, one that does not resolve is empty.
  [[nodiscard]] static std::u16string ExtractResourceDescription(std::u16string_view ADescr);
  /// The day of eight ASCII digits (yyyymmdd), else 0.
  [[nodiscard]] static TDateTime DecodeDateTimeRegistry(std::u16string_view AStr) noexcept;
  /// The localised name of a locale's language; empty for an unknown locale.
  [[nodiscard]] static std::u16string LocaleIDToString(std::uint32_t AID);
  /// The same by locale name; the text itself when that gives nothing or Windows is older than Vista.
  [[nodiscard]] static std::u16string LocaleIDToString(std::u16string_view AID);
  /// The GUID in brace form that a registry text stands for (brace form, without braces, packed, or followed by "_"
  /// and more), else empty.
  [[nodiscard]] static std::u16string TryDecodeGUIDFromStr(std::u16string_view AText);
  /// The release type with this name, without regard to case; rtNone for any other text.
  [[nodiscard]] static TReleaseType DecodeReleaseType(std::u16string_view AText) noexcept;

  /// Shorthands over the host helper that give library text.
  [[nodiscard]] static TDateTime FileTimeToDateTime(TFileTime ATime);
  [[nodiscard]] static std::u16string WindowsFolder();
  [[nodiscard]] static std::u16string VersionValue(const std::u16string& APath, const char16_t* AName);
  [[nodiscard]] static std::u16string VersionLanguage(const std::u16string& APath);
};

}  // namespace varcolin
