#include "frame/values/lent_cells.h"

namespace quillmere {

CXlLentCells::CXlLentCells(const CXlCells& cells, std::int32_t firstRow, std::int32_t firstColumn, std::int32_t rows,
                           std::int32_t columns) {
  const XLOPER12* first = &cells.At(firstRow, firstColumn);
  if (rows != 1 && columns != cells.columns) {
    copies_.reserve(static_cast<std::size_t>(rows) * columns);
    for (std::int32_t row = 0; row < rows; ++row)
      for (std::int32_t column = 0; column < columns; ++column)
        copies_.push_back(cells.At(firstRow + row, firstColumn + column));
    first = copies_.data();
  }
  value_.val.array.lparray = const_cast<XLOPER12*>(first);
  value_.val.array.rows = rows;
  value_.val.array.columns = columns;
  value_.xltype = xltypeMulti;
}

}  // namespace quillmere
