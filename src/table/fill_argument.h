// The argument that says what stands in cells that no other argument supplies.
#pragma once

#include "frame/convert/argument.h"
#include "frame/convert/single_value.h"

namespace quillmere {

/// The value of a fill argument, or its default. Null for several cells, of which `result` then tells.
inline const XLOPER12* ReadFill(CXlOper& result, const CXlArgument& fill) {
  const XLOPER12* const cell = OnlyCell(fill.Value());
  if (!cell) result.SetText(XTEXT("#Error: Fill has multiple Values"));
  return cell;
}

}  // namespace quillmere
