// Finding Excel's Application object from inside its process.
#pragma once

#include "excel/com/com_values_windows.h"

namespace quillmere {

/// Whether this process has a window of a workbook: without one there is no object model to be asked.
bool HasWorkbookWindow();

/// Excel's Application object: of the first workbook window of this process that answers, else from the table of
/// running objects, where it must be this process's. On Excel's main thread. CXlComException names the step of the
/// windows' search that failed.
ComReference<IDispatch> FindApplication();

}  // namespace quillmere
