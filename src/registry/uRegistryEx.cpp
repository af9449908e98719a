#include "registry/uRegistryEx.h"

#include <algorithm>
#include <optional>
#include <utility>

#include "registry/uRegistryWalk.h"
#include "support/uFormat.h"
#include "support/uPaths.h"
#include "support/uText.h"

namespace varcolin {
namespace {

/// The root names, in the order in which they are tried.
constexpr std::pair<ERegistryRoot, std::u16string_view> RootNames[] = {
    {ERegistryRoot::ClassesRoot, u"HKEY_CLASSES_ROOT"},
    {ERegistryRoot::CurrentUser, u"HKEY_CURRENT_USER"},
    {ERegistryRoot::LocalMachine, u"HKEY_LOCAL_MACHINE"},
    {ERegistryRoot::Users, u"HKEY_USERS"},
    {ERegistryRoot::PerformanceData, u"HKEY_PERFORMANCE_DATA"},
    {ERegistryRoot::CurrentConfig, u"HKEY_CURRENT_CONFIG"},
    {ERegistryRoot::DynData, u"HKEY_DYN_DATA"},
};

constexpr std::u16string_view Mark32 = u"(x32)";
constexpr std::u16string_view Mark64 = u"(x64)";

}  // namespace

TRegistryBase TRegistry::BaseFor(std::u16string_view& APath) const noexcept {
  if (APath.starts_with(u'\\')) {
    APath.remove_prefix(1);
    return FRoot;
  }
  return FKey ? TRegistryBase(FKey) : TRegistryBase(FRoot);
}

void TRegistry::SetRootKey(ERegistryRoot ARoot) noexcept {
  CloseKey();
  FRoot = ARoot;
}

bool TRegistry::OpenKey(std::u16string_view APath) {
  std::u16string_view below = APath;
  const TRegistryBase base = BaseFor(below);
  std::u16string path;
  if (!base.IsRoot() && !FPath.empty()) path.append(FPath).append(below.empty() ? u"" : u"\\");
  path += below;
  TRegistryKey key;
  if (FRegistry.OpenKey(base, below, FAccess, key) != WinError::Success) return false;
  FKey = std::move(key);
  FPath = std::move(path);
  return true;
}

void TRegistry::CloseKey() noexcept {
  FKey.Close();
  FPath.clear();
}

bool TRegistry::KeyExists(std::u16string_view APath) {
  const TRegistryBase base = BaseFor(APath);
  TRegistryKey key;
  return FRegistry.OpenKey(base, APath, FAccess, key) == WinError::Success;
}

std::vector<std::u16string> TRegistry::GetKeyNames() {
  return FKey ? EnumKeyNames(FRegistry, FKey) : std::vector<std::u16string>{};
}

std::vector<std::u16string> TRegistry::GetValueNames() {
  std::vector<std::u16string> names;
  if (!FKey) return names;
  TRegistryKeyInfo info;
  const bool known = FRegistry.QueryKeyInfo(FKey, info) == WinError::Success;
  TRegistryValue value;
  WalkIndices(known ? std::optional(info.ValueCount) : std::nullopt, [&](std::uint32_t AIndex) {
    const TWinError error = FRegistry.EnumValue(FKey, AIndex, value);
    if (error == WinError::Success) names.push_back(value.Name);
    return error;
  });
  return names;
}

bool TRegistry::GetValue(std::u16string_view AName, TRegistryValue& AValue) {
  return FKey && FRegistry.QueryValue(FKey, AName, AValue) == WinError::Success;
}

std::u16string_view TRegistryEx::RegistryRootToStr(ERegistryRoot ARoot) noexcept {
  for (const auto& [root, name] : RootNames) {
    if (root == ARoot) return name;
  }
  return {};
}

std::u16string TRegistryEx::RegistryKeyToStr(std::uint32_t AFlag, ERegistryRoot ARoot, std::u16string_view AKey,
                                             std::u16string_view AName) {
  const std::u16string_view root = RegistryRootToStr(ARoot);
  std::u16string result;
  result.reserve(Mark64.size() + root.size() + AKey.size() + AName.size() + 2);
  result.append((AFlag & KeyAccess::Wow64_64Key) != 0 ? Mark64 : Mark32).append(root);
  if (!AKey.starts_with(u'\\')) result += u'\\';
  result += AKey;
  if (!result.ends_with(u'\\')) result += u'\\';
  return result.append(AName);
}

std::u16string TRegistryEx::RegistryKeyToStr(std::u16string_view AName) const {
  return RegistryKeyToStr(Access(), RootKey(), CurrentPath(), AName);
}

void TRegistryEx::ExtractKeyParams(std::u16string_view AValue, std::uint32_t& AFlag, ERegistryRoot& ARoot,
                                   std::u16string& AKey, std::u16string& AName) {
  AFlag = 0;
  if (StartsText(Mark32, AValue)) {
    AFlag = KeyAccess::Wow64_32Key;
  } else if (StartsText(Mark64, AValue)) {
    AFlag = KeyAccess::Wow64_64Key;
  }
  if (AFlag != 0) AValue.remove_prefix(Mark64.size());
  std::u16string_view path = ExtractFilePath(AValue);
  std::u16string name(ExtractFileName(AValue));
  for (const auto& [root, rootName] : RootNames) {
    if (StartsText(rootName, path)) {
      ARoot = root;
      path.remove_prefix(rootName.size());
      break;
    }
  }
  AKey = std::u16string(path);  // made before the assignment: AValue may lie in either output
  AName = std::move(name);
}

bool TRegistryEx::IsMultiString(std::u16string_view AValueName) {
  TRegistryValue value;
  return GetValue(AValueName, value) && value.Type == RegType::MultiString;
}

std::u16string TRegistryEx::ReadMultiString(std::u16string_view AName, std::u16string_view ADelim) {
  std::u16string result;
  TRegistryValue value;
  if (!GetValue(AName, value) || value.Data.empty()) return result;
  switch (value.Type) {
    case RegType::String:
    case RegType::ExpandString:
    case RegType::Dword:
    case RegType::Binary:
      throw ERegistryException(Format(u"Invalid data type for '%s'", {AName}));
    default:
      break;
  }
  for (const std::u16string& text : MultiStringFromBytes(value.Data)) result.append(text).append(ADelim);
  return result;
}

std::vector<std::u16string> MultiStringFromBytes(std::span<const std::byte> AData) {
  std::vector<std::u16string> result;
  for (;;) {
    std::u16string text = TextFromBytes(AData);
    if (text.empty()) return result;
    AData = AData.subspan(std::min(AData.size(), 2 * (text.size() + 1)));
    result.push_back(std::move(text));
  }
}

}  // namespace varcolin
