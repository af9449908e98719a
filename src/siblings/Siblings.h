// The reference sibling libraries of the suite, as the native library and the tests use them: registered with the
// simulated machine, which hands their entry points out when a module of that name is loaded.
#pragma once

#include <span>
#include <string_view>

#include "intf/intf_Base.h"
#include "platform/Machine.h"

namespace varcolin {

/// One sibling library: the file name that loaders ask for, and its export "GetInstance".
struct TSiblingExport {
  std::u16string_view Name;
  TGetInstance GetInstance;
};

/// Every sibling library. The entry points answer null before TSiblingLibraries::Load and after Unload. They may be
/// called from any thread.
[[nodiscard]] std::span<const TSiblingExport> SiblingExports() noexcept;

/// The state behind the entry points. Each library is created at the first call of its entry point and keeps its
/// objects until Unload, since the pointers that it hands out carry no reference of the caller's own.
class TSiblingLibraries {
 public:
  /// Sets the machine that the libraries work on; it outlives Unload. Not beside calls of the entry points.
  static void Load(const TMachine& AMachine);
  /// Destroys every library. Pointers obtained before without a reference of the caller's own are dead afterwards,
  /// and objects that a caller still holds may no longer be called.
  static void Unload() noexcept;
};

}  // namespace varcolin
