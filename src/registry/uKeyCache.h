// What one pass over registry keys has read, for the passes that follow at once.
#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "platform/Registry.h"
#include "registry/uKeySnapshot.h"
#include "support/uTextMap.h"

namespace varcolin {

/// A key that was read whole: its values, and the names of its subkeys in enumeration order.
struct TReadKey {
  std::shared_ptr<const TKeySnapshot> Values;
  std::vector<std::u16string> SubKeys;
};

/// Reads keys and keeps them, so that a second pass over the same keys costs no call. The current user's keys are kept
/// once for both views, which Windows does not tell apart there; user classes, the exception, are not to be read
/// through a cache. Whoever uses a cache knows by a change watch that the keys have not changed since they were read.
/// One thread.
class TKeyCache {
 public:
  explicit TKeyCache(IRegistry& ARegistry) noexcept : FRegistry(ARegistry) {}
  TKeyCache(const TKeyCache&) = delete;
  TKeyCache& operator=(const TKeyCache&) = delete;

  /// The key at ARoot\APath (no leading backslash) in the view of AView, a view flag or 0; null when it does not open.
  [[nodiscard]] std::shared_ptr<const TReadKey> Read(ERegistryRoot ARoot, std::u16string_view APath,
                                                     std::uint32_t AView);
  /// Gives the memory of a key back that no later pass will ask for.
  void Forget(ERegistryRoot ARoot, std::u16string_view APath, std::uint32_t AView);

 private:
  [[nodiscard]] static std::u16string NameOf(ERegistryRoot ARoot, std::u16string_view APath, std::uint32_t AView);

  IRegistry& FRegistry;
  TKeySnapshot::TCollector FCollector;
  TTextMap<std::shared_ptr<const TReadKey>> FKeys;
};

}  // namespace varcolin
