// A table that fits a number of cells.
#pragma once

#include <cstddef>
#include <string>
#include <vector>

namespace varcolin::host {

struct TColumn {
  std::string Title;
  std::size_t Minimum = 1;    ///< cells below which the column is left out rather than narrowed
  std::size_t Maximum = 100;  ///< cells that no row gets more of, so that one outlandish text does not spread them all
  unsigned Importance = 0;    ///< the least important column is left out first; the most important one never is
  bool AlignRight = false;
};

/// Collects rows and writes them with columns as wide as their content, narrowed where the whole does not fit.
/// One thread at a time.
class TTable {
 public:
  explicit TTable(std::vector<TColumn> AColumns);
  /// Adds a row of as many cells as there are columns. Texts are UTF-8 and may contain anything.
  void AddRow(std::vector<std::string> ACells);
  /// The table with its heading, no line wider than AWidth cells (at least 1).
  [[nodiscard]] std::string Format(std::size_t AWidth) const;

 private:
  [[nodiscard]] std::vector<std::size_t> Layout(std::size_t AWidth) const;
  void AppendRow(std::string& AText, const std::vector<std::string>& ACells,
                 const std::vector<std::size_t>& AWidths) const;

  std::vector<TColumn> FColumns;
  std::vector<std::vector<std::string>> FRows;
  std::vector<std::size_t> FNatural;  // cells of the widest text of each column
};

}  // namespace varcolin::host
