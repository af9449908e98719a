// The document that programs read.
#pragma once

#include <span>
#include <string>

#include "host/LinkRecord.h"
#include "host/ProductRecord.h"

namespace varcolin::host {

/// One document {"programs":[…]} or {"updates":[…]} in UTF-8, a line for each product and a final line end. Characters
/// that would steer a terminal are escaped, so that the document may also be shown on one. Any thread.
[[nodiscard]] std::string FormatJson(EProductKind AKind, std::span<const TProductRecord> AProducts);

/// One document in the same manner: what the link stands for, and "sections", each with a name and its fields. An
/// unknown date is null.
[[nodiscard]] std::string FormatLinkJson(const TLinkRecord& ALink);

}  // namespace varcolin::host
