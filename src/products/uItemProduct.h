// The record of one installed program or update.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <memory>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include "intf/intf_Varcolin.h"
#include "registry/uKeyStore.h"

namespace varcolin {

class ISystemFacts;
class TExecuteActionThread;

/// The location that found a product, and the kinds of location that there are.
enum class TTypeUninstallLocation : std::uint8_t {
  ulExeInfo = 0,            ///< executable information; never the kind of a product
  ulRegistryUninstall = 1,  ///< uninstall, installer and hotfix keys
  ulVistaUpdate = 2,        ///< component-based-servicing packages
};

/// The names of the kinds as the log shows them.
[[nodiscard]] std::u16string_view TextOf(TTypeUninstallLocation ALocation) noexcept;

/// One registry key while a product's values are read from it.
struct TProductKey {
  const TKeySnapshot& Values;
  std::u16string_view Name;  ///< last component of the key's path
};

/// Identity, descriptive fields, commands, possible actions and the running action of one product. Discovery creates
/// and fills records on its own thread; the item lock guards the fields against the host's reads. A record lives as
/// long as somebody holds a shared pointer to it; the global list of its class does while it is listed.
class TItemProduct : public std::enable_shared_from_this<TItemProduct> {
 public:
  /// The facilities that every record reads from.
  static void Load(ISystemFacts& ASystem) noexcept;
  static void Unload() noexcept;

  /// Raises EAssertionFailed when ALoc is neither ulRegistryUninstall nor ulVistaUpdate.
  explicit TItemProduct(TTypeUninstallLocation ALoc);
  TItemProduct(const TItemProduct&) = delete;
  TItemProduct& operator=(const TItemProduct&) = delete;
  /// Stops a running action and waits for it. A derived class does so itself first, as the action reads its fields.
  virtual ~TItemProduct();

  /// Enter and leave the item lock (re-entrant).
  void Lock() { FCSItem.lock(); }
  void Unlock() { FCSItem.unlock(); }
  [[nodiscard]] std::recursive_mutex& ItemLock() noexcept { return FCSItem; }

  /// Reads the registry part of the details once. Exceptions but for the silent abort are logged, not passed on.
  void ReadFastInfo(const TKeyStore& AKeys);
  /// Reads the worked-out part of the details when it is due. Exceptions as above.
  void ReadSlowInfo();
  /// Exchanges the changed mark with false and returns what it was.
  [[nodiscard]] bool TakeChanged() noexcept { return FIsChanged.exchange(false); }

  /// The command line of an action; empty when there is none.
  [[nodiscard]] virtual std::u16string GetActionCommand(TPossibleActions AAction) const;
  /// Whether the commands come from the user's part of the registry: the main key decides, as they are read there.
  [[nodiscard]] bool IsUserCommand() const;
  /// Starts an action; see IProduct::RunAction. Taking a product off the list starts nothing here. Raises
  /// std::system_error when the system has no thread to give; the product is then idle.
  virtual bool RunAction(TPossibleActions& AAction, TNativeUInt& AWndHandle);
  /// Asks a running action to end, without waiting for it.
  void TerminateAction();
  /// Asks a running action to end and waits until it has; returns at once when none runs. The command's process lives
  /// on. May be called while a list is locked, but not while this record is.
  void StopActionThread();

  // Identity: set by discovery before the record is published, constant afterwards.
  const TTypeUninstallLocation FLocation;
  std::u16string FDisplayNameNative;          ///< name as discovery found it
  std::u16string FGUID;                       ///< brace form, or empty
  std::vector<std::u16string> FRegistryKeys;  ///< registry key texts, the main key first

  // Descriptive fields, guarded by the item lock once the record is published. Texts are empty when unknown.
  bool FIsNeedReadFastInfo = true;  ///< discovery's thread only
  bool FIsNeedReadSlowInfo = true;  ///< discovery's thread only
  std::u16string FDisplayIcon;      ///< file, optionally followed by a comma and an icon index
  bool FIsWinInstaller = false;
  std::u16string FCmdUninstallQuiet;
  std::u16string FCmdUninstall;
  std::u16string FCmdModify;
  std::u16string FCmdRepair;
  std::u16string FDisplayName;
  std::int32_t FIconIndex = -1;
  std::u16string FDisplayVersion;
  std::u16string FPublisher;
  std::u16string FInstallLocation;
  std::u16string FInstallSource;
  TDateTime FInstallDate = 0;  ///< 0 when unknown
  std::u16string FContact;
  std::u16string FComments;
  std::u16string FURLReadMe;
  std::u16string FURLHelpLink;
  std::u16string FURLSupport;
  std::u16string FPhoneSupport;
  std::u16string FURLUpdateInfo;
  std::u16string FLanguage;
  std::int64_t FEstimatedSize = 0;  ///< bytes; 0 or less when unknown
  TPossibleActionsSet FPossibleActions = 0;

 protected:
  /// Reads the values of the product's registry keys.
  virtual void DoReadFastInfo(const TKeyStore& AKeys);
  /// Works the remaining details out; nothing in the base.
  virtual void DoReadSlowInfo() {}
  /// Reads the descriptive values of one key; fields that are filled already stay.
  virtual void ReadRegistryValues(const TProductKey& AKey);
  /// Reads commands and flags of the main key and adds to the possible actions.
  virtual void ReadRegistryCommands(const TProductKey& AKey);
  [[nodiscard]] static ISystemFacts& System() noexcept { return *FSystem; }

 private:
  void ReadInstallLocation(const TKeySnapshot& AValues);
  void RefineInstallDate(const TKeyStore& AKeys);
  /// The last thing that an action's thread does: the product is idle again.
  friend class TExecuteActionThread;
  void ActionEnded();

  static inline ISystemFacts* FSystem = nullptr;
  std::mutex FActionThreadCS;                           // guards the next three
  std::condition_variable FActionEnds;                  // the running action has ended
  std::unique_ptr<TExecuteActionThread> FActionThread;  // the running action
  std::unique_ptr<TExecuteActionThread> FEndedThread;   // one that has ended but for its thread's own end
  std::recursive_mutex FCSItem;
  std::atomic<bool> FIsChanged{false};
};

}  // namespace varcolin
