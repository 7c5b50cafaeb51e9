#include "excel/com/excel_com.h"

namespace quillmere {

IXllCom& ExcelCom() {
  static constinit CXllComNull bridge;
  return bridge;
}

}  // namespace quillmere
