#include "services/uRegistryDump.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "registry/uRegistryEx.h"
#include "registry/uRegistryWalk.h"
#include "support/uText.h"

namespace varcolin {
namespace {

/// A key whose subkeys are being dumped.
struct TLevel {
  std::size_t PathLength;  ///< of the key's path within the path of the key that is dumped now
  std::vector<std::u16string> SubKeys;
  std::size_t Next = 0;
};

std::uint32_t NumberFrom(const std::vector<std::byte>& AData) noexcept {
  std::uint32_t number = 0;
  for (std::size_t i = AData.size(); i-- != 0;) number = number << 8 | std::to_integer<std::uint32_t>(AData[i]);
  return number;
}

}  // namespace

void TRegistryDump::Run(ERegistryRoot ARoot, std::u16string_view APath, std::uint32_t AView) {
  std::u16string path(APath);
  std::vector<TLevel> levels;
  for (;;) {
    TRegistryKey key;
    std::vector<std::u16string> subKeys;
    if (FRegistry.OpenKey(ARoot, path, KeyAccess::Read | AView, key) == WinError::Success) {
      TRegistryKeyInfo info;
      const bool known = FRegistry.QueryKeyInfo(key, info) == WinError::Success;
      WriteKey(key, known ? &info : nullptr, TRegistryEx::RegistryKeyToStr(AView, ARoot, path, {}));
      std::u16string name;
      WalkIndices(known ? std::optional(info.SubKeyCount) : std::nullopt, [&](std::uint32_t AIndex) {
        const TWinError error = FRegistry.EnumKey(key, AIndex, name);
        if (error == WinError::Success) subKeys.push_back(name);
        return error;
      });
      key.Close();
    }
    if (!subKeys.empty()) levels.push_back({path.size(), std::move(subKeys)});
    while (!levels.empty() && levels.back().Next == levels.back().SubKeys.size()) levels.pop_back();
    if (levels.empty()) return;
    TLevel& level = levels.back();
    path.resize(level.PathLength);
    path.append(u"\\").append(level.SubKeys[level.Next++]);
  }
}

void TRegistryDump::WriteKey(const TRegistryKey& AKey, const TRegistryKeyInfo* AInfo, std::u16string_view AKeyText) {
  FLine({AKeyText});
  TRegistryValue value;
  WalkIndices(AInfo != nullptr ? std::optional(AInfo->ValueCount) : std::nullopt, [&](std::uint32_t AIndex) {
    const TWinError error = FRegistry.EnumValue(AKey, AIndex, value);
    if (error == WinError::Success) WriteValue(value);
    return error;
  });
  FLine({});
}

void TRegistryDump::WriteValue(const TRegistryValue& AValue) {
  std::u16string_view type;
  std::u16string text;
  switch (AValue.Type) {
    case RegType::String:
    case RegType::ExpandString:
      type = u"REG_SZ";
      text = TextFromBytes(AValue.Data);
      break;
    case RegType::Dword:
      if (AValue.Data.size() == sizeof(std::uint32_t)) {
        type = u"REG_DWORD";
        text = IntToStr(NumberFrom(AValue.Data));
      }
      break;
    case RegType::MultiString:
      type = u"REG_MULTISZ";
      for (const std::u16string& item : MultiStringFromBytes(AValue.Data)) {
        if (!text.empty()) text += u", ";
        text += item;
      }
      break;
    default:
      break;
  }
  FLine({AValue.Name, u" (", type, u") = \"", text, u"\""});
}

}  // namespace varcolin
