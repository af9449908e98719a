// What all locations of installed software share: their order, the reader thread, the loading state.
#pragma once

#include <functional>
#include <memory>
#include <vector>

#include "intf/intf_Varcolin.h"
#include "products/uItemProduct.h"

namespace varcolin {

class ISync;
class ICom;
class IRegistry;
class TKeyCache;
class TThread;

/// One source of installed software. Locations are created and read on the reader thread.
class TLocationUninstall {
 public:
  using TFactory = std::function<std::unique_ptr<TLocationUninstall>()>;

  virtual ~TLocationUninstall() = default;
  TLocationUninstall(const TLocationUninstall&) = delete;
  TLocationUninstall& operator=(const TLocationUninstall&) = delete;

  /// Reads the location completely and brings the global lists in line with it.
  virtual void ReadLocation() = 0;
  /// Whether the location has changed since its watch was armed; a true answer has armed the watch anew.
  [[nodiscard]] virtual bool CheckChanges() = 0;

  const TTypeUninstallLocation FTypeLocation;

  // Class operations. Refresh and Cancel are called by one thread at a time; State by any.

  static void Load(IRegistry& ARegistry, ISync& ASync, ICom& ACom);
  /// Cancels a running reader and frees the locations.
  static void Unload() noexcept;

  /// Appends a kind of location; before the locations are first used.
  static void RegisterClass(TFactory AFactory);
  /// The locations in registration order, created on first use.
  [[nodiscard]] static const std::vector<std::unique_ptr<TLocationUninstall>>& Locations();
  /// The first location of a kind; null when none is registered.
  [[nodiscard]] static TLocationUninstall* Location(TTypeUninstallLocation AIndex);
  [[nodiscard]] static TVRCState State() noexcept;
  /// Whether the reader runs. It ends by Cancel, or by a failure that it has then logged, the state left as it was. Any
  /// thread.
  [[nodiscard]] static bool IsReading() noexcept;
  /// Cancels a running reader and starts a new one.
  static void Refresh();
  /// Asks a running reader to end and waits for it.
  static void Cancel();
  /// Raises the silent abort when a reader runs that has been asked to end.
  static void CheckTerminated();

 protected:
  explicit TLocationUninstall(TTypeUninstallLocation ATypeLocation) noexcept : FTypeLocation(ATypeLocation) {}
  [[nodiscard]] static ISync& Sync() noexcept;
  /// What the reader has read of the registry since the locations were made; null while it has kept nothing. A location
  /// may use it when its own watch has seen no change.
  [[nodiscard]] static TKeyCache* ReadBefore() noexcept;

 private:
  struct TState;

  static void RunReader(const TThread& AThread);
  static void StartLogAndReadLists();
  static void ReadLists();
  static void ReadDetails();
  static void WaitForChanges();

  static std::unique_ptr<TState> FState;
};

}  // namespace varcolin
