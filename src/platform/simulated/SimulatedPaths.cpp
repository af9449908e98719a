#include "platform/simulated/SimulatedPaths.h"

#include <algorithm>
#include <iterator>

#include "support/uText.h"

namespace varcolin {
namespace {

constexpr std::size_t MaxPlainPath = 260;   // MAX_PATH, the terminator included
constexpr std::size_t MaxLongPath = 32767;  // with the prefix
constexpr std::size_t MaxComponent = 255;
constexpr TWinError BadNetworkPath = 53;  // ERROR_BAD_NETPATH
constexpr std::u16string_view LongPrefix = u"\\\\?\\";

bool IsDelimiter(char16_t AUnit) noexcept { return AUnit == u'\\' || AUnit == u'/'; }

bool IsDriveLetter(char16_t AUnit) noexcept {
  return (AUnit >= u'A' && AUnit <= u'Z') || (AUnit >= u'a' && AUnit <= u'z');
}

bool HasDrive(std::u16string_view APath) noexcept {
  return APath.size() >= 2 && IsDriveLetter(APath[0]) && APath[1] == u':';
}

bool IsWildcard(char16_t AUnit) noexcept { return AUnit == u'*' || AUnit == u'?'; }

bool HasOnlyNameUnits(std::u16string_view AName, bool AWildcards) noexcept {
  return std::ranges::all_of(AName, [&](char16_t AUnit) {
    if (AUnit < 0x20) return false;
    if (IsWildcard(AUnit)) return AWildcards;
    return std::u16string_view(u"<>\"|:\\/").find(AUnit) == std::u16string_view::npos;
  });
}

// Splits at delimiters; the prefix form knows the backslash only and keeps every name as it stands.
void SplitParts(std::u16string_view APath, bool ALiteral, TResolvedPath& AResult) {
  const auto isDelimiter = [ALiteral](char16_t AUnit) { return ALiteral ? AUnit == u'\\' : IsDelimiter(AUnit); };
  AResult.TrailingBackslash = APath.empty() || isDelimiter(APath.back());
  std::size_t at = 0;
  while (at < APath.size()) {
    std::size_t end = at;
    while (end < APath.size() && !isDelimiter(APath[end])) ++end;
    std::u16string_view part = APath.substr(at, end - at);
    const bool isLast = end >= APath.size();
    at = end + 1;
    if (!ALiteral) {
      if (part.empty() || part == u".") continue;
      if (part == u"..") {
        if (!AResult.Parts.empty()) AResult.Parts.pop_back();
        continue;
      }
      if (isLast && !part.ends_with(u"*.")) {
        while (!part.empty() && (part.back() == u'.' || part.back() == u' ')) part.remove_suffix(1);
        if (part.empty()) continue;
      } else if (!isLast && part.size() > 1 && part.back() == u'.' && part[part.size() - 2] != u'.') {
        part.remove_suffix(1);
      }
    } else if (part.empty() && isLast) {
      continue;
    }
    AResult.Parts.emplace_back(part);
  }
}

std::size_t LengthOf(const TResolvedPath& APath) noexcept {
  std::size_t length = 3;
  for (const std::u16string& part : APath.Parts) length += part.size() + 1;
  return length;
}

}  // namespace

std::u16string TResolvedPath::Text() const {
  std::u16string text{Drive, u':'};
  for (const std::u16string& part : Parts) {
    text += u'\\';
    text += part;
  }
  if (Parts.empty()) text += u'\\';
  return text;
}

bool IsFileName(std::u16string_view AName) noexcept {
  return !AName.empty() && AName.size() <= MaxComponent && HasOnlyNameUnits(AName, false) && AName.back() != u'.' &&
         AName.back() != u' ';
}

TWinError ResolvePath(std::u16string_view APath, std::u16string_view ACurrentFolder, bool AWildcards,
                      TResolvedPath& AResult) {
  if (APath.find(u'\0') != std::u16string_view::npos) return WinError::InvalidName;
  if (APath.empty() || APath.size() > MaxLongPath) return WinError::PathNotFound;
  TResolvedPath path;
  const bool literal = APath.starts_with(LongPrefix);
  if (literal) {
    APath.remove_prefix(LongPrefix.size());
    if (StartsText(u"UNC\\", APath)) return BadNetworkPath;
    if (!HasDrive(APath) || APath.size() < 3 || APath[2] != u'\\') return WinError::PathNotFound;
    path.Drive = UpperChar(APath[0]);
    SplitParts(APath.substr(3), true, path);
  } else if (APath.size() >= 2 && IsDelimiter(APath[0]) && IsDelimiter(APath[1])) {
    const bool isDevice = APath.size() >= 4 && (APath[2] == u'.' || APath[2] == u'?') && IsDelimiter(APath[3]);
    return isDevice ? WinError::FileNotFound : BadNetworkPath;
  } else {
    path.Drive = UpperChar(ACurrentFolder[0]);
    if (HasDrive(APath)) {
      path.Drive = UpperChar(APath[0]);
      APath.remove_prefix(2);
    }
    const bool isRooted = !APath.empty() && IsDelimiter(APath[0]);
    if (!isRooted && path.Drive == UpperChar(ACurrentFolder[0])) SplitParts(ACurrentFolder.substr(3), false, path);
    if (isRooted) APath.remove_prefix(1);
    const std::size_t inherited = path.Parts.size();
    SplitParts(APath, false, path);
    // "C:" and "C:." name the current folder itself
    if (!isRooted && APath.empty()) path.TrailingBackslash = inherited == 0;
    if (LengthOf(path) > MaxPlainPath) return WinError::PathNotFound;
  }
  for (std::size_t i = 0; i < path.Parts.size(); ++i) {
    const std::u16string& part = path.Parts[i];
    const bool wildcards = AWildcards && i + 1 == path.Parts.size() && !path.TrailingBackslash;
    if (part.empty() || part.size() > MaxComponent || !HasOnlyNameUnits(part, wildcards)) return WinError::InvalidName;
  }
  AResult = std::move(path);
  return WinError::Success;
}

bool MatchesPattern(std::u16string_view APattern, std::u16string_view AName) {
  if (APattern == u"*.*" || APattern == u"*") return true;
  if (APattern.ends_with(u"*.")) {
    // the one way to ask for names without an extension
    const bool hasDot = AName.find(u'.') != std::u16string_view::npos && AName != u"." && AName != u"..";
    return !hasDot && MatchesPattern(APattern.substr(0, APattern.size() - 1), AName);
  }
  // what nearly every caller asks for: names that end with something
  if (APattern.starts_with(u'*') && !APattern.ends_with(u'.') && std::ranges::none_of(APattern.substr(1), IsWildcard)) {
    return EndsText(APattern.substr(1), AName);
  }
  // states[i]: the first i units of the pattern may have taken all of the name read so far
  std::vector<bool> states(APattern.size() + 1), next;
  const auto isDotBeforeWildcard = [&](std::size_t AAt) {
    return APattern[AAt] == u'.' && AAt + 1 < APattern.size() && IsWildcard(APattern[AAt + 1]);
  };
  // what may match nothing: a star anywhere; a question mark before a dot or at the end; at the end of the name also a
  // dot that a wildcard follows
  const auto close = [&](std::vector<bool>& AStates, bool AAtEnd, bool AAtDot) {
    for (std::size_t i = 0; i < APattern.size(); ++i) {
      if (!AStates[i]) continue;
      if (APattern[i] == u'*' || (APattern[i] == u'?' && (AAtEnd || AAtDot)) || (AAtEnd && isDotBeforeWildcard(i))) {
        AStates[i + 1] = true;
      }
    }
  };
  states[0] = true;
  for (const char16_t unit : AName) {
    close(states, false, unit == u'.');
    next.assign(APattern.size() + 1, false);
    for (std::size_t i = 0; i < APattern.size(); ++i) {
      if (!states[i]) continue;
      if (APattern[i] == u'*') {
        next[i] = true;
      } else if (APattern[i] == u'?' || UpperChar(APattern[i]) == UpperChar(unit)) {
        next[i + 1] = true;
      }
    }
    states.swap(next);
  }
  close(states, true, false);
  return states[APattern.size()];
}

TRedirector::TRedirector(std::u16string_view AWindowsFolder, bool AHasSysnative) : FHasSysnative(AHasSysnative) {
  if (ResolvePath(AWindowsFolder, u"C:\\", false, FWindows) != WinError::Success) FWindows.Parts = {u"Windows"};
}

bool TRedirector::IsException(const TResolvedPath& APath, std::size_t AFrom) const {
  static constexpr std::u16string_view Exceptions[] = {u"catroot",  u"catroot2", u"driverstore",
                                                       u"logfiles", u"spool",    u"drivers\\etc"};
  if (AFrom >= APath.Parts.size()) return false;
  std::u16string rest = APath.Parts[AFrom];
  if (SameText(rest, u"drivers") && AFrom + 1 < APath.Parts.size()) rest += u"\\" + APath.Parts[AFrom + 1];
  return std::ranges::any_of(Exceptions, [&](std::u16string_view AText) { return SameText(AText, rest); });
}

void TRedirector::Redirect(TResolvedPath& APath) const {
  const std::size_t depth = FWindows.Parts.size();
  if (APath.Drive != FWindows.Drive || APath.Parts.size() <= depth) return;
  if (!std::equal(FWindows.Parts.begin(), FWindows.Parts.end(), APath.Parts.begin(), TTextEqual{})) return;
  std::u16string& first = APath.Parts[depth];
  if (SameText(first, u"System32")) {
    if (!IsException(APath, depth + 1)) first = u"SysWOW64";
  } else if (FHasSysnative && SameText(first, u"Sysnative")) {
    first = u"System32";
  } else if (SameText(first, u"regedit.exe") && APath.Parts.size() == depth + 1) {
    APath.Parts.insert(APath.Parts.begin() + static_cast<std::ptrdiff_t>(depth), u"SysWOW64");
  }
}

}  // namespace varcolin
