// Excel's two callbacks, wherever they are found.
#pragma once

#include "xlcall/xlcall.h"

namespace quillmere {

/// Takes the callback that a host hands over. Once only: an entry found before, "MdCallBack12" of the host program if
/// it exports it, comes first, and `passedIn` is used and kept otherwise.
void InstallExcel12Entry(XlMdCallBack12 passedIn) noexcept;

/// Calls Excel with 16-bit values; allowed only while Excel has called in on this thread. `result` may be null;
/// otherwise it is overwritten without being released and must be given back with xlFree. Returns Excel's code
/// (xlretSuccess, ...), and xlretFailed when no host can be found.
int Excel12v(int xlfn, XLOPER12* result, int count, XLOPER12* arguments[]) noexcept;

/// The same with 8-bit values.
int Excel4v(int xlfn, XLOPER* result, int count, XLOPER* arguments[]) noexcept;

}  // namespace quillmere
