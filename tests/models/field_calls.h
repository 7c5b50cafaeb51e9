// Calls whose arguments are cells of one field, written out or referred to where they stand in a sheet.
#pragma once

#include <functional>
#include <span>
#include <vector>

#include "host/values/value_order.h"
#include "tests/models/caller.h"
#include "tests/models/draws.h"

namespace qcalc::models {

/// Cells, none perhaps. Places count from 0.
struct Grid {
  std::int32_t rows = 0;
  std::int32_t columns = 0;
  std::vector<CellView> cells;  ///< row by row

  /// Each cell as `cell(row, column)` has it.
  template <typename Cell>
  static Grid Of(std::int32_t rows, std::int32_t columns, Cell&& cell) {
    Grid grid{rows, columns, {}};
    for (std::int32_t row = 0; row < rows; ++row)
      for (std::int32_t column = 0; column < columns; ++column) grid.cells.push_back(cell(row, column));
    return grid;
  }
  const CellView& At(std::int32_t row, std::int32_t column) const {
    return cells[static_cast<std::size_t>(row) * static_cast<std::size_t>(columns) + static_cast<std::size_t>(column)];
  }
  /// Rows as columns.
  Grid Turned() const {
    return Of(columns, rows, [&](std::int32_t row, std::int32_t column) { return At(column, row); });
  }
  std::span<const CellView> Row(std::int32_t row) const { return {&At(row, 0), static_cast<std::size_t>(columns)}; }
  /// An array; a single cell is a plain value.
  Value Result() const;
};

struct FieldCall {
  XStringView function;
  std::vector<Value> operands;  ///< those that are left out are missing values
  CallingPlace place;
  ArrayPtr field;
  Reference where;  ///< the field stands

  /// What an operand holds: one cell for a plain value, none for a missing one or a reference of several areas. More
  /// than 100,000 rows end with the rows that the sheet uses.
  Grid CellsOf(const Value& operand) const;
  Grid Cells(std::size_t operand) const { return CellsOf(operands[operand]); }
  /// An operand's first cell, as a whole number, TRUE being 1; what it stands for when it is left out.
  CellView Cell(std::size_t operand, const CellView& leftOut) const;
  std::int32_t Number(std::size_t operand, std::int32_t leftOut) const;
};

/// What a call must give. Where rounding is left to the add-in, `slack` says how far each number may be off; without it
/// the tolerance of the test holds.
struct Expected {
  Expected(Value expected) : value(std::move(expected)) {}
  Expected(const Grid& cells, Grid off) : value(cells.Result()), slack(std::move(off)) {}
  Value value;
  Grid slack;

  bool Agrees(const Value& actual, const Tolerance& tolerance) const;
};

/// Draws a call's field and puts it in a sheet; then operands that are cells of it. Areas count from its first cell.
class FieldDraws : protected Draws {
 protected:
  FieldDraws(std::uint64_t number, std::span<const CellView> values);
  /// Puts another field in the place of the one that was drawn.
  void PutField(ArrayPtr field);
  /// Within the field, of that size or of any.
  Area DrawArea(std::int32_t rows = 0, std::int32_t columns = 0);
  Value ReferTo(const Area& area) const;
  /// As an array or a reference; one cell as a plain value or a reference.
  Value DrawCells(const Area& area);
  /// The same; a reference reaches down to the sheet's end now and then, where the last used row is the field's.
  Value DrawTallCells(const Area& area);
  /// So often several calling cells.
  void DrawPlace(int percent);

  FieldCall call_;
};

/// Makes one random call after the other and holds what comes against what the model says. References are compared as
/// such.
void TryFieldCalls(const std::function<FieldCall(std::uint64_t number)>& draw,
                   const std::function<Expected(const FieldCall& call)>& model, const Tolerance& tolerance = {});

}  // namespace qcalc::models
