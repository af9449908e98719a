// The guard of every interface method.
#pragma once

#include "services/uStatisticsLog.h"
#include "support/uExceptions.h"

namespace varcolin {

/// Runs the body of an interface method. An exception does not cross the boundary: the silent abort ends the body
/// quietly, any other is written to the log; what the body has stored until then stays.
template <class TBody>
void GuardInterface(TBody ABody) noexcept {
  try {
    ABody();
  } catch (const EAbort&) {
  } catch (const std::exception&) {
    StatisticsLog::AddError();
  }
}

}  // namespace varcolin
