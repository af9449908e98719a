#include "services/uDLLStringsLocalized.h"

#include <array>
#include <cstddef>
#include <utility>

#include "support/uText.h"

namespace varcolin {
namespace {

struct TLocalizedString {
  std::u16string_view Key;
  std::u16string_view Default;
};

/// In the order of ELocalizedString.
constexpr TLocalizedString Rows[] = {
    {u"S_SOFTWARE_UPDATE", u"Software Update for Microsoft Windows (%s)"},
    {u"S_UPDATE", u"Update for Microsoft Windows (%s)"},
    {u"S_UPDATE_ROLLUP", u"Update Rollup for Microsoft Windows (%s)"},
    {u"S_SERVICE_PACK", u"Service Pack for Microsoft Windows (%s)"},
    {u"S_CRITICAL_UPDATE", u"Critical Update for Microsoft Windows (%s)"},
    {u"S_SECURITY_UPDATE", u"Security Update for Microsoft Windows (%s)"},
    {u"S_HOTFIX", u"Hotfix for Microsoft Windows (%s)"},
    {u"S_SOFTWARE_PATCH", u"Update for %s"},
    {u"S_BRISMERE_SESSION_NAME", u"Varcolin: Deleting entry for \"%s\""},
};
constexpr std::size_t RowCount = std::size(Rows);
static_assert(RowCount == static_cast<std::size_t>(ELocalizedString::S_BRISMERE_SESSION_NAME) + 1);

std::array<std::u16string, RowCount> Texts;

}  // namespace

void DLLStringsLocalized::Load() {
  for (std::size_t i = 0; i < RowCount; ++i) Texts[i] = Rows[i].Default;
}

void DLLStringsLocalized::Unload() noexcept { Texts = {}; }

void DLLStringsLocalized::SetStrings(IStringList* AStrings) {
  if (AStrings == nullptr) return;
  std::array<bool, RowCount> seen{};  // the first line with a key counts, also with an empty value
  const std::int32_t count = AStrings->GetCount();
  for (std::int32_t index = 0; index < count; ++index) {
    TOleText item;
    AStrings->GetItem(index, item.Receive());
    const std::u16string_view line = item.View();
    const std::size_t equals = line.find(u'=');
    if (equals == std::u16string_view::npos) continue;
    for (std::size_t i = 0; i < RowCount; ++i) {
      if (seen[i] || !SameText(Rows[i].Key, line.substr(0, equals))) continue;
      seen[i] = true;
      if (equals + 1 < line.size()) Texts[i] = line.substr(equals + 1);
    }
  }
}

const std::u16string& DLLStringsLocalized::Text(ELocalizedString AKey) noexcept {
  return Texts[static_cast<std::size_t>(AKey)];
}

}  // namespace varcolin
