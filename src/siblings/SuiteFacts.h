// The facts that the sibling libraries share: names, registry keys, folders.
#pragma once

#include <optional>
#include <string>
#include <string_view>

#include "platform/Machine.h"

namespace varcolin {

/// Names and registry keys; the keys lie below the current user's root.
namespace Suite {
inline constexpr std::u16string_view MakerName = u"Zentrova";
inline constexpr std::u16string_view ProductName = u"Velmoran";
inline constexpr std::u16string_view RegistryRoot = u"Software\\Zentrova\\Velmoran\\";
inline constexpr std::u16string_view DebugModeKey = u"Software\\Zentrova\\DebugMode";
inline constexpr std::u16string_view DebugModeValue = u"DebugMode";
}  // namespace Suite

/// The folder below which the suite keeps the user's files, without a trailing backslash; empty when the system names
/// none.
[[nodiscard]] std::u16string SuiteDataFolder(const TMachine& AMachine);

/// A number of the current user's registry; nothing when the key or value is missing or no 32-bit number.
[[nodiscard]] std::optional<std::uint32_t> ReadUserNumber(const TMachine& AMachine, std::u16string_view AKey,
                                                          std::u16string_view AValue);

/// Writes such a number, creating the key when it is missing; false when that fails.
bool WriteUserNumber(const TMachine& AMachine, std::u16string_view AKey, std::u16string_view AValue,
                     std::uint32_t ANumber);

/// Makes a folder with its missing parents; false when it does not exist afterwards.
bool MakeFolders(const TMachine& AMachine, std::u16string_view AFolder);

}  // namespace varcolin
