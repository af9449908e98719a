#include "siblings/PathText.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <vector>

#include "support/uText.h"

namespace varcolin {
namespace {

constexpr char16_t Delimiter = u'\\';

/// Length of the part that ".." does not leave: "\\server\share\", "C:\", "C:" or "\".
std::size_t RootLength(std::u16string_view APath) {
  if (APath.starts_with(u"\\\\")) {
    std::size_t end = APath.find(Delimiter, 2);
    if (end == std::u16string_view::npos) return APath.size();
    end = APath.find(Delimiter, APath.find_first_not_of(Delimiter, end));
    return end == std::u16string_view::npos ? APath.size() : end + 1;
  }
  const std::size_t drive = APath.size() >= 2 && APath[1] == u':' ? 2 : 0;
  return drive < APath.size() && APath[drive] == Delimiter ? drive + 1 : drive;
}

/// ARoot with each run of backslashes, but for a leading pair, as one.
std::u16string SingleDelimiters(std::u16string_view ARoot) {
  std::u16string result;
  for (const char16_t unit : ARoot) {
    if (unit == Delimiter && result.size() > 1 && result.back() == Delimiter) continue;
    result += unit;
  }
  return result;
}

std::optional<std::int32_t> ParseNumber(std::u16string_view AText) noexcept {
  AText = Trim(AText);
  const bool isNegative = AText.starts_with(u'-');
  if (isNegative || AText.starts_with(u'+')) AText.remove_prefix(1);
  if (AText.empty()) return std::nullopt;
  std::int64_t number = 0;
  for (const char16_t unit : AText) {
    if (unit < u'0' || unit > u'9') return std::nullopt;
    number = number * 10 + (unit - u'0');
    if (number > std::int64_t{std::numeric_limits<std::int32_t>::max()} + (isNegative ? 1 : 0)) return std::nullopt;
  }
  return static_cast<std::int32_t>(isNegative ? -number : number);
}

}  // namespace

std::u16string NormalizePathText(std::u16string_view APath) {
  std::u16string path(Trim(APath));
  if (path.starts_with(u"\\\\?\\") || path.starts_with(u"\\\\.\\")) return path;
  std::replace(path.begin(), path.end(), u'/', Delimiter);

  const std::size_t rootLength = RootLength(path);
  std::u16string result = SingleDelimiters(std::u16string_view(path).substr(0, rootLength));
  const std::u16string_view rest = std::u16string_view(path).substr(rootLength);
  const bool isRooted = result.ends_with(Delimiter) || result.starts_with(u"\\\\");
  std::vector<std::u16string_view> components;
  for (const std::u16string_view component : Split(rest, Delimiter)) {
    if (component.empty() || component == u".") continue;
    if (component != u"..") {
      components.push_back(component);
    } else if (!components.empty() && components.back() != u"..") {
      components.pop_back();
    } else if (!isRooted) {
      components.push_back(component);
    }
  }
  for (std::size_t i = 0; i < components.size(); ++i) {
    if (i > 0) result += Delimiter;
    result += components[i];
  }
  if (components.empty() && !rest.empty() && result.empty()) result += u'.';
  if (rest.ends_with(Delimiter) && !result.ends_with(Delimiter)) result += Delimiter;
  return result;
}

TIconLocation SplitIconLocation(std::u16string_view AText) noexcept {
  const std::u16string_view whole = Trim(AText);
  std::u16string_view text = whole;
  if (text.size() > 2 && text.front() == u'"' && text.find(u'"', 1) == text.size() - 1) {
    text = text.substr(1, text.size() - 2);
  }
  const std::size_t comma = text.rfind(u',');
  if (comma == std::u16string_view::npos) return {whole, 0};
  const std::optional<std::int32_t> index = ParseNumber(text.substr(comma + 1));
  return index ? TIconLocation{Trim(text.substr(0, comma)), *index} : TIconLocation{whole, 0};
}

}  // namespace varcolin
