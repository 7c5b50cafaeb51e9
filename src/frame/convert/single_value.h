// Arguments that stand for one value.
#pragma once

#include "frame/values/xl_oper.h"

namespace quillmere {

/// The only cell of a value: the value itself, or the cell of an array of one. Null for an array of several cells and
/// for a reference; what those mean is the caller's to say. A value never set counts as a missing cell.
inline const XLOPER12* OnlyCell(const CXlOper& value) {
  if (value.IsReference()) return nullptr;
  if (!value.IsArray()) return &value.Raw();
  const CXlCells cells = value.Cells();
  return cells.Count() == 1 ? cells.first : nullptr;
}

}  // namespace quillmere
