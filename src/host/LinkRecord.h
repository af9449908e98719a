// A shell link file as the host shows it. Texts are UTF-8 and may contain anything. Any thread.
#pragma once

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

#include "intf/intf_ShellLink.h"

namespace varcolin::host {

/// A local date; 0 when unknown.
struct TLinkDate {
  TDateTime Value = 0;
};

/// A field of a section; the name is the library's own, in CamelCase words.
struct TLinkField {
  std::string Name;
  std::variant<std::string, std::int64_t, TLinkDate> Value;
};

struct TLinkSection {
  std::string Name;
  std::vector<TLinkField> Fields;
};

struct TLinkRecord {
  std::string PathName;
  std::string Arguments;
  std::string Description;
  std::string WorkingDirectory;
  std::string IconLocation;
  std::int32_t IconIndex = 0;
  std::uint32_t ShowCmd = 0;
  std::uint32_t HotKey = 0;
  std::vector<TLinkSection> Sections;
};

/// Reads all that a link says.
[[nodiscard]] TLinkRecord ReadLinkRecord(IShellLinkFile& ALink);

/// A link as people read it, no line wider than AWidth cells where words allow that.
[[nodiscard]] std::string FormatLink(const TLinkRecord& ALink, std::size_t AWidth);

/// A CamelCase name in words for people ("Link target ID list"), and in the form of JSON's names ("linkFlags").
[[nodiscard]] std::string NameForPeople(const std::string& AName);
[[nodiscard]] std::string NameForJson(const std::string& AName);

}  // namespace varcolin::host
