// An array with its last row, or its last column, first.
//
// Serves REVERSE.ARRAY.
#include "frame/convert/argument.h"
#include "implementations/shape.h"
#include "table/array_painter.h"

namespace quillmere::shape {
namespace {

AxisMap Places(std::int32_t count, bool isReversed) {
  return isReversed ? AxisMap{count, count, count - 1, -1, {}} : AxisMap::Run(0, count);
}

}  // namespace

void Functions::ReverseArray(CXlOper& result, const CXlArgument& array,
                             const CXlScalarArgument<ElementKind::kBoolean>& reverseRows,
                             const CXlScalarArgument<ElementKind::kBoolean>& reverseCols) {
  const CXlCells cells = array.Value().Cells();
  const ArrayPiece piece{cells, Places(cells.rows, reverseRows.Read()), Places(cells.columns, reverseCols.Read())};
  result = PaintStack({&piece, 1}, false, EmptyCell());
}

}  // namespace quillmere::shape
