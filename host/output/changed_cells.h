// Which cells of a file a calculation wrote to.
#pragma once

#include <algorithm>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>
#include <vector>

#include "host/workbook/sheet.h"

namespace qcalc {

/// What became of one formula.
struct FormulaResult {
  CellPosition position;
  bool isCalculated = false;  ///< what could not be calculated stays as the file has it
  Area filledBefore;          ///< the cells that it filled when the file was read, its own included
  Area fillsNow;
};

/// A sheet after its calculation. The values are the sheet's own.
struct SheetResults {
  const Sheet* sheet = nullptr;
  std::vector<FormulaResult> formulas;  ///< in order of their positions
};

/// Columns from `first` to `last`, zero-based.
struct ColumnRange {
  std::int32_t first;
  std::int32_t last;
};

/// The cells whose values a calculation may have changed, row by row from the top: those of calculated formulas and all
/// that their results filled or fill.
class ChangedCells {
 public:
  explicit ChangedCells(const SheetResults& results);

  /// The first row from `row` on that has any; nothing when none has. Rows are asked for in ascending order, here and
  /// below.
  std::optional<std::int32_t> NextRow(std::int32_t row);
  /// Those of the row, in ascending order, no two of which touch. Good until the next call.
  std::span<const ColumnRange> OfRow(std::int32_t row);

 private:
  void MoveTo(std::int32_t row);
  void Activate(const Area& area);

  std::vector<Area> areas_;  // by first row
  std::size_t next_ = 0;     // the first that is not active yet
  std::vector<Area> active_;
  std::vector<ColumnRange> columns_;
  std::int32_t firstEnd_ = std::numeric_limits<std::int32_t>::max();  // the least last row of those that are active
};

/// Goes through the cells of a row, from the left, with the ranges that OfRow gave of it.
class ChangedColumns {
 public:
  explicit ChangedColumns(std::span<const ColumnRange> ranges) : ranges_(ranges) {
    if (!ranges_.empty()) next_ = ranges_[0].first;
  }

  /// Takes the changed columns before `column`: `take(column)` for each.
  template <typename Take>
  void TakeBefore(std::int32_t column, Take&& take) {
    while (next_ < column) {
      const std::int32_t taken = next_;
      Advance();
      take(taken);
    }
  }
  /// Whether `column` is changed, which is then taken. Those before it have been.
  bool Take(std::int32_t column) {
    if (next_ != column) return false;
    Advance();
    return true;
  }

 private:
  void Advance() {
    if (next_++ < ranges_[0].last) return;
    ranges_ = ranges_.subspan(1);
    next_ = ranges_.empty() ? kNone : ranges_[0].first;
  }

  static constexpr std::int32_t kNone = std::numeric_limits<std::int32_t>::max();
  std::span<const ColumnRange> ranges_;
  std::int32_t next_ = kNone;
};

}  // namespace qcalc
