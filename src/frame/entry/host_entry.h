// Where Excel's callbacks are found in the running process.
#pragma once

#include "xlcall/xlcall.h"

namespace quillmere {

/// "MdCallBack12" as the host program exports it; null when it does not.
XlMdCallBack12 FindMdCallBack12() noexcept;

/// "Excel4v" of the XLCALL32.DLL that the host has loaded or brings along; null when there is none.
XlExcel4v FindExcel4v() noexcept;

}  // namespace quillmere
