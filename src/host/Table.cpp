#include "host/Table.h"

#include <algorithm>

#include "host/Cells.h"

namespace varcolin::host {

namespace {

constexpr std::size_t GapCells = 2;

}  // namespace

TTable::TTable(std::vector<TColumn> AColumns) : FColumns(std::move(AColumns)) {
  for (const TColumn& column : FColumns) FNatural.push_back(TextCells(column.Title));
}

void TTable::AddRow(std::vector<std::string> ACells) {
  for (std::size_t i = 0; i < ACells.size(); ++i) {
    ACells[i] = FitToCells(ACells[i], FColumns[i].Maximum);
    FNatural[i] = std::max(FNatural[i], TextCells(ACells[i]));
  }
  FRows.push_back(std::move(ACells));
}

// Widths of the columns, 0 for those left out.
std::vector<std::size_t> TTable::Layout(std::size_t AWidth) const {
  std::vector<std::size_t> widths = FNatural;
  if (AWidth == UnlimitedCells) return widths;
  std::vector<std::size_t> shown(FColumns.size());
  for (std::size_t i = 0; i < shown.size(); ++i) shown[i] = i;
  const auto least = [&](std::size_t AIndex) { return std::min(FNatural[AIndex], FColumns[AIndex].Minimum); };
  const auto needed = [&] {
    std::size_t sum = shown.empty() ? 0 : (shown.size() - 1) * GapCells;
    for (const std::size_t index : shown) sum += least(index);
    return sum;
  };
  while (shown.size() > 1 && needed() > AWidth) {
    const auto drop = std::ranges::min_element(shown, {}, [&](std::size_t i) { return FColumns[i].Importance; });
    widths[*drop] = 0;
    shown.erase(drop);
  }
  if (shown.size() == 1) {
    widths[shown.front()] = std::min(FNatural[shown.front()], std::max<std::size_t>(AWidth, 1));
    return widths;
  }
  std::size_t total = (shown.size() - 1) * GapCells;
  for (const std::size_t index : shown) total += FNatural[index];
  // the widest column that can still shrink gives up a cell until the row fits
  while (total > AWidth) {
    const auto slack = [&](std::size_t AIndex) { return widths[AIndex] > least(AIndex) ? widths[AIndex] : 0; };
    --widths[*std::ranges::max_element(shown, {}, slack)];
    --total;
  }
  return widths;
}

void TTable::AppendRow(std::string& AText, const std::vector<std::string>& ACells,
                       const std::vector<std::size_t>& AWidths) const {
  std::size_t pending = 0;  // blanks that are only written when something follows
  bool first = true;
  for (std::size_t i = 0; i < ACells.size(); ++i) {
    if (AWidths[i] == 0) continue;
    if (!first) pending += GapCells;
    first = false;
    const std::string text = FitToCells(ACells[i], AWidths[i]);
    const std::size_t fill = AWidths[i] - TextCells(text);
    if (FColumns[i].AlignRight) pending += fill;
    if (!text.empty()) {
      AText.append(pending, ' ');
      pending = 0;
      AText += text;
    }
    if (!FColumns[i].AlignRight) pending += fill;
  }
  AText += '\n';
}

std::string TTable::Format(std::size_t AWidth) const {
  const std::vector<std::size_t> widths = Layout(AWidth);
  std::string text;
  std::vector<std::string> titles;
  for (const TColumn& column : FColumns) titles.push_back(column.Title);
  AppendRow(text, titles, widths);
  for (const auto& row : FRows) AppendRow(text, row, widths);
  return text;
}

}  // namespace varcolin::host
