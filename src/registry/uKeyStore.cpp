#include "registry/uKeyStore.h"

#include "registry/uRegistryEx.h"
#include "support/uPaths.h"

namespace varcolin {

void TKeyStore::Put(std::u16string_view AKeyText, std::shared_ptr<const TKeySnapshot> ASnapshot) {
  *FSnapshots.Add(AKeyText, nullptr).first = std::move(ASnapshot);
}

std::shared_ptr<const TKeySnapshot> TKeyStore::Find(std::u16string_view AKeyText) const {
  const auto* const found = FSnapshots.Find(AKeyText);
  return found == nullptr ? nullptr : *found;
}

std::shared_ptr<const TKeySnapshot> TKeyStore::Get(std::u16string_view AKeyText) const {
  if (auto known = Find(AKeyText)) return known;
  std::uint32_t flag = 0;
  ERegistryRoot root = ERegistryRoot::CurrentUser;
  std::u16string path;
  std::u16string name;
  TRegistryEx::ExtractKeyParams(AKeyText, flag, root, path, name);
  std::u16string_view relative = ExcludeTrailingPathDelimiter(path);
  if (relative.starts_with(u'\\')) relative.remove_prefix(1);
  return TKeySnapshot::ReadAt(FRegistry, root, relative, KeyAccess::Read | flag);
}

}  // namespace varcolin
