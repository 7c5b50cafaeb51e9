// A workbook for as long as Excel's Application object is looked for.
#pragma once

namespace quillmere {

/// Without a workbook's window Excel does not give its object model. This opens a new workbook, with Excel's screen
/// still, and while it lives it keeps both; it then closes the workbook unsaved. Where Excel refuses, it raises
/// CXlRuntimeException and leaves everything as it was. In commands and at opening alone.
class InitExcelOleFix {
 public:
  InitExcelOleFix();
  InitExcelOleFix(const InitExcelOleFix&) = delete;
  InitExcelOleFix& operator=(const InitExcelOleFix&) = delete;
  ~InitExcelOleFix();
};

}  // namespace quillmere
