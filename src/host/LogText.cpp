#include "host/LogText.h"

#include "host/Cells.h"
#include "host/Text.h"

namespace varcolin::host {

std::string DecodeLog(std::string_view AContent) {
  std::string text;
  if (AContent.starts_with("\xFF\xFE")) {
    std::u16string units;
    units.reserve(AContent.size() / 2);
    for (std::size_t i = 2; i + 1 < AContent.size(); i += 2) {
      const auto low = static_cast<unsigned char>(AContent[i]);
      const auto high = static_cast<unsigned char>(AContent[i + 1]);
      units += static_cast<char16_t>(low | static_cast<unsigned>(high) << 8U);
    }
    text = ToUtf8(units);
  } else {
    text = AContent;
  }
  std::string result;
  result.reserve(text.size());
  std::string_view rest = text;
  while (!rest.empty()) {
    const std::size_t end = rest.find('\n');
    std::string_view line = rest.substr(0, end);
    rest.remove_prefix(end == std::string_view::npos ? rest.size() : end + 1);
    if (line.ends_with('\r')) line.remove_suffix(1);
    result += Printable(line) + '\n';
  }
  return result;
}

}  // namespace varcolin::host
