// The cells that a formula stands in.
#pragma once

#include <cstdint>

#include "frame/values/xl_oper.h"

namespace quillmere {

/// The cells that call, as Excel tells: a reference of one area, the cells of an array formula together. Never set
/// where the call comes from elsewhere, or from several areas. A callback that fails is CXlErrorException with #VALUE!.
CXlOper CallingCells();

/// The same, but never set too where the callback fails.
CXlOper FindCallingCells();

/// The rows and columns of cells.
struct CellsSize {
  std::int32_t rows;
  std::int32_t columns;
};

/// The size of the calling cells, for functions that fill them. CXlErrorException with #N/A where there are none, or
/// where Excel does not tell.
CellsSize CallingCellsSize();

}  // namespace quillmere
