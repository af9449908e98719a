#include "host/Cells.h"
#include "host/Commands.h"
#include "host/Discovery.h"
#include "host/HostError.h"
#include "host/Json.h"
#include "host/Library.h"
#include "host/Terminal.h"

namespace varcolin::host {

namespace {

constexpr std::size_t LabelCells = 16;

std::string FormatProduct(const TProductRecord& AProduct) {
  const std::size_t width = OutputWidth();
  std::string text;
  for (const TRecordField& field : RecordFields(AProduct.Kind)) {
    AppendProperty(text, field.Label, DescribeField(AProduct, field), LabelCells, width);
  }
  std::string actions;
  for (const std::string_view name : ActionNames(AProduct.Actions)) {
    if (!actions.empty()) actions += ", ";
    actions += name;
  }
  AppendProperty(text, "Actions", actions, LabelCells, width);
  return text;
}

}  // namespace

int RunShow(const TShowOptions& AOptions) {
  TProductRecord product;
  {
    const TLibrary library(AOptions.Machine);
    TDiscovery discovery(library.Manager());
    discovery.WaitUntilLoaded();
    product = ChooseProduct(discovery.ReadAll(), AOptions.NameOrGuid);
  }
  WriteOutput(AOptions.Json ? FormatJson(product.Kind, std::span(&product, 1)) : FormatProduct(product));
  return ExitOk;
}

}  // namespace varcolin::host
