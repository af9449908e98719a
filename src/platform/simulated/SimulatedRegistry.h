// The registry of a simulated machine, as 64- or 32-bit Windows 7 shows it to a process.
//
// On 64-bit Windows HKEY_LOCAL_MACHINE\Software has two views; RegistryLayout tells which keys they share.
// HKEY_CURRENT_USER is one for both, apart from the redirected keys of its classes. HKEY_CLASSES_ROOT merges the
// user's classes over the machine's. A handle carries its view: a path opened below it stays there unless the call
// names a view. Not simulated: quotas, security descriptors beyond `DenyAccess`, volatile keys, performance data.
#pragma once

#include <cstddef>
#include <memory>
#include <memory_resource>
#include <mutex>
#include <span>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/Registry.h"
#include "platform/simulated/RegistryTree.h"
#include "platform/simulated/SimulatedClock.h"
#include "platform/simulated/SimulatedSync.h"

namespace varcolin {

struct TSimulatedRegistryFacts {
  bool Is64BitWindows = true;
  bool IsWow64 = true;     ///< the process is a 32-bit one on 64-bit Windows
  std::u16string UserSid;  ///< of the current user
};

enum class ERegistryChange { KeyCreated, KeyRemoved, ValueSet, ValueRemoved };

/// One change that was made through the registry interface.
struct TRegistryChange {
  ERegistryChange Kind;
  std::u16string Key;   ///< in the native view, with the root's full name
  std::u16string Name;  ///< of the value; empty for the default value and for keys
};

/// A key of the native view, for fast loading; valid until the key is removed.
class TDirectKey {
  friend class TSimulatedRegistry;
  explicit TDirectKey(TRegistryNode& ANode) noexcept : FNode(&ANode) {}
  TRegistryNode* FNode;
};

/// Clock and synchronisation outlive the object. Every method may be called from any thread.
class TSimulatedRegistry final : public IWritableRegistry {
 public:
  TSimulatedRegistry(TSimulatedClock& AClock, TSimulatedSync& ASync, TSimulatedRegistryFacts AFacts);
  ~TSimulatedRegistry() override;

