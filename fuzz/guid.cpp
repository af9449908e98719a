// GUIDs as text.
#include "fuzz/Fuzz.h"
#include "services/uDLLGlobals.h"
#include "support/uGuid.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* AData, std::size_t ASize) {
  using namespace varcolin;
  const std::u16string text = fuzz::AsText(fuzz::AsInput(AData, ASize));
  if (const auto guid = ParseGuid(text)) {
    const std::u16string written = GuidToText(*guid);
    fuzz::Check(SameText(written, text), "a GUID is written as it was read");
    fuzz::Check(ParseGuid(written) == guid, "what is written is the same GUID");
  }
  const std::u16string decoded = DLLGlobals::TryDecodeGUIDFromStr(text);
  if (!decoded.empty()) {
    const std::u16string_view braced = std::u16string_view(decoded).substr(0, decoded.find(u'_'));
    fuzz::Check(ParseGuid(braced).has_value(), "a decoded text begins with a GUID in brace form");
    fuzz::Check(DLLGlobals::TryDecodeGUIDFromStr(decoded) == decoded, "a decoded text stays as it is");
  }
  return 0;
}
