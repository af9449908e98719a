// Walking over what a registry key enumerates by index.
#pragma once

#include <algorithm>
#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "platform/Registry.h"

namespace varcolin {

/// Calls AStep(index) -> TWinError for every index from 0 on. With a known count it stops there, so that no call is
/// spent on learning that nothing more comes, and an entry that cannot be read does not hide those behind it. Without
/// one it goes on until a call fails.
template <class TStep>
void WalkIndices(std::optional<std::uint32_t> ACount, TStep AStep) {
  for (std::uint32_t index = 0; !ACount || index < *ACount; ++index) {
    const TWinError error = AStep(index);
    if (error == WinError::NoMoreItems || (error != WinError::Success && !ACount)) return;
  }
}

/// The names of a key's subkeys, in enumeration order, of which there are ACount when that is known; a name that cannot
/// be read is left out.
[[nodiscard]] inline std::vector<std::u16string> EnumKeyNames(IRegistry& ARegistry, const TRegistryKey& AKey,
                                                              std::optional<std::uint32_t> ACount) {
  constexpr std::uint32_t MaxReserved = 65'536;  // the number is only a hint
  std::vector<std::u16string> names;
  names.reserve(std::min(ACount.value_or(0), MaxReserved));
  std::u16string name;
  WalkIndices(ACount, [&](std::uint32_t AIndex) {
    const TWinError error = ARegistry.EnumKey(AKey, AIndex, name);
    if (error == WinError::Success) names.push_back(name);
    return error;
  });
  return names;
}

/// The same; the number is asked for first.
[[nodiscard]] inline std::vector<std::u16string> EnumKeyNames(IRegistry& ARegistry, const TRegistryKey& AKey) {
  TRegistryKeyInfo info;
  const bool known = ARegistry.QueryKeyInfo(AKey, info) == WinError::Success;
  return EnumKeyNames(ARegistry, AKey, known ? std::optional(info.SubKeyCount) : std::nullopt);
}

}  // namespace varcolin
