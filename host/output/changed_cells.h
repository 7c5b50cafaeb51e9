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
  explicit ChangedColumns(std::span<const ColumnRange> ranges) : ranges_(ranges) {}

  bool IsEmpty() const { return ranges_.empty(); }
  /// `take(column)` for each changed column before `end` that has not been passed.
  template <typename Take>
  void TakeBefore(std::int32_t end, Take&& take) {
    while (!ranges_.empty() && next_ < end) {
      next_ = std::max(next_, ranges_[0].first);
      for (; next_ < end && next_ <= ranges_[0].last; ++next_) take(next_);
      if (next_ > ranges_[0].last) ranges_ = ranges_.subspan(1);
    }
  }
  /// Whether `column`, none before which has been asked for, is changed. It is passed then, and all before it.
  bool Take(std::int32_t column) {
    while (!ranges_.empty() && ranges_[0].last < column) ranges_ = ranges_.subspan(1);
    next_ = column + 1;
    return !ranges_.empty() && ranges_[0].first <= column;
  }

 private:
  std::span<const ColumnRange> ranges_;
  std::int32_t next_ = 0;
};

}  // namespace qcalc
