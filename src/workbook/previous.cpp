// What the calling cells held before.
//
// Serves PREVIOUS.
#include "frame/callbacks/callbacks.h"
#include "frame/callbacks/caller.h"
#include "frame/convert/argument.h"
#include "implementations/workbook.h"

namespace quillmere::workbook {

void Functions::Previous(CXlOper& result, const CXlScalarArgument<ElementKind::kBoolean>& isVolatile) {
  // Excel wants to be told first. Where it does not take it, the cells are read all the same.
  CXlOper told;
  TryCallExcel(told, xlfVolatile, CXlOper::Boolean(isVolatile.Read()));
  const CXlOper cells = FindCallingCells();
  if (!cells.IsSet()) {
    result.SetError(xlerrNA);
    return;
  }
  // A function of macro sheets may read cells that are being calculated: they still hold what they held.
  result = CallExcelOrValueError(xlCoerce, cells);
}

}  // namespace quillmere::workbook
