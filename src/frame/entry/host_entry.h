// What is found in the running process: Excel's callbacks, and what a host tells beside them.
#pragma once

#include "xlcall/xlcall.h"

namespace quillmere {

/// "MdCallBack12" as the host program exports it; null when it does not.
XlMdCallBack12 FindMdCallBack12() noexcept;

/// "Excel4v" of the XLCALL32.DLL that the host has loaded or brings along; null when there is none.
XlExcel4v FindExcel4v() noexcept;

/// Whether the host program watches this library's blocks of memory or lets their allocation fail, which it says by
/// exporting "QcalcWatchesMemory". Excel does not.
bool HostWatchesMemory() noexcept;

}  // namespace quillmere
