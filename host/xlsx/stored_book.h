// What a workbook file holds beside the values of its cells.
#pragma once

#include <cstddef>
#include <deque>
#include <optional>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/workbook/workbooks.h"
#include "host/xlsx/date_cells.h"

namespace qcalc {

/// Why a workbook is not read: one sentence that names the part, or the sheet and cell, where there is one.
class BookRefused : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A formula as it stands in the file; its last value stands in the sheet's cells.
struct StoredFormula {
  CellPosition position;
  FormulaForm form = FormulaForm::kSingle;
  Area fills;        ///< for kArray the cells that it was entered into, for kSpilling those that it fills now
  std::string text;  ///< UTF-8, without "=", prefixes such as `_xlfn.` as they are
  /// The place, among the sheet's formulas, of the one that this is a copy of: its own text is empty then, and the
  /// other's relative references move as the cell does.
  std::optional<std::size_t> master;
};

struct StoredSheet {
  Sheet* sheet = nullptr;
  std::string part;                    ///< the entry of the file that it is in
  std::deque<StoredFormula> formulas;  ///< row by row
  DateCells dates;
};

/// A defined name; those that Excel makes for itself (`_xlnm.Print_Area`) are not among them.
struct StoredName {
  XString name;
  std::optional<std::size_t> sheet;  ///< the place of the sheet that it belongs to; the whole book without one
  std::string text;                  ///< a formula, as StoredFormula has it
};

struct StoredTable {
  XString name;
  Sheet* sheet = nullptr;
  Area area;  ///< with headers and totals
  int headerRows = 1;
  int totalsRows = 0;
  std::vector<XString> columns;  ///< as many as the area has
};

struct StoredBook {
  std::vector<StoredSheet> sheets;  ///< the worksheets, hidden ones too, in the book's order
  std::vector<StoredName> names;
  std::vector<StoredTable> tables;
  bool uses1904 = false;  ///< day 0 of its dates is 1 January 1904
  /// What was not understood and is left as it was: a sentence each, with sheet and cell.
  std::vector<std::string> remarks;
};

}  // namespace qcalc
