#include "host/Cells.h"
#include "host/Commands.h"
#include "host/Discovery.h"
#include "host/HostError.h"
#include "host/Json.h"
#include "host/Library.h"
#include "host/Table.h"
#include "host/Terminal.h"
#include "host/Text.h"

namespace varcolin::host {

namespace {

std::string FormatTable(const std::vector<TProgramRecord>& APrograms) {
  TTable table({{"Name", 16, 100, 4, false},
                {"Version", 8, 24, 2, false},
                {"Publisher", 10, 50, 1, false},
                {"Installed", 10, 10, 0, false},
                {"Size", 9, 9, 3, true}});
  for (const TProgramRecord& program : APrograms) {
    table.AddRow({program.DisplayName, program.Version, program.Publisher, FormatDate(program.InstallDate),
                  FormatSize(program.EstimatedSize)});
  }
  return table.Format(OutputWidth());
}

}  // namespace

int RunPrograms(const TProgramsOptions& AOptions) {
  std::vector<TProgramRecord> programs;
  {
    const TLibrary library(AOptions.Machine);
    TDiscovery discovery(library.Manager());
    discovery.WaitUntilLoaded();
    programs = discovery.Read();
  }
  if (!AOptions.Filter.empty()) FilterPrograms(programs, AOptions.Filter);
  if (AOptions.Sort) SortPrograms(programs, *AOptions.Sort);
  if (AOptions.Json) {
    WriteOutput(FormatJson(programs));
  } else if (!programs.empty()) {
    WriteOutput(FormatTable(programs));
  } else {
    WriteError(AOptions.Filter.empty() ? "varcolin: no programs are installed\n"
                                       : "varcolin: no program matches \"" + Printable(AOptions.Filter) + "\"\n");
  }
  return ExitOk;
}

}  // namespace varcolin::host
