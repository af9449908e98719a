// Registry key texts, and reading access to one registry key at a time.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"
#include "support/uExceptions.h"

namespace varcolin {

/// A registry value of a type that the reader does not accept.
class ERegistryException final : public Exception {
 public:
  using Exception::Exception;
  [[nodiscard]] std::u16string_view ClassText() const noexcept override { return u"ERegistryException"; }
};

/// Reads one key at a time. State: a root (CurrentUser at first), an access mask (AllAccess at first) and the current
/// key with its path. A path with a leading backslash starts at the root, any other at the current key (at the root
/// when none is open). One thread at a time.
class TRegistry {
 public:
  explicit TRegistry(IRegistry& ARegistry) noexcept : FRegistry(ARegistry) {}

  [[nodiscard]] ERegistryRoot RootKey() const noexcept { return FRoot; }
  /// Closes the current key.
  void SetRootKey(ERegistryRoot ARoot) noexcept;
  [[nodiscard]] std::uint32_t Access() const noexcept { return FAccess; }
  void SetAccess(std::uint32_t AAccess) noexcept { FAccess = AAccess; }
  /// The open key; empty when there is none.
  [[nodiscard]] const TRegistryKey& CurrentKey() const noexcept { return FKey; }
  /// Its path as given, without a leading backslash.
  [[nodiscard]] const std::u16string& CurrentPath() const noexcept { return FPath; }

  /// Makes the key at APath current. False when it does not open; the current key then stays.
  [[nodiscard]] bool OpenKey(std::u16string_view APath);
  void CloseKey() noexcept;
  /// Whether the key at APath opens; the current key stays.
  [[nodiscard]] bool KeyExists(std::u16string_view APath);
  /// Names of the current key's subkeys, in enumeration order; empty without a current key.
  [[nodiscard]] std::vector<std::u16string> GetKeyNames();
  /// Names of the current key's values, in stored order.
  [[nodiscard]] std::vector<std::u16string> GetValueNames();
  /// A value of the current key; false when it is absent or unreadable.
  [[nodiscard]] bool GetValue(std::u16string_view AName, TRegistryValue& AValue);

 protected:
  [[nodiscard]] IRegistry& Registry() const noexcept { return FRegistry; }

 private:
  [[nodiscard]] TRegistryBase BaseFor(std::u16string_view& APath) const noexcept;

  IRegistry& FRegistry;
  ERegistryRoot FRoot = ERegistryRoot::CurrentUser;
  std::uint32_t FAccess = KeyAccess::AllAccess;
  TRegistryKey FKey;
  std::u16string FPath;
};

/// Adds registry key texts, by which a key or value is kept as one line: view mark, root name, key path, backslash,
/// value name; for example "(x64)HKEY_LOCAL_MACHINE\Software\Tool\".
class TRegistryEx : public TRegistry {
 public:
  using TRegistry::TRegistry;

  /// The root's name; empty for an unknown root.
  [[nodiscard]] static std::u16string_view RegistryRootToStr(ERegistryRoot ARoot) noexcept;
  /// The text of a key (empty AName) or value. Of AFlag only the 64-bit view bit counts.
  [[nodiscard]] static std::u16string RegistryKeyToStr(std::uint32_t AFlag, ERegistryRoot ARoot,
                                                       std::u16string_view AKey, std::u16string_view AName);
  /// The same for a value of the current key, or for the key itself.
  [[nodiscard]] std::u16string RegistryKeyToStr(std::u16string_view AName) const;
  /// Parses a text. AFlag: the view flag that its mark names, 0 without one. ARoot stays when the text names no known
  /// root. AKey begins with a backslash after a known root and ends with one.
  static void ExtractKeyParams(std::u16string_view AValue, std::uint32_t& AFlag, ERegistryRoot& ARoot,
                               std::u16string& AKey, std::u16string& AName);

  /// Whether a value of the current key is a multi-string.
  [[nodiscard]] bool IsMultiString(std::u16string_view AValueName);
  /// The strings of a multi-string value, each followed by ADelim; empty for a missing or empty value. Raises
  /// ERegistryException when the value is a string, an expandable string, a number or binary.
  [[nodiscard]] std::u16string ReadMultiString(std::u16string_view AName, std::u16string_view ADelim);
};

/// The strings of a multi-string's bytes, up to the empty string that ends the list.
[[nodiscard]] std::vector<std::u16string> MultiStringFromBytes(std::span<const std::byte> AData);

}  // namespace varcolin
