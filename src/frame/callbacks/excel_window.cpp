#include "frame/callbacks/excel_window.h"

#include "frame/callbacks/callbacks.h"

namespace quillmere {

WindowHandle ExcelWindow() noexcept {
  CXlOper handle;
  return CallExcelForCode(handle, xlGetHwnd) == xlretSuccess && handle.IsInteger() ? handle.AsInteger() : 0;
}

}  // namespace quillmere
