// The library's reading of the lists, and the least that any reading of the same keys costs.
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "library/uModules.h"
#include "platform/Machine.h"
#include "platform/Registry.h"
#include "platform/decorators/ForwardingRegistry.h"

namespace varcolin::benchmarks {

/// The library loaded over a machine, with its lists empty: the steps of its reader thread, to be taken on this one.
class TListPhase {
 public:
  explicit TListPhase(const TMachine& AMachine);

  /// The same as the reader does it: starts the log afresh, which describes the machine, and reads the lists. Details
  /// may be read as well.
  static void RunReader();
  /// The list phase itself: reads the lists; to be called once.
  void Run() const;
  /// The number of programs that are listed.
  [[nodiscard]] std::size_t ProgramCount() const;

 private:
  TMachine FMachine;
  TLibraryModules FModules;
};

/// A bare walk over every uninstall key that a machine has: open, 12 queries, close. Which keys there are is found out
/// beforehand.
class TBareWalk {
 public:
  explicit TBareWalk(IRegistry& ARegistry);

  /// Raises EOSError when a key does not open any more.
  void Run(IRegistry& ARegistry) const;

 private:
  struct TPlace {
    ERegistryRoot Root;
    std::uint32_t View;
    std::vector<std::u16string> Names;
  };

  std::vector<TPlace> FPlaces;
};

/// Forwards to a registry and counts the calls, closing included.
class TCountingRegistry final : private ICallGate, public TForwardingRegistry {
 public:
  explicit TCountingRegistry(IWritableRegistry& AInner) : TForwardingRegistry(AInner, *this) {}

  [[nodiscard]] std::uint64_t Calls() const noexcept { return FCalls; }

  [[nodiscard]] TWinError OpenKey(TRegistryBase ABase, std::u16string_view APath, std::uint32_t AAccess,
                                  TRegistryKey& AKey) override;

 private:
  [[nodiscard]] TWinError Admit(const TCall&) override;

  std::atomic<std::uint64_t> FCalls{0};
};

/// A machine's facilities, but another registry.
[[nodiscard]] TMachine WithRegistry(const TMachine& AMachine, IWritableRegistry& ARegistry) noexcept;

}  // namespace varcolin::benchmarks
