// References as they are written, read at a cursor.
#pragma once

#include <optional>

#include "host/formulas/formula.h"
#include "host/text/text_cursor.h"

namespace qcalc {

/// Reads `A1`, `$B$2:C9`, `A:A`, `3:5` where one stands and moves behind it; nothing, and no movement, where none does.
/// Ends may be written in either order.
std::optional<Area> TakeArea(TextCursor& cursor);

/// What stands before a "!".
struct SheetPrefix {
  XString book;
  XString sheet;  ///< empty for a leading "!" alone: the current sheet
};

/// Reads `Data!`, `'My sheet'!`, `[Book]Sheet!`, `'[My book]My sheet'!` or `!` where one stands; nothing, and no
/// movement, where none does. Throws SyntaxError for a quoted name that is not closed or not followed by "!".
std::optional<SheetPrefix> TakeSheetPrefix(TextCursor& cursor);

}  // namespace qcalc
