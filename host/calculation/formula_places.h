// The formula cells of all open books, by number.
#pragma once

#include <cstddef>
#include <map>
#include <optional>
#include <vector>

#include "host/workbook/workbooks.h"

namespace qcalc {

/// One formula cell.
struct FormulaPlace {
  Sheet* sheet;
  CellPosition position;
  FormulaCell* cell;

  Area OwnCell() const { return Area::OfCell(position.row, position.column); }
  /// The cells that its result fills.
  SheetArea Filled() const { return {sheet->Id(), cell->spill.value_or(OwnCell())}; }
  bool IsDirty() const { return sheet->IsDirty(position); }
};

/// Numbers from 0: book by book, sheet by sheet, by rows, then columns. Good until a formula comes or goes.
class FormulaPlaces {
 public:
  explicit FormulaPlaces(const Workbooks& workbooks);

  std::size_t Size() const { return places_.size(); }
  const FormulaPlace& At(std::size_t number) const { return places_[number]; }
  /// The formula that fills the cell, from there or by a spill; nothing when none does.
  std::optional<std::size_t> WriterOf(IDSHEET sheet, CellPosition cell) const;

 private:
  struct Stretch {
    const Sheet* sheet;
    std::size_t begin;
    std::size_t end;
  };

  std::vector<FormulaPlace> places_;
  std::map<IDSHEET, Stretch> sheets_;
};

}  // namespace qcalc
