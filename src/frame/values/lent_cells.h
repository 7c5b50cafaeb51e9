// Cells of an array lent to a callback as its argument.
#pragma once

#include <cstdint>
#include <vector>

#include "frame/values/xl_oper.h"

namespace quillmere {

/// A rectangle of an array's cells in the form of an array argument (MATCH, SUM, COUNTA and the like), for as long as
/// the cells live. It is lent where it stands when its cells lie side by side: whole rows, or a part of one row. Else
/// the cells are set side by side first, their texts staying where they are.
class CXlLentCells {
 public:
  /// The rectangle has at least one row and column, counted from 0, and lies within the cells.
  CXlLentCells(const CXlCells& cells, std::int32_t firstRow, std::int32_t firstColumn, std::int32_t rows,
               std::int32_t columns);
  CXlLentCells(const CXlLentCells&) = delete;
  CXlLentCells& operator=(const CXlLentCells&) = delete;

  /// In the form of a callback's argument, which no callback but xlFree writes to.
  XLOPER12* ForCallback() const noexcept { return const_cast<XLOPER12*>(&value_); }

 private:
  std::vector<XLOPER12> copies_;
  XLOPER12 value_{};
};

}  // namespace quillmere
