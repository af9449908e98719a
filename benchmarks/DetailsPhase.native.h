// The library's reading of programs' details.
#pragma once

#include <cstddef>

namespace varcolin::benchmarks {

/// Lists a number of programs on a simulated machine and gathers twice as many shortcuts, each with an executable of
/// its own: a third of the programs has a shortcut of its name, the others find nothing by it. The seconds that reading
/// the details takes from there on, for each program.
[[nodiscard]] double DetailsSeconds(std::size_t APrograms);

}  // namespace varcolin::benchmarks
