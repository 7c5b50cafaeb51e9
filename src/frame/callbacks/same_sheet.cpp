#include "frame/callbacks/same_sheet.h"

#include "frame/callbacks/callbacks.h"
#include "frame/text/fold_case.h"

namespace quillmere {

bool AreOnSameSheet(const CXlOper& reference, const CXlOper& other) {
  if (reference.Sheet() == other.Sheet()) return true;
  if (reference.Sheet() != 0 && other.Sheet() != 0) return false;
  // The current sheet has no identifier here; its name is asked for as that of any other.
  const CXlOper name = CallExcelOrValueError(xlSheetNm, reference);
  const CXlOper otherName = CallExcelOrValueError(xlSheetNm, other);
  if (!name.IsText() || !otherName.IsText()) throw CXlErrorException(xlerrValue);
  return EqualExact(name.AsText(), otherName.AsText());
}

}  // namespace quillmere
