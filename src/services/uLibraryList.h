// The sibling libraries of the suite: loading them, and obtaining their interfaces.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "intf/intf_Base.h"
#include "platform/Modules.h"

namespace varcolin {

class IMessageBoxes;
class IProcesses;

/// The loaded sibling libraries. No lock of its own: callers hold the lock of DLLGlobals or run during load.
class TLibraryList {
 public:
  explicit TLibraryList(IModules& AModules) noexcept : FModules(AModules) {}
  TLibraryList(const TLibraryList&) = delete;
  TLibraryList& operator=(const TLibraryList&) = delete;
  /// Frees every library, in list order.
  ~TLibraryList();

  /// The named library, loaded on the first request (names without regard to case); null when it cannot be loaded,
  /// which is not remembered.
  [[nodiscard]] const TModule* GetLibraryHandle(std::u16string_view AName);

 private:
  IModules& FModules;
  std::vector<std::u16string> FNames;
  std::vector<std::unique_ptr<TModule>> FHandles;
};

/// What is known of one sibling interface: nothing yet, that it failed, or the interface (without a reference).
struct TInterfaceCache {
  bool Asked = false;
  void* Interface = nullptr;
};

/// One sibling interface: where it comes from and what an error message calls it.
struct TSiblingInterface {
  std::u16string_view Library;
  std::u16string_view Guid;
  std::u16string_view Label;
};

/// The rows of the suite's sibling interfaces.
namespace Sibling {
inline constexpr TSiblingInterface Helper{u"helper.dll", u"{5C9ABD04-59E8-4686-8E32-FF648BB7FDD5}",
                                          u"helper.dll::Helper"};
inline constexpr TSiblingInterface ShellHelper{u"helper.dll", u"{6773075A-4E7A-4292-A6B9-12F24F316C36}",
                                               u"helper.dll::ShellHelper"};
inline constexpr TSiblingInterface Globals{u"helper.dll", u"{E3B78765-F359-4D65-86A3-5FE2CA92922E}",
                                           u"helper.dll::Globals"};
inline constexpr TSiblingInterface Options{u"helper.dll", u"{6D84DC42-1982-4CEE-A37E-5DF3BD71C1AD}",
                                           u"helper.dll::Options"};
inline constexpr TSiblingInterface Localizer{u"Localizer.dll", u"{6F79FD80-41BF-42B9-80E7-D811CE73A0D6}",
                                             u"Localizer.dll::Localizer"};
inline constexpr TSiblingInterface Settings{u"Settings.dll", u"{EFD8173C-C76D-4A9A-87BF-359D2ED08AFD}",
                                            u"Settings.dll::Settings"};
inline constexpr TSiblingInterface Tolvane{u"TolvaneHelper.dll", u"{A90B8362-CEEF-4902-A639-A0125EDD0201}",
                                           u"TolvaneHelper.dll::Tolvane"};
inline constexpr TSiblingInterface Brismere{u"BrismereHelper.dll", u"{5C2990D5-37CD-4FE8-8EC4-A23723A7D4F1}",
                                            u"BrismereHelper.dll::brismere"};
inline constexpr TSiblingInterface DebugLog{u"debugmode.dll", u"{F7CF8DA8-ADCC-4d0b-BB10-66552FC851A9}",
                                            u"debugmode.dll::Debug Log API"};
inline constexpr TSiblingInterface QuilletProcessList{u"QuilletHelper", u"{CDCFC755-A3C6-4E67-8EB8-25EB9A51E85D}",
                                                      u"QuilletHelper::QuilletProcessList"};
}  // namespace Sibling

/// The process-wide loader of sibling interfaces.
class SiblingLoader {
 public:
  static void Load(IModules& AModules, IMessageBoxes& AMessages, IProcesses& AProcesses);
  /// Frees the sibling libraries.
  static void Unload() noexcept;

  /// The interface of ASibling, asked for once and kept in ACache; null when the library, its entry point or the
  /// interface is missing (remembered too).
  [[nodiscard]] static void* LoadInterface(TInterfaceCache& ACache, const TSiblingInterface& ASibling,
                                           std::uint32_t AParam = 0);
  /// Shows the message that names ALabel and ends the process when AInterface is null.
  static void CheckLibraryInterface(const void* AInterface, std::u16string_view ALabel);
  /// Both together.
  template <class I>
  [[nodiscard]] static I* Require(TInterfaceCache& ACache, const TSiblingInterface& ASibling) {
    void* const found = LoadInterface(ACache, ASibling);
    CheckLibraryInterface(found, ASibling.Label);
    return static_cast<I*>(found);
  }
  /// Calls the entry point of a sibling with a command text in place of a GUID; a missing library is passed over.
  static void SendCommand(std::u16string_view ALibrary, std::u16string_view ACommand);
};

}  // namespace varcolin
