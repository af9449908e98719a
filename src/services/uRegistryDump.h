// Registry trees as lines of text.
#pragma once

#include <cstdint>
#include <functional>
#include <initializer_list>
#include <span>
#include <string_view>
#include <utility>

#include "registry/uKeyCache.h"

namespace varcolin {

/// Dumps keys with all that lies below them: a line with the key's text, a line for each value, an empty line, then the
/// subkeys. Keys that do not open are left out. The keys are read through a cache, which keeps them. No key stays open
/// while the next is read, and the depth of a tree costs no stack. One thread at a time.
class TRegistryDump {
 public:
  /// Receives one line, in parts that last only for the call.
  using TLine = std::function<void(std::initializer_list<std::u16string_view>)>;

  TRegistryDump(TKeyCache& AKeys, TLine ALine) : FKeys(AKeys), FLine(std::move(ALine)) {}

  /// Dumps ARoot\APath (no leading backslash) as the view flag AView shows it.
  void Run(ERegistryRoot ARoot, std::u16string_view APath, std::uint32_t AView);

 private:
  void WriteValue(std::u16string_view AName, std::uint32_t AType, std::span<const std::byte> AData);

  TKeyCache& FKeys;
  TLine FLine;
};

}  // namespace varcolin
