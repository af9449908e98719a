// The Windows registry.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Sync.h"
#include "platform/Types.h"

namespace varcolin {

/// The predefined root keys. The values are those of the Windows handles.
enum class ERegistryRoot : std::uint32_t {
  ClassesRoot = 0x80000000,
  CurrentUser = 0x80000001,
  LocalMachine = 0x80000002,
  Users = 0x80000003,
  PerformanceData = 0x80000004,
  CurrentConfig = 0x80000005,
  DynData = 0x80000006,
};

/// Access rights of an open key; one view flag may be added.
namespace KeyAccess {
inline constexpr std::uint32_t QueryValue = 0x0001;
inline constexpr std::uint32_t Notify = 0x0010;
inline constexpr std::uint32_t Read = 0x20019;        ///< KEY_READ
inline constexpr std::uint32_t Write = 0x20006;       ///< KEY_WRITE
inline constexpr std::uint32_t AllAccess = 0xF003F;   ///< KEY_ALL_ACCESS
inline constexpr std::uint32_t Wow64_64Key = 0x0100;  ///< KEY_WOW64_64KEY: the 64-bit view
inline constexpr std::uint32_t Wow64_32Key = 0x0200;  ///< KEY_WOW64_32KEY: the 32-bit view
inline constexpr std::uint32_t ViewMask = Wow64_64Key | Wow64_32Key;
}  // namespace KeyAccess

/// Types of registry value.
namespace RegType {
inline constexpr std::uint32_t None = 0;
inline constexpr std::uint32_t String = 1;        ///< REG_SZ
inline constexpr std::uint32_t ExpandString = 2;  ///< REG_EXPAND_SZ
inline constexpr std::uint32_t Binary = 3;
inline constexpr std::uint32_t Dword = 4;
inline constexpr std::uint32_t DwordBigEndian = 5;
inline constexpr std::uint32_t Link = 6;
inline constexpr std::uint32_t MultiString = 7;  ///< REG_MULTI_SZ
inline constexpr std::uint32_t Qword = 11;
}  // namespace RegType

/// What a change watch listens to.
namespace RegNotify {
inline constexpr std::uint32_t ChangeName = 1;     ///< subkeys appear and vanish
inline constexpr std::uint32_t ChangeLastSet = 4;  ///< values change
}  // namespace RegNotify

struct TRegistryKeyTag {};
class IRegistry;

/// An open registry key.
using TRegistryKey = THandle<IRegistry, TRegistryKeyTag>;

/// Where a path starts: at a predefined root or at an open key.
class TRegistryBase {
 public:
  TRegistryBase(ERegistryRoot ARoot) noexcept : FRoot(ARoot) {}
  TRegistryBase(const TRegistryKey& AKey) noexcept : FRoot{}, FKey(AKey.Value()) {}

  [[nodiscard]] bool IsRoot() const noexcept { return FKey == 0; }
  [[nodiscard]] ERegistryRoot Root() const noexcept { return FRoot; }
  [[nodiscard]] std::uintptr_t Key() const noexcept { return FKey; }

 private:
  ERegistryRoot FRoot;
  std::uintptr_t FKey = 0;
};

/// One value as it is stored: the data is not interpreted and may have any length for any type.
struct TRegistryValue {
  std::u16string Name;  ///< empty for the default value
  std::uint32_t Type = RegType::None;
  std::vector<std::byte> Data;
};

/// Facts about an open key. Lengths are in UTF-16 units without a terminator, sizes in bytes.
struct TRegistryKeyInfo {
  std::uint32_t SubKeyCount = 0;
  std::uint32_t MaxSubKeyLength = 0;
  std::uint32_t ValueCount = 0;
  std::uint32_t MaxValueNameLength = 0;
  std::uint32_t MaxValueDataSize = 0;
  TFileTime LastWriteTime;
};

/// Reading of the registry: code that only looks gets this.
class IRegistry {
 public:
  virtual ~IRegistry() = default;

  /// Opens APath below ABase; an empty path opens ABase itself anew. AAccess: KeyAccess bits. The path has no leading
  /// backslash (BadRegistryPath); a trailing one is allowed. Windows: RegOpenKeyExW. Fails with FileNotFound when the
  /// key does not exist, AccessDenied, KeyDeleted when ABase was removed, InvalidHandle.
  [[nodiscard]] virtual TWinError OpenKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                          TRegistryKey& AKey) = 0;

  /// Counts, greatest lengths and last write time of an open key. Windows: RegQueryInfoKeyW.
  [[nodiscard]] virtual TWinError QueryKeyInfo(const TRegistryKey& AKey, TRegistryKeyInfo& AInfo) = 0;

  /// Name of subkey AIndex, in the order of upper-cased names. NoMoreItems behind the last. Changes made meanwhile
  /// shift the indices. Windows: RegEnumKeyExW.
  [[nodiscard]] virtual TWinError EnumKey(const TRegistryKey& AKey, std::uint32_t AIndex, std::u16string& AName) = 0;

  /// Name, type and data of value AIndex, in stored order; the members' memory is used again. NoMoreItems behind the
  /// last. Windows: RegEnumValueW.
  [[nodiscard]] virtual TWinError EnumValue(const TRegistryKey& AKey, std::uint32_t AIndex, TRegistryValue& AValue) = 0;

  /// Type and data of one value (empty name: the default value). FileNotFound when there is none. AValue.Name is set
  /// to AName. Windows: RegQueryValueExW.
  [[nodiscard]] virtual TWinError QueryValue(const TRegistryKey& AKey, std::u16string_view AName,
                                             TRegistryValue& AValue) = 0;

  /// Signals AEvent at the next change of the key (and of what lies below it when ASubtree), once; call again for the
  /// next one. AFilter: RegNotify bits. Closing the key may signal the event too. Windows: RegNotifyChangeKeyValue,
  /// asynchronous, bound to the calling thread's life on systems before Windows 8 as there.
  [[nodiscard]] virtual TWinError NotifyChange(const TRegistryKey& AKey, bool ASubtree, std::uint32_t AFilter,
                                               const TEvent& AEvent) = 0;

  /// Gives a key back; called by TRegistryKey. Windows: RegCloseKey.
  virtual void CloseValue(TRegistryKeyTag, std::uintptr_t AKey) noexcept = 0;
};

/// Reading and writing of the registry.
class IWritableRegistry : public IRegistry {
 public:
  /// Opens APath below ABase, creating every missing key. ACreated: whether the last one was. Windows: RegCreateKeyExW
  /// (non-volatile, default security).
  [[nodiscard]] virtual TWinError CreateKeyPath(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                                TRegistryKey& AKey, bool& ACreated) = 0;

  /// Sets a value, creating it when missing. Windows: RegSetValueExW.
  [[nodiscard]] virtual TWinError SetValue(const TRegistryKey& AKey, std::u16string_view AName, std::uint32_t AType,
                                           const void* AData, std::size_t ASize) = 0;

  /// Removes a value; FileNotFound when there is none. Windows: RegDeleteValueW.
  [[nodiscard]] virtual TWinError RemoveValue(const TRegistryKey& AKey, std::u16string_view AName) = 0;

  /// Removes a key that has no subkeys (AccessDenied when it has). AView: a view flag or 0. Windows: RegDeleteKeyExW,
  /// where the system has no such function RegDeleteKeyW.
  [[nodiscard]] virtual TWinError RemoveKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AView) = 0;
};

}  // namespace varcolin
