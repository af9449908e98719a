// The manager: the one object through which a host reaches the library.
#pragma once

#include "intf/intf_ShellLink.h"
#include "intf/intf_Varcolin.h"
#include "support/uInterfacedObject.h"

namespace varcolin {

/// Implements IVarcolin, and the reader of link files beside it. It has no state of its own but the host's event, which
/// is stored for the host only.
class TVarcolin final : public TInterfacedObject<IVarcolin, IShellLinkReader> {
 public:
  static void Load() noexcept;
  /// Releases the manager.
  static void Unload() noexcept;

  /// What the export answers: the manager for its GUID in braces, without regard to ASCII case, null for any other
  /// text. The manager is made by the first successful call; the pointer carries no reference of the caller's own. The
  /// first call is not to run beside another.
  [[nodiscard]] static IVarcolin* Instance(const char16_t* AGuid);

  void VARCOLIN_CALL GetPrograms(IProductCollection** AResult) override;
  void VARCOLIN_CALL GetUpdates(IProductCollection** AResult) override;
  TVRCState VARCOLIN_CALL GetState() override;
  void VARCOLIN_CALL GetHostEvent(TEventHandler* AResult) override;
  void VARCOLIN_CALL SetHostEvent(const TEventHandler* AHandler) override;
  void VARCOLIN_CALL ShowWindowsFeatures() override;
  void VARCOLIN_CALL Refresh() override;
  void VARCOLIN_CALL RefreshARPCache() override;
  void VARCOLIN_CALL Stop() override;
  void VARCOLIN_CALL SetStrings(IStringList* AStrings) override;
  void VARCOLIN_CALL ReadLink(const char16_t* AFileName, const void* AData, std::int64_t ASize, TOleString* AError,
                              IShellLinkFile** AResult) override;

 private:
  static inline TInterfaceRef<IVarcolin> FManager;
  static inline TEventHandler FHostEvent;
};

}  // namespace varcolin
