#include <memory>

#include "excel/com/excel_com.h"
#include "excel/com/xll_com_windows.h"
#include "frame/entry/process_end.h"

namespace quillmere {
namespace {

constinit CUntilUnloaded<std::unique_ptr<CXllComImpl>> bridge;

}  // namespace

IXllCom& ExcelCom() {
  if (!*bridge) *bridge = std::make_unique<CXllComImpl>();
  return **bridge;
}

}  // namespace quillmere
