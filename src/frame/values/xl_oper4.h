// Values of Excel's 8-bit interface: in from Excel, and back.
#pragma once

#include "frame/values/xl_oper.h"

namespace quillmere {

/// A deep copy of an 8-bit value as a 16-bit one, texts widened from the ANSI code page; null gives a value never set.
/// A malformed value (unknown kind, null pointer, an array without cells or with arrays in it, a reference without
/// areas or with one that is upside down) is "Bad XLOPER type".
CXlOper FromValue4(const XLOPER* value);

/// Hands `value` back to Excel in `slot` as an 8-bit value, marked xlbitDLLFree where it points to memory, and leaves
/// `value` never set. What the 8-bit form cannot hold (texts over 255 bytes, arrays over 65,535 rows or 256 columns,
/// references beyond row 65,536 or column 256, memory that cannot be had) is handed back as #VALUE!; such a text within
/// an array makes its element #VALUE!; the text of a failure, "#ERROR: ...", is cut instead. A value never set is
/// #VALUE!, a number that is not finite #NUM!. False when memory could not be had.
bool ReturnInto4(CXlOper& value, XLOPER& slot) noexcept;

/// Frees what a value marked xlbitDLLFree points to and leaves an empty cell without ownership bits, so that a second
/// release does nothing. Any other value is left alone.
void ReleaseOwned4(XLOPER& value) noexcept;

}  // namespace quillmere
