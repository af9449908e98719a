// The commands of the host. Each returns the exit code, or throws EHostError or EClosedPipe.
#pragma once

#include <optional>
#include <string>

#include "host/Selection.h"

namespace varcolin::host {

/// What all commands share: UTF-8 path of the machine image to read, if one is named.
using TMachineImage = std::optional<std::string>;

struct TProgramsOptions {
  TMachineImage Machine;
  bool Json = false;
  std::string Filter;
  std::optional<ESortOrder> Sort;  ///< none: the library's own order
};

struct TShowOptions {
  TMachineImage Machine;
  bool Json = false;
  std::string NameOrGuid;
};

/// Lists the programs.
int RunPrograms(const TProgramsOptions& AOptions);
/// Shows all that is known of one program.
int RunShow(const TShowOptions& AOptions);
/// Prints what appears, changes and vanishes until the user interrupts.
int RunWatch(const TMachineImage& AMachine);
/// Prints where the library's log is, and its text.
int RunLog(const TMachineImage& AMachine);

}  // namespace varcolin::host
