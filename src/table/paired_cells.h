// Arrays of different shapes that make one result together, cell by cell.
#pragma once

#include <cstdint>

#include "frame/values/xl_oper.h"

namespace quillmere {

/// A cell of the result, counted from 0.
struct ResultPlace {
  std::int32_t row;
  std::int32_t column;
};

/// What an argument has for each of its cells, row by row, spread as Excel spreads arrays over those that they meet: a
/// single row or column is repeated. A view.
template <class Cell>
class Paired {
 public:
  Paired(const Cell* first, std::int32_t rows, std::int32_t columns) noexcept
      : first_(first),
        rows_(rows),
        columns_(columns),
        rowStep_(rows == 1 ? 0 : columns),
        columnStep_(columns == 1 ? 0 : 1) {}

  /// What stands at a place of the result; null where there is nothing.
  const Cell* At(const ResultPlace& place) const noexcept {
    if ((place.row >= rows_ && rowStep_ != 0) || (place.column >= columns_ && columnStep_ != 0)) return nullptr;
    return first_ + place.row * rowStep_ + place.column * columnStep_;
  }

  std::int32_t Rows() const noexcept { return rows_; }
  std::int32_t Columns() const noexcept { return columns_; }

 private:
  const Cell* first_;
  std::int32_t rows_;
  std::int32_t columns_;
  std::int64_t rowStep_;
  std::int64_t columnStep_;
};

/// An argument's cells themselves.
class PairedCells : public Paired<XLOPER12> {
 public:
  explicit PairedCells(const CXlCells& cells) noexcept : Paired(cells.first, cells.rows, cells.columns) {}
};

}  // namespace quillmere
