#include "siblings/CommandLine.h"

#include <algorithm>
#include <array>
#include <utility>

#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::size_t ProgramLimit = 1024;
constexpr std::array<std::u16string_view, 5> ProgramExtensions{u".exe", u".com", u".bat", u".cmd", u".scr"};

bool IsBlank(char16_t AUnit) { return AUnit <= u' '; }

std::u16string_view TrimLeft(std::u16string_view AText) {
  const auto first = std::find_if_not(AText.begin(), AText.end(), IsBlank);
  return AText.substr(static_cast<std::size_t>(first - AText.begin()));
}

std::u16string_view TrimRight(std::u16string_view AText) {
  while (!AText.empty() && IsBlank(AText.back())) AText.remove_suffix(1);
  return AText;
}

bool EndsInProgram(std::u16string_view AText) {
  return std::any_of(ProgramExtensions.begin(), ProgramExtensions.end(), [&](std::u16string_view AExtension) {
    return AText.size() > AExtension.size() && EndsText(AExtension, AText);
  });
}

/// How much of an unquoted command may belong to the program's name.
std::size_t NameLimit(std::u16string_view AText) {
  const std::size_t limit = std::min(AText.size(), ProgramLimit);
  for (std::size_t i = 0; i < limit; ++i) {
    const char16_t unit = AText[i];
    const bool isArgument = unit == u'/' && i > 0 && IsBlank(AText[i - 1]);
    const bool isForbidden = std::u16string_view(u"\"<>|*?").find(unit) != std::u16string_view::npos;
    if (isArgument || isForbidden || (unit == u':' && i != 1)) return i;
  }
  return limit;
}

std::u16string_view UnquotedProgram(std::u16string_view AText, const TIsProgramFile& AIsFile) {
  const std::size_t limit = NameLimit(AText);
  std::u16string_view byExtension;
  bool slashSeen = false;
  bool isInBlanks = false;
  for (std::size_t end = 1; end <= limit; ++end) {
    const bool atEnd = end == AText.size();
    const char16_t unit = atEnd ? u' ' : AText[end];
    const bool isFirstSlash = unit == u'/' && !slashSeen;
    slashSeen = slashSeen || unit == u'/';
    const bool wasInBlanks = std::exchange(isInBlanks, IsBlank(unit));
    if (!(isInBlanks || unit == u',' || unit == u'"' || isFirstSlash) || wasInBlanks) continue;
    const std::u16string_view prefix = AText.substr(0, end);
    if (AIsFile(prefix)) return prefix;
    if (byExtension.empty() && EndsInProgram(prefix)) byExtension = prefix;
  }
  if (!byExtension.empty()) return byExtension;
  const auto stop =
      std::find_if(AText.begin(), AText.end(), [](char16_t AUnit) { return IsBlank(AUnit) || AUnit == u'"'; });
  return AText.substr(0, static_cast<std::size_t>(stop - AText.begin()));
}

/// Whether the text between quotes holds more than a name: no name has a slash behind a blank.
bool EnclosesSwitches(std::u16string_view AText) {
  for (std::size_t i = 1; i < AText.size(); ++i) {
    if (AText[i] == u'/' && IsBlank(AText[i - 1])) return true;
  }
  return false;
}

}  // namespace

std::u16string_view ProgramPart(std::u16string_view ACommand, const TIsProgramFile& AIsFile) {
  std::u16string_view rest = TrimLeft(ACommand);
  std::size_t quotes = 0;
  while (quotes < rest.size() && rest[quotes] == u'"') ++quotes;
  if (quotes == 0) return UnquotedProgram(rest, AIsFile);
  // an empty pair of quotes that nothing follows directly is an empty program, not a doubled opening quote
  if (quotes % 2 == 0 && (quotes == rest.size() || IsBlank(rest[quotes]))) return {};
  rest = TrimLeft(rest.substr(quotes));
  const std::size_t close = rest.find(u'"');
  if (close == std::u16string_view::npos) return UnquotedProgram(rest, AIsFile);
  const std::u16string_view enclosed = TrimRight(rest.substr(0, close));
  return EnclosesSwitches(enclosed) ? UnquotedProgram(enclosed, AIsFile) : enclosed;
}

}  // namespace varcolin
