// The library's modules and the order in which they come to life.
#pragma once

#include <cstddef>

#include "platform/Machine.h"

namespace varcolin {

/// While an object of this class lives, the library is loaded: the process-wide state of every module exists. The
/// modules load in dependency order and unload in the reverse. At most one at a time; the machine outlives it.
class TLibraryModules {
 public:
  /// Loads every module; when one fails, those before it are unloaded and its exception passes on.
  explicit TLibraryModules(const TMachine& AMachine);
  TLibraryModules(const TLibraryModules&) = delete;
  TLibraryModules& operator=(const TLibraryModules&) = delete;
  ~TLibraryModules();

 private:
  void UnloadAll() noexcept;

  std::size_t FLoaded = 0;
};

}  // namespace varcolin
