// A row or column of cells, or a stretch of one, viewed where it stands.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/values/xl_oper.h"

namespace quillmere {

/// `count` cells, `stride` cells apart. It owns nothing.
struct CellLine {
  const XLOPER12* first;
  std::int32_t count;
  std::ptrdiff_t stride;

  const XLOPER12& At(std::int32_t place) const noexcept { return first[place * stride]; }
};

/// A row of a table's cells, 0-based.
inline CellLine RowLine(const CXlCells& cells, std::int32_t row) noexcept { return {cells.Row(row), cells.columns, 1}; }

/// A column of a table's cells, 0-based.
inline CellLine ColumnLine(const CXlCells& cells, std::int32_t column) noexcept {
  return {cells.first + column, cells.rows, cells.columns};
}

}  // namespace quillmere
