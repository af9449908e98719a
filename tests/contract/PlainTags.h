// A reading of XML that knows nothing of it, to hold the real one against.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace varcolin::testing {

/// The tags of a manifest as plain text, and nothing more: what a reader that knows no XML makes of it.
class TPlainTags {
 public:
  explicit TPlainTags(std::string_view AText) {
    for (std::size_t begin = AText.find('<'); begin != std::string_view::npos; begin = AText.find('<', begin + 1)) {
      FTags.push_back(AText.substr(begin, AText.find('>', begin) - begin + 1));
    }
  }
  /// The first tag with a name behind a position, which moves there; empty when there is none.
  [[nodiscard]] std::string_view Next(std::string_view AName, std::size_t& APosition) const {
    for (; APosition < FTags.size(); ++APosition) {
      if (FTags[APosition].substr(1).starts_with(AName) && FTags[APosition][AName.size() + 1] == ' ') {
        return FTags[APosition];
      }
    }
    return {};
  }
  [[nodiscard]] std::string_view First(std::string_view AName) const {
    std::size_t position = 0;
    return Next(AName, position);
  }
  static std::string Value(std::string_view ATag, const std::string& AName) {
    const std::size_t name = ATag.find(" " + AName + "=");
    if (name == std::string_view::npos) return {};
    const std::size_t begin = name + AName.size() + 2;
    return std::string(ATag.substr(begin + 1, ATag.find(ATag[begin], begin + 1) - begin - 1));
  }
  /// The identities behind packages that stand in an "update".
  [[nodiscard]] std::vector<std::string> ContainedNames() const {
    std::vector<std::string> names;
    for (std::size_t index = 0; index + 2 < FTags.size(); ++index) {
      if (FTags[index].starts_with("<update ") && FTags[index + 1].starts_with("<package ")) {
        names.push_back(Value(FTags[index + 2], "name"));
      }
    }
    return names;
  }

 private:
  std::vector<std::string_view> FTags;
};

}  // namespace varcolin::testing
