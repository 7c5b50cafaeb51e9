#include "frame/callbacks/caller.h"

#include "frame/callbacks/callbacks.h"

namespace quillmere {
namespace {

/// Whether an answer is a reference to one area of cells; a sheet's identifier alone has none.
bool IsOneArea(const CXlOper& answer) {
  if (!answer.IsReference()) return false;
  if (answer.Type() == xltypeRef && answer.Raw().val.mref.lpmref == nullptr) return false;
  return answer.Areas().size() == 1;
}

}  // namespace

CXlOper CallingCells() {
  CXlOper caller = CallExcelOrValueError(xlfCaller);
  return IsOneArea(caller) ? std::move(caller) : CXlOper();
}

CXlOper FindCallingCells() {
  CXlOper caller;
  return TryCallExcel(caller, xlfCaller) == xlretSuccess && IsOneArea(caller) ? std::move(caller) : CXlOper();
}

CellsSize CallingCellsSize() {
  const CXlOper caller = FindCallingCells();
  if (!caller.IsSet()) throw CXlErrorException(xlerrNA);
  const XLREF12& area = caller.Areas().front();
  return {area.rwLast - area.rwFirst + 1, area.colLast - area.colFirst + 1};
}

}  // namespace quillmere
