#include <algorithm>

#include "host/Cells.h"
#include "host/Commands.h"
#include "host/Discovery.h"
#include "host/HostError.h"
#include "host/Json.h"
#include "host/Library.h"
#include "host/Terminal.h"

namespace varcolin::host {

namespace {

void AppendProperty(std::string& AText, std::string_view ALabel, std::string_view AValue, std::size_t AWidth) {
  constexpr std::size_t labelCells = 16;
  constexpr std::size_t leastValueCells = 16;
  if (AValue.empty()) return;
  std::string lead = std::string(ALabel) + ':';
  lead.resize(labelCells, ' ');
  const bool limited = AWidth != UnlimitedCells;
  const std::size_t width = limited ? std::max(AWidth, labelCells + leastValueCells) - labelCells : AWidth;
  for (const std::string& line : WrapToCells(AValue, width)) {
    AText += lead + line + '\n';
    lead.assign(labelCells, ' ');
  }
}

std::string FormatProgram(const TProgramRecord& AProgram) {
  const std::size_t width = OutputWidth();
  std::string text;
  for (const TRecordField& field : RecordFields()) {
    AppendProperty(text, field.Label, DescribeField(AProgram, field), width);
  }
  std::string actions;
  for (const std::string_view name : ActionNames(AProgram.Actions)) {
    if (!actions.empty()) actions += ", ";
    actions += name;
  }
  AppendProperty(text, "Actions", actions, width);
  return text;
}

/// The sentence about a text that names several programs, with the candidates below it.
std::string DescribeCandidates(const std::string& AText, const std::vector<TProgramRecord>& ACandidates) {
  constexpr std::size_t maximumShown = 50;
  std::string text = '"' + Printable(AText) + "\" names " + std::to_string(ACandidates.size()) +
                     " programs; say which by its whole name or its GUID:";
  for (std::size_t i = 0; i < std::min(ACandidates.size(), maximumShown); ++i) {
    const TProgramRecord& candidate = ACandidates[i];
    text += "\n  " + FitToCells(candidate.DisplayName, 100);
    if (!candidate.Version.empty()) text += "  " + FitToCells(candidate.Version, 30);
    if (!candidate.Guid.empty()) text += "  " + FitToCells(candidate.Guid, 60);
  }
  if (ACandidates.size() > maximumShown) {
    text += "\n  and " + std::to_string(ACandidates.size() - maximumShown) + " more";
  }
  return text;
}

}  // namespace

int RunShow(const TShowOptions& AOptions) {
  std::vector<TProgramRecord> found;
  {
    const TLibrary library(AOptions.Machine);
    TDiscovery discovery(library.Manager());
    discovery.WaitUntilLoaded();
    found = FindPrograms(discovery.Read(), AOptions.NameOrGuid);
  }
  if (found.empty()) throw EHostError("no program is called \"" + Printable(AOptions.NameOrGuid) + '"');
  if (found.size() > 1) throw EHostError(DescribeCandidates(AOptions.NameOrGuid, found));
  WriteOutput(AOptions.Json ? FormatJson(found) : FormatProgram(found.front()));
  return ExitOk;
}

}  // namespace varcolin::host
