// Running a macro text of Excel's old macro language, without Excel's alert boxes.
#pragma once

#include "excel/com/com_values_windows.h"

namespace quillmere {

/// Runs an Excel 4 macro text (ExecuteExcel4Macro). Alerts that were on are off meanwhile, and on again afterwards
/// whatever happens. Returns the HRESULT of the macro, or of what failed before it; `result` receives what it answered.
HRESULT RunMacroText(IDispatch& application, XStringView macro, ComVariant& result) noexcept;

}  // namespace quillmere
