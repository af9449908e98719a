// The library on a simulated machine, for fuzzers of what only works when it is loaded.
#pragma once

#include <initializer_list>
#include <string_view>

#include "library/NativeRoot.h"

namespace varcolin::fuzz {

/// Loaded while the object lives, on a machine with the given files.
class TLoadedLibrary {
 public:
  explicit TLoadedLibrary(std::initializer_list<std::u16string_view> AFiles) {
    for (const std::u16string_view path : AFiles) Machine().Files().AddFile(path, std::string_view("MZ"));
  }

  [[nodiscard]] TSimulatedMachine& Machine() noexcept { return FInstalled.Machine(); }

 private:
  TInstalledMachine FInstalled{TSimulatedFacts{}};
  TLibraryModules FModules{FInstalled.Machine().Facilities()};
};

}  // namespace varcolin::fuzz
