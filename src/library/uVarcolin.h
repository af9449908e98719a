// The manager: the one object through which a host reaches the library.
#pragma once

#include <memory>

#include "intf/intf_ShellLink.h"
#include "intf/intf_Varcolin.h"
#include "locations/uRefreshARPCache.h"
#include "support/uInterfacedObject.h"

namespace varcolin {

/// Implements IVarcolin, and beside it the reader of link files and which of the library's threads still work. Its own
/// state is the thread of that refresh, and the host's event, which is stored for the host only.
class TVarcolin final : public TInterfacedObject<IVarcolin, IShellLinkReader, IBackgroundWork> {
 public:
  static void Load() noexcept;
  /// Releases the manager, which ends a refresh that Stop has not ended.
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
  bool VARCOLIN_CALL IsRefreshingARPCache() override;
  bool VARCOLIN_CALL IsDiscovering() override;

 private:
  static inline TInterfaceRef<IVarcolin> FManager;
  static inline TEventHandler FHostEvent;
  std::unique_ptr<TRefreshARPCache> FRefreshARPCache;  ///< from its start until Stop
};

}  // namespace varcolin
