// What the benchmark programs measure, and how they report it.
#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <span>
#include <stdexcept>
#include <string_view>

namespace varcolin::benchmarks {

enum class EUnit { Ratio, Bytes, Microseconds };

/// Raised by a figure that cannot be measured on this computer; the message says why.
class TSkipped : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// One measured figure and the bound that it must not exceed.
struct TFigure {
  std::string_view Name;  ///< with its size: "discovery_calls/500"
  EUnit Unit;
  std::optional<double> Bound;  ///< none: the figure is only reported
  double (*Measure)();
};

/// Measures the figures whose names begin with ABeginning and prints a line for each: "NAME/SIZE ratio=1.12
/// bound=1.30". A figure that is skipped has a line on the error stream instead. The program's exit code: 0, or 1 when
/// a bound is broken. Other exceptions of a figure pass.
[[nodiscard]] int RunFigures(std::span<const TFigure> AFigures, std::string_view ABeginning);

/// Runs both in turn ARounds times, each once before that to warm up, and gives the median of the first one's results
/// divided by the median of the second one's.
[[nodiscard]] double RatioOfMedians(int ARounds, const std::function<double()>& AFirst,
                                    const std::function<double()>& ASecond);

/// The same for two ways to do a job that has AParts parts, whose results are added up: both do a part in turn, not the
/// same at a time, so that a slow moment of the computer meets both and none finds in the caches what the other left.
/// The median of the ratios of ARounds rounds.
[[nodiscard]] double RatioByTurns(int ARounds, std::size_t AParts, const std::function<double(std::size_t)>& AFirst,
                                  const std::function<double(std::size_t)>& ASecond);

/// The time that AAction takes, in seconds.
[[nodiscard]] double SecondsOf(const std::function<void()>& AAction);

}  // namespace varcolin::benchmarks
