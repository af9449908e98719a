// The file that the debug log writes to.
#pragma once

#include <map>
#include <mutex>
#include <string>
#include <string_view>
#include <thread>

#include "platform/Machine.h"

namespace varcolin {

/// Appends lines to "debug.log" in the suite's log folder (data folder, maker, product, "Logs"): UTF-8, lines ended by
/// CR LF, each at once, so that the trace is complete up to a crash. Every process of the suite appends to the same
/// file; a file that has grown past 16 MiB is begun anew by the process that opens it next. A line is
///
///     2012.08.09 14:05:59.123 [1234] > TRegAccess.RemoveKey
///
/// with the local time, the id of the process, two blanks for each nesting of the calling thread, and the text, in
/// which line ends and other control characters are blanks. A file that cannot be written is passed over. Any thread.
class TDebugLogFile {
 public:
  explicit TDebugLogFile(const TMachine& AMachine);

  void Write(std::u16string_view AText);
  /// Deepen and lessen the nesting of the calling thread.
  void Nest();
  void Unnest();

 private:
  void Open();
  void Append(std::u16string_view ALine);

  TMachine FMachine;
  std::mutex FLock;
  std::u16string FPath;  ///< empty until the first line
  std::map<std::thread::id, std::size_t> FNesting;
};

}  // namespace varcolin
