#include "services/uRegistryDump.h"

#include <memory>
#include <string>
#include <vector>

#include "registry/uRegistryEx.h"
#include "support/uText.h"

namespace varcolin {
namespace {

/// A key whose subkeys are being dumped.
struct TLevel {
  std::size_t PathLength;  ///< of the key's path within the path of the key that is dumped now
  std::shared_ptr<const TReadKey> Key;
  std::size_t Next = 0;
};

std::uint32_t NumberFrom(std::span<const std::byte> AData) noexcept {
  std::uint32_t number = 0;
  for (std::size_t i = AData.size(); i-- != 0;) number = number << 8 | std::to_integer<std::uint32_t>(AData[i]);
  return number;
}

}  // namespace

void TRegistryDump::Run(ERegistryRoot ARoot, std::u16string_view APath, std::uint32_t AView) {
  std::u16string path(APath);
  std::vector<TLevel> levels;
  for (;;) {
    if (auto key = FKeys.Read(ARoot, path, AView)) {
      FLine({TRegistryEx::RegistryKeyToStr(AView, ARoot, path, {})});
      key->Values->ForEachValue([this](std::u16string_view AName, std::uint32_t AType,
                                       std::span<const std::byte> AData) { WriteValue(AName, AType, AData); });
      FLine({});
      if (!key->SubKeys.empty()) levels.push_back({path.size(), std::move(key)});
    }
    while (!levels.empty() && levels.back().Next == levels.back().Key->SubKeys.size()) levels.pop_back();
    if (levels.empty()) return;
    TLevel& level = levels.back();
    path.resize(level.PathLength);
    path.append(u"\\").append(level.Key->SubKeys[level.Next++]);
  }
}

void TRegistryDump::WriteValue(std::u16string_view AName, std::uint32_t AType, std::span<const std::byte> AData) {
  std::u16string_view type;
  std::u16string text;
  switch (AType) {
    case RegType::String:
    case RegType::ExpandString:
      type = u"REG_SZ";
      text = TextFromBytes(AData);
      break;
    case RegType::Dword:
      if (AData.size() == sizeof(std::uint32_t)) {
        type = u"REG_DWORD";
        text = IntToStr(NumberFrom(AData));
      }
      break;
    case RegType::MultiString:
      type = u"REG_MULTISZ";
      for (const std::u16string& item : MultiStringFromBytes(AData)) {
        if (!text.empty()) text += u", ";
        text += item;
      }
      break;
    default:
      break;
  }
  FLine({AName, u" (", type, u") = \"", text, u"\""});
}

}  // namespace varcolin
