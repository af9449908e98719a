#include "registry/uKeyCache.h"

#include "registry/uRegistryWalk.h"

namespace varcolin {

std::shared_ptr<const TReadKey> TKeyCache::Read(ERegistryRoot ARoot, std::u16string_view APath, std::uint32_t AView) {
  const std::u16string name = NameOf(ARoot, APath, AView);
  if (const auto* const known = FKeys.Find(name)) return *known;
  TRegistryKey key;
  if (FRegistry.OpenKey(ARoot, APath, KeyAccess::Read | AView, key) != WinError::Success) return nullptr;
  auto read = std::make_shared<TReadKey>();
  read->Values = TKeySnapshot::Read(FRegistry, key, FCollector);
  if (read->Values->MayHaveSubKeys()) {
    read->SubKeys = EnumKeyNames(FRegistry, key, read->Values->SubKeyCount());
  }
  return *FKeys.Add(name, std::move(read)).first;
}

void TKeyCache::Forget(ERegistryRoot ARoot, std::u16string_view APath, std::uint32_t AView) {
  FKeys.Remove(NameOf(ARoot, APath, AView));
}

std::u16string TKeyCache::NameOf(ERegistryRoot ARoot, std::u16string_view APath, std::uint32_t AView) {
  std::u16string name;
  name.reserve(APath.size() + 2);
  name.push_back(static_cast<char16_t>(ARoot));
  name.push_back(static_cast<char16_t>(ARoot == ERegistryRoot::CurrentUser ? 0 : AView & KeyAccess::ViewMask));
  return name.append(APath);
}

}  // namespace varcolin
