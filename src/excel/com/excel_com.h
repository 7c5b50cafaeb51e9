// The bridge to Excel's object model.
#pragma once

#include "frame/app/excel_interfaces.h"

namespace quillmere {

/// The bridge of this process, for its whole life; the null one where there is no object model. The application object
/// must have been made. On Excel's main thread.
IXllCom& ExcelCom();

}  // namespace quillmere
