// The library's diagnostic log.
#pragma once

#include <initializer_list>
#include <string>
#include <string_view>

#include "support/uFormat.h"

namespace varcolin {

class IRegistry;
class TKeyCache;
class IWritableFiles;
class ISystemFacts;
class IModules;
class ICom;

/// A process-wide list of time-stamped lines, written to "Varcolin.log" as a whole (UTF-16 with byte-order mark). Class
/// operations only, any thread.
class StatisticsLog {
 public:
  static void Load(IRegistry& ARegistry, IWritableFiles& AFiles, ISystemFacts& ASystem, IModules& AModules, ICom& ACom);
  static void Unload() noexcept;

  /// Empties the list and writes the system header into it.
  static void Reset();
  /// The same; the keys that the header shows are read through AKeys, which keeps them.
  static void Reset(TKeyCache& AKeys);
  /// Appends one line.
  static void Add(std::u16string_view AText);
  static void Add(std::u16string_view AFormat, std::initializer_list<TFormatArg> AArgs);
  /// Appends the error block of the exception that is being handled; an empty line before it with AddErrorLn. Never
  /// raises.
  static void AddError() noexcept;
  static void AddErrorLn() noexcept;
  /// Writes the list to the file; a file that cannot be written is passed over.
  static void Write();
  /// Full path of the file.
  [[nodiscard]] static std::u16string FilePath();
};

}  // namespace varcolin
