// An array cut, or padded, to a size or to the calling cells.
//
// Serves PAD.ARRAY.
#include <algorithm>

#include "frame/callbacks/caller.h"
#include "frame/convert/argument.h"
#include "frame/convert/single_value.h"
#include "implementations/shape.h"
#include "table/array_painter.h"

namespace quillmere::shape {
namespace {

/// How many rows, or columns, of an array are kept: what is asked for, those of several calling ones, or all.
std::int32_t KeptCount(std::int32_t wanted, std::int32_t calling, std::int32_t given) {
  if (wanted >= 1) return wanted;
  return calling > 1 ? calling : given;
}

}  // namespace

void Functions::PadArray(CXlOper& result, const CXlArgument& pad, const CXlArgument& array,
                         const CXlScalarArgument<ElementKind::kInteger>& numRows,
                         const CXlScalarArgument<ElementKind::kInteger>& numCols) {
  result.SetError(xlerrValue);
  const CellsSize calling = CallingCellsSize();
  const CXlCells cells = array.Value().Cells();
  const XLOPER12* const padValue = OnlyCell(pad.Value());
  if (!padValue) return;
  const CellsSize kept{KeptCount(numRows.Read(), calling.rows, cells.rows),
                       KeptCount(numCols.Read(), calling.columns, cells.columns)};

  const CellsSize size = calling.rows > 1 || calling.columns > 1 ? calling : kept;
  const CellsSize copied{std::min(kept.rows, cells.rows), std::min(kept.columns, cells.columns)};
  if (copied.rows > size.rows || copied.columns > size.columns) throw CXlOutOfRangeException();
  const ArrayPiece piece{cells, AxisMap::Run(0, copied.rows).PaddedTo(size.rows),
                         AxisMap::Run(0, copied.columns).PaddedTo(size.columns)};
  result = PaintStack({&piece, 1}, false, *padValue);
}

}  // namespace quillmere::shape
