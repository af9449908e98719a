// The benchmarks over the machine that they run on:
//   benchmarks [NAME]               measures the figures whose names begin with NAME, or all
//   benchmarks --write-keys COUNT   registers COUNT made-up programs, for the figures to read; for throw-away machines
#include <cstdio>
#include <cstdlib>
#include <exception>
#include <stdexcept>
#include <string_view>

#include "benchmarks/Figures.h"
#include "benchmarks/ListPhase.h"
#include "benchmarks/UninstallKeys.h"
#include "platform/windows/WindowsMachine.h"

namespace varcolin::benchmarks {

namespace {

double DiscoveryTime() {
  constexpr int Rounds = 5;
  constexpr std::size_t Programs = 5'000;
  TWindowsMachine machine;
  const TMachine facilities = machine.Facilities();
  const TBareWalk walk(facilities.Registry);
  const auto list = [&] {
    const TListPhase phase(facilities);
    const double seconds = SecondsOf([&] { phase.Run(); });
    if (phase.ProgramCount() < Programs) throw std::runtime_error("this machine has too few programs");
    return seconds;
  };
  const auto bare = [&] { return SecondsOf([&] { walk.Run(facilities.Registry); }); };
  return RatioOfMedians(Rounds, list, bare);
}

constexpr TFigure Figures[] = {
    {"discovery_time/5000", EUnit::Ratio, 2.0, &DiscoveryTime},
};

}  // namespace

}  // namespace varcolin::benchmarks

int main(int AArgumentCount, char** AArguments) {
  using namespace varcolin;
  const std::string_view first = AArgumentCount > 1 ? AArguments[1] : "";
  const bool writes = first == "--write-keys";
  if (AArgumentCount > (writes ? 3 : 2) || (writes && AArgumentCount != 3)) {
    std::fputs("usage: benchmarks [NAME]\n       benchmarks --write-keys COUNT\n", stderr);
    return 2;
  }
  try {
    if (!writes) return benchmarks::RunFigures(benchmarks::Figures, first);
    TWindowsMachine machine;
    const auto count = static_cast<std::size_t>(std::strtoul(AArguments[2], nullptr, 10));
    benchmarks::WriteUninstallKeys(machine.Facilities().Registry, benchmarks::TUninstallKeys(count));
    return 0;
  } catch (const std::exception& error) {
    std::fprintf(stderr, "benchmarks: %s\n", error.what());
    return 2;
  }
}
