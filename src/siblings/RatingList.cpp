#include "siblings/RatingList.h"

#include <algorithm>
#include <optional>

#include "siblings/PathText.h"
#include "support/uPaths.h"

namespace varcolin {
namespace {

/// Takes the first word off a text.
std::u16string_view TakeWord(std::u16string_view& AText) {
  AText = Trim(AText);
  const auto end = std::find_if(AText.begin(), AText.end(), [](char16_t AUnit) { return AUnit <= u' '; });
  const std::u16string_view word = AText.substr(0, static_cast<std::size_t>(end - AText.begin()));
  AText = Trim(AText.substr(word.size()));
  return word;
}

std::optional<TSoftwareRating> ParseRating(std::u16string_view AWord) {
  if (SameText(AWord, u"trustworthy")) return TSoftwareRating::stTrustWorthy;
  if (SameText(AWord, u"unknown")) return TSoftwareRating::stUnknown;
  if (SameText(AWord, u"risky")) return TSoftwareRating::stRisky;
  return std::nullopt;
}

}  // namespace

TRatingList::TRatingList(std::string_view AText) {
  if (AText.starts_with("\xEF\xBB\xBF")) AText.remove_prefix(3);
  const std::u16string text = FromUtf8(AText);
  for (const std::u16string_view line : Split(text, u'\n')) AddLine(line);
}

void TRatingList::AddLine(std::u16string_view ALine) {
  const std::optional<TSoftwareRating> rating = ParseRating(TakeWord(ALine));
  const std::u16string_view kind = TakeWord(ALine);
  if (!rating || ALine.empty()) return;
  if (SameText(kind, u"publisher")) {
    FPublishers.emplace(ALine, *rating);
  } else if (SameText(kind, u"file")) {
    FFiles.emplace(NormalizePathText(ALine), *rating);
  }
}

TSoftwareRating TRatingList::PublisherRating(std::u16string_view AName) const {
  const auto found = FPublishers.find(Trim(AName));
  return found == FPublishers.end() ? TSoftwareRating::stUnknown : found->second;
}

TSoftwareRating TRatingList::FileRating(std::u16string_view APath) const {
  const std::u16string path = NormalizePathText(APath);
  auto found = FFiles.find(path);
  if (found == FFiles.end()) found = FFiles.find(ExtractFileName(path));
  return found == FFiles.end() ? TSoftwareRating::stUnknown : found->second;
}

}  // namespace varcolin
