// Machines of other kinds than the usual one, which is a 64-bit Windows 7.
#pragma once

#include "platform/simulated/SimulatedMachine.h"

namespace varcolin::testing {

inline TSimulatedFacts FactsOf32BitWindows() {
  TSimulatedFacts facts;
  facts.NativeArchitecture = Architecture::Intel;
  facts.IsWow64 = false;
  return facts;
}

inline TSimulatedFacts FactsOfXP() {
  TSimulatedFacts facts = FactsOf32BitWindows();
  facts.Version.Major = 5;
  facts.Version.Minor = 1;
  facts.Version.Build = 2600;
  return facts;
}

}  // namespace varcolin::testing
