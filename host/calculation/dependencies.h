// Which formula cells read which, and which are dirty: to be calculated before their value counts.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <utility>
#include <vector>

#include "host/calculation/evaluation_context.h"

namespace qcalc {

/// An area of the sheet with that id.
struct SheetArea {
  IDSHEET sheet;
  Area area;
};

/// One formula cell, as it was when the dependencies were worked out.
struct FormulaPlace {
  Sheet* sheet;
  CellPosition position;
  FormulaCell* cell;
  std::vector<SheetArea> reads;         ///< what stands in the formula
  std::vector<std::size_t> dependents;  ///< formulas that read this one's cells, spilled ones too
  std::vector<std::size_t> precedents;  ///< formulas whose cells this one reads

  Area OwnCell() const { return Area::OfCell(position.row, position.column); }
};

/// The formula cells of all books by number, from 0. Good until a formula comes or goes; the cells that results spilled
/// into are those of the beginning.
class Dependencies {
 public:
  /// Both outlive this. Names and add-in are taken from `context`.
  Dependencies(Workbooks& workbooks, const EvaluationContext& context);

  std::size_t Size() const { return formulas_.size(); }
  const FormulaPlace& At(std::size_t number) const { return formulas_[number]; }

  /// Makes dirty what reads cells that were changed, or is blocked by them, and all that depends on it; `withVolatile`
  /// also what calls a volatile function.
  void SpreadDirt(bool withVolatile);

  /// Makes dirty what reads, or is blocked by, cells that the formula `writer` fills only now or no longer: it was
  /// calculated too early.
  void SoilReaders(const SheetArea& where, std::size_t writer);

  /// Calls `visitor(number)` for each formula cell whose own or spilled cells lie in the area.
  template <typename Visitor>
  void VisitFormulasIn(const SheetArea& where, Visitor&& visitor) const {
    const auto found = sheets_.find(where.sheet);
    if (found == sheets_.end()) return;
    const auto& columns = found->second.rowsByColumn;
    for (auto column = columns.lower_bound(where.area.firstColumn);
         column != columns.end() && column->first <= where.area.lastColumn; ++column) {
      const auto& rows = column->second;
      for (auto row = std::lower_bound(rows.begin(), rows.end(), std::pair(where.area.firstRow, std::size_t{0}));
           row != rows.end() && row->first <= where.area.lastRow; ++row)
        visitor(row->second);
    }
    for (const std::size_t i : found->second.spilled) {
      const FormulaPlace& place = formulas_[i];
      // A result that spilled at first may have been taken back since.
      if (place.cell->spill && place.cell->spill->Intersects(where.area) &&
          !where.area.Contains(place.position.row, place.position.column))
        visitor(i);
    }
  }

 private:
  // The formula cells of one sheet, to be found by area.
  struct SheetIndex {
    std::map<std::int32_t, std::vector<std::pair<std::int32_t, std::size_t>>> rowsByColumn;  // rows ascending
    std::vector<std::size_t> spilled;
  };

  void Collect();
  void Connect();
  std::vector<SheetArea> ReadsOf(const Formula& formula, const Sheet& sheet) const;
  bool IsVolatile(const FormulaPlace& place) const;
  void Soil(std::size_t first);

  Workbooks& workbooks_;
  const EvaluationContext& context_;
  std::vector<FormulaPlace> formulas_;
  std::map<IDSHEET, SheetIndex> sheets_;
};

/// Formulas that use this name (without case) are dirty: its value changed.
void NoteNameChange(Workbooks& workbooks, XStringView name);

}  // namespace qcalc
