// The text of the library's log.
#pragma once

#include <string>
#include <string_view>

namespace varcolin::host {

/// The log's text as a person reads it: UTF-16 little-endian with a byte-order mark (or else UTF-8) as UTF-8, line ends
/// as "\n", everything that would steer a terminal replaced. Any thread.
[[nodiscard]] std::string DecodeLog(std::string_view AContent);

}  // namespace varcolin::host
