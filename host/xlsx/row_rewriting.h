// The rows of a worksheet's XML with the values of a calculation.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "host/output/changed_cells.h"
#include "host/xml/xml_children.h"

namespace qcalc {

/// Rewrites the rows of one sheet from the top. All but the cells that the calculation may have changed stays byte by
/// byte, and of those their styles, their formulas and what else their tags say.
class RowRewriting {
 public:
  /// `results` outlives it. `head` is the sheet's text before its rows: it says how columns are styled.
  RowRewriting(const SheetResults& results, std::string_view head);

  /// Appends the row, with what stands before it. Rows of results before it that the file has not come first.
  void AppendRow(std::string& out, std::string_view gap, std::string_view row);
  /// Appends the rows of results behind the last one.
  void AppendRest(std::string& out);

 private:
  struct StyledColumns {
    std::int32_t first;
    std::int32_t last;
    std::string style;
  };

  void ReadColumnStyles(std::string_view head);
  void AppendRowsBefore(std::string& out, std::int32_t end);
  void BeginRow(std::int32_t row);
  void RewriteRow(std::string& out, const XmlChildren& row);
  void RewriteCell(std::string_view cell, std::int32_t column);
  void AppendFormula(std::string_view formula, const FormulaResult& result);
  void AppendNewCells(std::int32_t end);
  void AppendNewCell(std::int32_t column, const CellView& value);
  std::string_view StyleOf(std::int32_t column) const;
  const FormulaResult* ResultAt(std::int32_t column);

  const SheetResults& results_;
  std::int32_t rowsUsed_ = 0;
  ChangedCells changed_;
  ChangedColumns columns_{{}};
  std::vector<StyledColumns> columnStyles_;  // by first column
  std::size_t nextResult_ = 0;
  std::int32_t row_ = -1;
  std::string prefix_;     // of the names of elements
  std::string rowStyle_;   // of the row's cells that the file has not; empty where it says none
  std::string cells_;      // of the row in work
  bool isAnyNew_ = false;  // of its cells
};

}  // namespace qcalc
