// What 64-bit Windows 7 does with the registry for 32-bit processes, and the paths of its fixed keys.
//
// Keys are arranged as the kernel has them: below a root with the subkeys MACHINE and USER. The 32-bit view of
// MACHINE\Software is stored in MACHINE\Software\Wow6432Node. Keys that both views share are symbolic links in there,
// so that they are shared by whatever path they are reached.
#pragma once

#include <span>
#include <string_view>

namespace varcolin::RegistryLayout {

inline constexpr std::u16string_view Machine = u"MACHINE";
inline constexpr std::u16string_view Users = u"USER";
inline constexpr std::u16string_view Software = u"Software";
inline constexpr std::u16string_view Classes = u"Classes";
inline constexpr std::u16string_view Wow64Node = u"Wow6432Node";
/// Ends the name of the key below USER that holds a user's own classes.
inline constexpr std::u16string_view ClassesSuffix = u"_Classes";
/// What HKEY_CURRENT_CONFIG names.
inline constexpr std::u16string_view CurrentConfig = u"MACHINE\\System\\CurrentControlSet\\Hardware Profiles\\Current";

/// Keys below MACHINE\Software that both views share, apart from Classes.
[[nodiscard]] std::span<const std::u16string_view> SharedKeys() noexcept;
/// Keys below Classes that have a 32-bit form below Classes\Wow6432Node; all others are shared.
[[nodiscard]] std::span<const std::u16string_view> RedirectedClasses() noexcept;
/// Keys below Classes\Wow6432Node that are links to the shared keys of the same name.
[[nodiscard]] std::span<const std::u16string_view> LinkedClasses() noexcept;

}  // namespace varcolin::RegistryLayout
