// Registry key texts: whatever the text, its parts make a text again, and that has the same parts.
#include "fuzz/Fuzz.h"
#include "registry/uRegistryEx.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* AData, std::size_t ASize) {
  using namespace varcolin;
  struct TParts {
    std::uint32_t Flag = 0;
    ERegistryRoot Root = ERegistryRoot::CurrentUser;
    std::u16string Key;
    std::u16string Name;

    bool operator==(const TParts&) const = default;
  };
  const auto partsOf = [](std::u16string_view AText) {
    TParts parts;
    TRegistryEx::ExtractKeyParams(AText, parts.Flag, parts.Root, parts.Key, parts.Name);
    return parts;
  };
  const std::span<const std::byte> input = fuzz::AsInput(AData, ASize);
  const TParts parts = partsOf(fuzz::AsText(input));
  const std::u16string text = TRegistryEx::RegistryKeyToStr(parts.Flag, parts.Root, parts.Key, parts.Name);
  const TParts again = partsOf(text);
  fuzz::Check(partsOf(TRegistryEx::RegistryKeyToStr(again.Flag, again.Root, again.Key, again.Name)) == again,
              "the parts of a text that was made of parts are those parts");

  std::size_t units = 0;
  for (const std::u16string& line : MultiStringFromBytes(input)) {
    fuzz::Check(!line.empty(), "an empty string ends a multi-string");
    units += line.size();
  }
  fuzz::Check(units <= input.size() / 2, "a multi-string has no more units than its bytes hold");
  return 0;
}
