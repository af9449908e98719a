// The document that programs read.
#pragma once

#include <span>
#include <string>

#include "host/ProgramRecord.h"

namespace varcolin::host {

/// One document {"programs":[…]} in UTF-8, a line for each program and a final line end. Characters that would steer a
/// terminal are escaped, so that the document may also be shown on one. Any thread.
[[nodiscard]] std::string FormatJson(std::span<const TProgramRecord> APrograms);

}  // namespace varcolin::host
