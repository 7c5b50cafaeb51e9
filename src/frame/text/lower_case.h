// Lower-casing, unit by unit, the same on every system: of every letter, where frame/text/fold_case.h folds A to Z
// alone.
#pragma once

#include "frame/text/fold_case.h"
#include "xlcall/xchar.h"

namespace quillmere {

/// The same for a unit beyond ASCII.
XCHAR LowerCaseByTable(XCHAR unit) noexcept;

/// The small letter of one UTF-16 unit by the simple case mapping: always one unit, the unit itself where it has none.
/// No locale has a say, surrogates stay as they are.
inline XCHAR LowerCase(XCHAR unit) noexcept { return unit < 0x80 ? FoldUnit(unit) : LowerCaseByTable(unit); }

/// Writes the lower case of `text` to `to`, which has room for as many units and does not overlap it.
void LowerTo(XCHAR* to, XStringView text);

}  // namespace quillmere
