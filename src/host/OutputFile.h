// Files that a command writes on the computer that the host runs on.
#pragma once

#include <string>
#include <string_view>

namespace varcolin::host {

/// Writes a file (UTF-8 path), in place of one that is there: that one keeps its content until the new one is whole,
/// so a write that fails leaves no half file. What is no file (a pipe, a device) is written to as it is. Throws
/// EHostError.
void WriteOutputFile(const std::string& APath, std::string_view AContent);

}  // namespace varcolin::host
