// The host's side of Excel's C API: what the add-in finds among the program's exports.
#pragma once

#include "host/library/export.h"
#include "xlcall/xlcall.h"

/// Makes a callback: looks the number up, refuses what may not be called from where this thread is, answers all else as
/// Excel does. On every code but xlretSuccess the result is #VALUE!. `result` may be null, and is overwritten without
/// being freed.
QCALC_EXPORT int MdCallBack12(int xlfn, int count, XLOPER12** arguments, XLOPER12* result);

/// The same for 8-bit values.
QCALC_EXPORT int Excel4v(int xlfn, XLOPER* result, int count, XLOPER** arguments);

/// The version of the API: 12 * 256, or 5 * 256 when the host reports an Excel before 2007.
QCALC_EXPORT int XLCallVer();
