#include "host/Cells.h"
#include "host/Commands.h"
#include "host/Discovery.h"
#include "host/HostError.h"
#include "host/Json.h"
#include "host/Library.h"
#include "host/OutputFile.h"
#include "host/Page.h"
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

/// The icons of all products, each drawn once.
TPageIcons ReadIcons(const TLibrary& ALibrary, EProductKind AKind, const std::vector<TProductRecord>& AProducts) {
  TPageIcons icons;
  for (const TProductRecord& product : AProducts) {
    if (icons.contains(product.IconIndex)) continue;
    // a picture that cannot be drawn is missing in its row
    if (auto icon = ALibrary.LargeIcon(AKind, product.IconIndex)) icons.emplace(product.IconIndex, std::move(*icon));
  }
  return icons;
}

void WritePage(const TListOptions& AOptions, const std::vector<TProductRecord>& AProducts, const TPageIcons& AIcons) {
  WriteOutputFile(*AOptions.Html, FormatPage({AOptions.Kind, AOptions.Filter, AOptions.Sort}, AProducts, AIcons));
  const std::string kind = AOptions.Kind == EProductKind::Update ? "update" : "program";
  WriteError("varcolin: " + std::to_string(AProducts.size()) + ' ' + kind + (AProducts.size() == 1 ? " is" : "s are") +
             " in " + Printable(*AOptions.Html) + '\n');
}

}  // namespace

int RunList(const TListOptions& AOptions) {
  const bool ofUpdates = AOptions.Kind == EProductKind::Update;
  std::vector<TProductRecord> products;
  TPageIcons icons;
  {
    const TLibrary library(AOptions.Machine);
    TDiscovery discovery(library.Manager());
    discovery.WaitUntilLoaded();
    products = discovery.Read(AOptions.Kind);
    if (!AOptions.Filter.empty()) FilterProducts(products, AOptions.Filter);
    if (AOptions.Html) icons = ReadIcons(library, AOptions.Kind, products);
  }
  if (AOptions.Sort) SortProducts(products, *AOptions.Sort);
  if (AOptions.Html) WritePage(AOptions, products, icons);
  if (AOptions.Json) {
    WriteOutput(FormatJson(AOptions.Kind, products));
  } else if (AOptions.Html) {
    return ExitOk;
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
