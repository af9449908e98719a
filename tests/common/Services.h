// A simulated machine with the library's services loaded on it.
#pragma once

#include <gtest/gtest.h>

#include <memory>

#include "common/Facts.h"
#include "library/NativeRoot.h"
#include "services/uAxDebug.h"
#include "services/uDLLGlobals.h"
#include "services/uDLLStringsLocalized.h"
#include "services/uFileUtils.h"
#include "services/uLibraryList.h"
#include "services/uStatisticsLog.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uWindowsExt.h"

namespace varcolin::testing {

/// Prepare the machine, then Load. Ends with nothing left open on the machine.
class TServices : public ::testing::Test {
 protected:
  explicit TServices(const TSimulatedFacts& AFacts = {}) : FInstalled(AFacts) {}
  ~TServices() override {
    Unload();
    EXPECT_EQ(Machine.OpenHandleCount(), 0U);
  }

  void Load(const TMachine& AFacilities) { FModules = std::make_unique<TLibraryModules>(AFacilities); }
  void Load() { Load(Machine.Facilities()); }
  void Unload() { FModules.reset(); }

 private:
  TInstalledMachine FInstalled;
  std::unique_ptr<TLibraryModules> FModules;

 protected:
  TSimulatedMachine& Machine = FInstalled.Machine();
};

}  // namespace varcolin::testing
