// What the sources of the simulated registry share.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "platform/simulated/RegistryTree.h"
#include "platform/simulated/SimulatedRegistry.h"

namespace varcolin {

/// What becomes of the missing keys of a path.
enum class TSimulatedRegistry::EMissing {
  Fail,
  Create,    ///< created as through the interface: checked and logged
  AddOther,  ///< created by another process of the machine
  Load,      ///< loaded from an image
};

struct TSimulatedRegistry::TPosition {
  TRegistryNode* Node = nullptr;
  TRegistryNode* Shadow = nullptr;  ///< see TOpenKey
  bool View32 = false;
  bool Created = false;
  bool Merged = false;
  std::u16string MergedPath;  ///< below HKEY_CLASSES_ROOT
};

/// The union of two keys, as long as neither changes.
struct TSimulatedRegistry::TMergedView {
  std::u16string Path;  ///< below HKEY_CLASSES_ROOT
  bool Valid = false;
  std::uint32_t NodeVersion = 0;
  std::uint32_t ShadowVersion = 0;
  std::vector<const TRegistryNode*> Keys;
  std::vector<const TStoredValue*> Values;
};

/// The calls take texts that end with a NUL, so none can be within; the registry itself may hold such names.
[[nodiscard]] inline bool HasNul(std::u16string_view AText) noexcept {
  return AText.find(u'\0') != std::u16string_view::npos;
}

/// Access rights that the simulation checks one by one.
namespace KeyRight {
inline constexpr std::uint32_t SetValue = 0x0002;
inline constexpr std::uint32_t CreateSubKey = 0x0004;
inline constexpr std::uint32_t EnumerateSubKeys = 0x0008;
inline constexpr std::uint32_t Remove = 0x10000;
inline constexpr std::uint32_t ReadControl = 0x20000;
}  // namespace KeyRight

}  // namespace varcolin
