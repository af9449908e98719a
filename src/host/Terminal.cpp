#include "host/Terminal.h"

#include <charconv>
#include <cstdlib>
#include <iostream>

#include "host/Text.h"

namespace varcolin::host {

EAnswer AskYesNo(std::string_view AQuestion) {
  WriteError(AQuestion);
  std::string line;
  if (!std::getline(std::cin, line)) {
    WriteError("\n");
    return EAnswer::None;
  }
  if (line.ends_with('\r')) line.pop_back();
  const std::u32string answer = FoldCase(line);
  return answer == U"y" || answer == U"yes" ? EAnswer::Yes : EAnswer::No;
}

std::size_t ColumnsOfEnvironment() noexcept {
  const char* text = std::getenv("COLUMNS");
  if (text == nullptr) return 0;
  const std::string_view digits = text;
  std::size_t columns = 0;
  const auto parsed = std::from_chars(digits.data(), digits.data() + digits.size(), columns);
  const bool whole = parsed.ec == std::errc() && parsed.ptr == digits.data() + digits.size();
  return whole && columns <= 100'000 ? columns : 0;
}

}  // namespace varcolin::host
