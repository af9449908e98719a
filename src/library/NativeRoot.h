// The composition root of the native library: which simulated machine stands behind it.
#pragma once

#include <memory>
#include <string>

#include "intf/intf_Machine.h"
#include "library/uModules.h"
#include "platform/simulated/SimulatedMachine.h"

namespace varcolin {

class IImageSource;

/// A simulated machine with the suite installed on it: the sibling libraries and the library's own resources are
/// registered with it. At most one at a time.
class TInstalledMachine {
 public:
  explicit TInstalledMachine(const TSimulatedFacts& AFacts);
  TInstalledMachine(const TInstalledMachine&) = delete;
  TInstalledMachine& operator=(const TInstalledMachine&) = delete;
  ~TInstalledMachine();

  [[nodiscard]] TSimulatedMachine& Machine() noexcept { return FMachine; }

 private:
  TSimulatedMachine FMachine;
};

/// A machine read from an image, and the library loaded over it.
class TNativeRoot {
 public:
  /// Raises EImageError for a broken image.
  explicit TNativeRoot(const IImageSource& AImage);

  [[nodiscard]] TSimulatedMachine& Machine() noexcept { return FInstalled.Machine(); }

 private:
  TInstalledMachine FInstalled;
  std::unique_ptr<TLibraryModules> FModules;
};

}  // namespace varcolin
