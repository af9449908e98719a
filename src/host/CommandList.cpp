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

std::string FormatPrograms(const std::vector<TProductRecord>& APrograms) {
  TTable table({{"Name", 16, 100, 4, false},
                {"Version", 8, 24, 2, false},
                {"Publisher", 10, 50, 1, false},
                {"Installed", 10, 10, 0, false},
                {"Size", 9, 9, 3, true}});
  for (const TProductRecord& program : APrograms) {
    table.AddRow({program.DisplayName, program.Version, program.Publisher, FormatDate(program.InstallDate),
                  FormatSize(program.EstimatedSize)});
  }
  return table.Format(OutputWidth());
}

std::string FormatUpdates(const std::vector<TProductRecord>& AUpdates) {
  TTable table({{"Name", 16, 100, 4, false},
                {"Type", 8, 15, 3, false},
                {"Belongs to", 10, 50, 2, false},
                {"Version", 8, 24, 1, false},
                {"Installed", 10, 10, 0, false}});
  for (const TProductRecord& update : AUpdates) {
    table.AddRow({update.DisplayName, std::string(ReleaseTypeText(update.ReleaseType)), update.ParentDisplayName,
                  update.Version, FormatDate(update.InstallDate)});
  }
  return table.Format(OutputWidth());
}

}  // namespace

int RunList(const TListOptions& AOptions) {
  const bool ofUpdates = AOptions.Kind == EProductKind::Update;
  std::vector<TProductRecord> products;
  {
    const TLibrary library(AOptions.Machine);
    TDiscovery discovery(library.Manager());
    discovery.WaitUntilLoaded();
    products = discovery.Read(AOptions.Kind);
  }
  if (!AOptions.Filter.empty()) FilterProducts(products, AOptions.Filter);
  if (AOptions.Sort) SortProducts(products, *AOptions.Sort);
  if (AOptions.Json) {
    WriteOutput(FormatJson(AOptions.Kind, products));
  } else if (!products.empty()) {
    WriteOutput(ofUpdates ? FormatUpdates(products) : FormatPrograms(products));
  } else {
    const std::string kind = ofUpdates ? "update" : "program";
    WriteError(AOptions.Filter.empty() ? "varcolin: no " + kind + "s are installed\n"
                                       : "varcolin: no " + kind + " matches \"" + Printable(AOptions.Filter) + "\"\n");
  }
  return ExitOk;
}

}  // namespace varcolin::host
