#include "excel/com/excel_com.h"
#include "excel/com/xll_com_windows.h"
#include "frame/entry/process_end.h"

namespace quillmere {

IXllCom& ExcelCom() {
  static CUntilUnloaded<CXllComImpl> bridge;
  return *bridge;
}

}  // namespace quillmere
