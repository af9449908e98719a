// A simulated machine with the suite's sibling libraries, and the library's services loaded on it.
#pragma once

#include <gtest/gtest.h>

#include <string>
#include <string_view>
#include <vector>

#include "platform/simulated/SimulatedMachine.h"
#include "services/uAxDebug.h"
#include "services/uDLLGlobals.h"
#include "services/uDLLStringsLocalized.h"
#include "services/uFileUtils.h"
#include "services/uLibraryList.h"
#include "services/uStatisticsLog.h"
#include "services/uSuiteSetup.h"
#include "siblings/Siblings.h"
#include "support/uAxWinVersionInfo.h"
#include "support/uInterfacedObject.h"
#include "support/uWindowsExt.h"

namespace varcolin::testing {

/// Prepare the machine, then Load. Ends with nothing left open on the machine.
class TServices : public ::testing::Test {
 protected:
  explicit TServices(TSimulatedFacts AFacts = {}) : Machine(AFacts) {
    TSiblingLibraries::Load(Machine.Facilities());
    for (const TSiblingExport& sibling : SiblingExports()) {
      Machine.Modules().RegisterModule(sibling.Name, sibling.GetInstance);
    }
  }
  ~TServices() override {
    Unload();
    EXPECT_EQ(Machine.OpenHandleCount(), 0U);
    TSiblingLibraries::Unload();
  }

  /// Loads everything below the file utilities, over the machine or over AFacilities.
  void LoadSuiteServices(const TMachine& AFacilities) {
    WinVersionInfo::Load(AFacilities.System, AFacilities.Shell, AFacilities.Modules);
    WindowsExt::Load(AFacilities.Processes, AFacilities.Starts, AFacilities.Windows, AFacilities.System,
                     AFacilities.Sync);
    DLLStringsLocalized::Load();
    SiblingLoader::Load(AFacilities.Modules, AFacilities.Messages, AFacilities.Processes);
    DLLGlobals::Load(AFacilities.System, AFacilities.Modules);
    AxDebug::Load(AFacilities.Registry, AFacilities.Files, AFacilities.Modules, AFacilities.Processes);
    LoadSuite(AFacilities.System, AFacilities.Modules, AFacilities.Sync, AFacilities.Messages);
  }
  void Load(const TMachine& AFacilities) {
    LoadSuiteServices(AFacilities);
    FileUtils::Load(AFacilities.Files, AFacilities.System, AFacilities.Registry);
    StatisticsLog::Load(AFacilities.Registry, AFacilities.Files, AFacilities.System, AFacilities.Modules,
                        AFacilities.Com);
  }
  void Load() { Load(Machine.Facilities()); }
  void Unload() {
    StatisticsLog::Unload();
    FileUtils::Unload();
    AxDebug::Unload();
    DLLGlobals::Unload();
    SiblingLoader::Unload();
    DLLStringsLocalized::Unload();
    WindowsExt::Unload();
    WinVersionInfo::Unload();
  }

  TSimulatedMachine Machine;
};

/// A host's list of strings.
class TTestStringList final : public TInterfacedObject<IStringList> {
 public:
  explicit TTestStringList(std::vector<std::u16string> AItems) : FItems(std::move(AItems)) {}
  std::int32_t VARCOLIN_CALL GetCount() override { return static_cast<std::int32_t>(FItems.size()); }
  void VARCOLIN_CALL GetItem(std::int32_t AIndex, TOleString* AResult) override {
    *AResult = AllocOleString(FItems.at(static_cast<std::size_t>(AIndex)));
  }

 private:
  std::vector<std::u16string> FItems;
};

}  // namespace varcolin::testing
