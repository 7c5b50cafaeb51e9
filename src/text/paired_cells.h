// Arrays of different shapes that make one result together, cell by cell.
#pragma once

#include <cstdint>

#include "frame/values/xl_oper.h"

namespace quillmere::text {

/// A cell of the result, counted from 0.
struct ResultPlace {
  std::int32_t row;
  std::int32_t column;
};

/// An argument's cells, spread as Excel spreads arrays over those that they meet: a single row or column is repeated.
class PairedCells {
 public:
  explicit PairedCells(const CXlCells& cells) noexcept
      : first_(cells.first),
        rows_(cells.rows),
        columns_(cells.columns),
        rowStep_(cells.rows == 1 ? 0 : cells.columns),
        columnStep_(cells.columns == 1 ? 0 : 1) {}

  /// The cell that stands at a place of the result; null where there is none.
  const XLOPER12* At(const ResultPlace& place) const noexcept {
    if ((place.row >= rows_ && rowStep_ != 0) || (place.column >= columns_ && columnStep_ != 0)) return nullptr;
    return first_ + place.row * rowStep_ + place.column * columnStep_;
  }

  std::int32_t Rows() const noexcept { return rows_; }
  std::int32_t Columns() const noexcept { return columns_; }

 private:
  const XLOPER12* first_;
  std::int32_t rows_;
  std::int32_t columns_;
  std::int64_t rowStep_;
  std::int64_t columnStep_;
};

}  // namespace quillmere::text
