// Registry keys read once for several purposes.
#pragma once

#include <memory>
#include <string_view>

#include "registry/uKeySnapshot.h"
#include "support/uTextMap.h"

namespace varcolin {

/// The snapshots of a product's keys, by their registry key texts. Whoever finds the product deposits what it has read;
/// whoever fills the product's record gets that, or a fresh reading. It lives no longer than the read that found the
/// product, so nothing it gives is older than that. One thread.
class TKeyStore {
 public:
  explicit TKeyStore(IRegistry& ARegistry) noexcept : FRegistry(ARegistry) {}
  TKeyStore(const TKeyStore&) = delete;
  TKeyStore& operator=(const TKeyStore&) = delete;

  [[nodiscard]] IRegistry& Registry() const noexcept { return FRegistry; }

  /// Deposits what the key with this text held.
  void Put(std::u16string_view AKeyText, std::shared_ptr<const TKeySnapshot> ASnapshot);
  /// What was deposited; null when nothing was.
  [[nodiscard]] std::shared_ptr<const TKeySnapshot> Find(std::u16string_view AKeyText) const;
  /// What was deposited, or else a fresh reading of the key (which is not deposited); null when it does not open.
  [[nodiscard]] std::shared_ptr<const TKeySnapshot> Get(std::u16string_view AKeyText) const;

 private:
  IRegistry& FRegistry;
  TTextMap<std::shared_ptr<const TKeySnapshot>> FSnapshots;
};

}  // namespace varcolin
