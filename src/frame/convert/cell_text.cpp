#include "frame/convert/cell_text.h"

#include "frame/callbacks/excel_settings.h"
#include "frame/text/error_text.h"
#include "frame/values/cell.h"

namespace quillmere {

XStringView TextForm(const XLOPER12& cell, NumberTextBuffer& buffer) {
  switch (CellType(cell)) {
    case xltypeStr:
      return TextOf(cell);
    case xltypeNum:
    case xltypeInt:
      return NumberText(CellNumber(cell), buffer, DecimalSeparator());
    case xltypeBool:
      return cell.val.xbool != 0 ? XTEXT("TRUE") : XTEXT("FALSE");
    case xltypeErr:
      return ErrorText(cell.val.err);
    default:
      return {};
  }
}

}  // namespace quillmere