  [[nodiscard]] TWinError OpenKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                  TRegistryKey& AKey) override;
  [[nodiscard]] TWinError QueryKeyInfo(const TRegistryKey& AKey, TRegistryKeyInfo& AInfo) override;
  [[nodiscard]] TWinError EnumKey(const TRegistryKey& AKey, std::uint32_t AIndex, std::u16string& AName) override;
  [[nodiscard]] TWinError EnumValue(const TRegistryKey& AKey, std::uint32_t AIndex, TRegistryValue& AValue) override;
  [[nodiscard]] TWinError QueryValue(const TRegistryKey& AKey, std::u16string_view AName,
                                     TRegistryValue& AValue) override;
  [[nodiscard]] TWinError NotifyChange(const TRegistryKey& AKey, bool ASubtree, std::uint32_t AFilter,
                                       const TEvent& AEvent) override;
  void CloseValue(TRegistryKeyTag, std::uintptr_t AKey) noexcept override;
  [[nodiscard]] TWinError CreateKeyPath(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                        TRegistryKey& AKey, bool& ACreated) override;
  [[nodiscard]] TWinError SetValue(const TRegistryKey& AKey, std::u16string_view AName, std::uint32_t AType,
                                   const void* AData, std::size_t ASize) override;
  [[nodiscard]] TWinError RemoveValue(const TRegistryKey& AKey, std::u16string_view AName) override;
  [[nodiscard]] TWinError RemoveKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AView) override;

  /// The number of keys that are open.
  [[nodiscard]] std::size_t OpenHandleCount();
  /// What was changed through the interface so far, in order. Direct changes (below) are not listed.
  [[nodiscard]] std::vector<TRegistryChange> Changes();
  void ClearChanges();

  // Direct access, as another process of the machine has it: full paths of the native view (with the root's full or
  // short name), no handles, no access checks. They raise Exception for a path or name that the registry cannot hold.

  /// Creates the key and what it lies in, where missing; watchers are told.
  void AddKey(std::u16string_view APath);
  /// Sets a value, creating the key where missing; watchers are told.
  void SetValueAt(std::u16string_view APath, std::u16string_view AName, std::uint32_t AType,
                  std::span<const std::byte> AData);
  /// The same with a text, stored with its terminator.
  void SetTextAt(std::u16string_view APath, std::u16string_view AName, std::u16string_view AText,
                 std::uint32_t AType = RegType::String);
  void SetDwordAt(std::u16string_view APath, std::u16string_view AName, std::uint32_t AValue);
  /// Whether there was such a value (such a key); watchers are told.
  bool RemoveValueAt(std::u16string_view APath, std::u16string_view AName);
  bool RemoveTree(std::u16string_view APath);
  [[nodiscard]] bool HasKey(std::u16string_view APath);
  /// False when there is no such value; AValue is then untouched.
  [[nodiscard]] bool ValueAt(std::u16string_view APath, std::u16string_view AName, TRegistryValue& AValue);
  /// Changes the time of an existing key; further changes of the key set it to the clock's time again.
  void SetLastWriteTime(std::u16string_view APath, TFileTime ATime);
  /// From now on, opening the key (created where missing) with any of ARights fails with AccessDenied, and so does
  /// creating below it or removing it when the right for that is among them. 0 lifts the ban. The right to read the
  /// security descriptor, which all standard masks contain, never counts.
  void DenyAccess(std::u16string_view APath, std::uint32_t ARights = KeyAccess::AllAccess);

  // Loading of images: keys keep the times that they have, and watchers hear nothing.

  /// As AddKey; new keys get the clock's time.
  TDirectKey LoadKey(std::u16string_view APath);
  void LoadValue(TDirectKey AKey, std::u16string_view AName, std::uint32_t AType, std::span<const std::byte> AData);
  void UnloadValue(TDirectKey AKey, std::u16string_view AName);
  void SetLastWriteTime(TDirectKey AKey, TFileTime ATime);

 private:
  struct TMergedView;  // of a key below HKEY_CLASSES_ROOT
  struct TPosition;    // where a path ends
  enum class EMissing;

  struct TOpenKey {
    TRegistryNode* Node;
    TRegistryNode* Shadow = nullptr;  // the machine's key under the user's, in a merged view
    std::uint32_t Access = 0;
    bool View32 = false;
    bool Watching = false;  // the first watch decides about the later ones
    bool WatchSubtree = false;
    std::uint32_t WatchFilter = 0;
    std::unique_ptr<TMergedView> Merged;
  };
  struct TWatch {
    std::uintptr_t Key;
    bool Subtree;
    std::uint32_t Filter;
    std::shared_ptr<TClockSignal> Signal;
  };

  // All private methods need the lock.

  // paths and views (SimulatedRegistry.Paths.cpp)
  void BuildFixedKeys();
  void AddFixedLinks();
  [[nodiscard]] TWinError Locate(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                 EMissing AMissing, TPosition& AFound);
  [[nodiscard]] TWinError LocateMerged(std::u16string APath, EMissing AMissing, TPosition& AFound);
  [[nodiscard]] TWinError Walk(TRegistryNode& AFrom, std::u16string_view APath, bool AView32, EMissing AMissing,
                               TPosition& AFound);
  [[nodiscard]] TWinError Step(std::u16string_view AName, EMissing AMissing, TPosition& AFound);
  [[nodiscard]] TWinError CheckCreation(const TRegistryNode& AParent, EMissing AMissing) const;
  [[nodiscard]] bool IsSoftware(const TRegistryNode& ANode) const;
  [[nodiscard]] bool IsClasses(const TRegistryNode& ANode) const;
  [[nodiscard]] bool IsFixed(const TRegistryNode& ANode) const;
  [[nodiscard]] static std::u16string PathOf(const TRegistryNode& ANode);
  [[nodiscard]] std::u16string FullName(const TRegistryNode& ANode) const;
  [[nodiscard]] std::u16string NativePath(std::u16string_view APath) const;
  [[nodiscard]] TRegistryNode* FindDirect(std::u16string_view APath);
  [[nodiscard]] TRegistryNode& MakeDirect(std::u16string_view APath, EMissing AMissing);

  // handles (SimulatedRegistry.cpp)
  [[nodiscard]] TWinError Grant(TPosition& AFound, std::uint32_t AAccess, std::uintptr_t& AHandle);
  [[nodiscard]] TWinError Access(const TRegistryKey& AKey, std::uint32_t ARight, TOpenKey*& AOpen);
  static void Merge(TOpenKey& AOpen);

  // changes (SimulatedRegistry.Direct.cpp)
  void NoteChange(TRegistryNode& ANode, std::uint32_t AFilter);
  bool DropSubtree(TRegistryNode& ANode);
  void DropChild(TRegistryNode& AParent, std::u16string_view AName);
  void SignalWatches(const TRegistryNode& ANode, std::uintptr_t AKey);
  void Log(ERegistryChange AKind, const TRegistryNode& ANode, std::u16string_view AName);

  TSimulatedClock& FClock;
  TSimulatedSync& FSync;
  const TSimulatedRegistryFacts FFacts;
  std::mutex FMutex;
  std::pmr::unsynchronized_pool_resource FKeyMemory;
  TRegistryNodePtr FRoot;
  TRegistryNode* FMachine = nullptr;
  TRegistryNode* FUsers = nullptr;
  TRegistryNode* FUser = nullptr;         // the current user's key below FUsers
  TRegistryNode* FUserClasses = nullptr;  // and that of the user's own classes
  std::uintptr_t FLastHandle = 0;
  std::unordered_map<std::uintptr_t, TOpenKey> FOpen;
  std::unordered_multimap<const TRegistryNode*, TWatch> FWatches;
  std::unordered_map<const TRegistryNode*, TRegistryNodePtr> FRemoved;  // removed, but still open
  std::vector<TRegistryChange> FChanges;
};

}  // namespace varcolin
