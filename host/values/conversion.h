// Excel's conversions between the types of a value.
#pragma once

#include "host/values/number_marks.h"
#include "host/values/value.h"

namespace qcalc {

/// The cell as a number, a text or a boolean, as operators, direct arguments and xlCoerce convert; the error itself for
/// an error, #VALUE! (or #NUM!) for a text that does not convert. An empty cell gives 0, "" and FALSE.
Value ToNumber(const CellView& cell, NumberMarks marks);
Value ToText(const CellView& cell, NumberMarks marks);
Value ToBoolean(const CellView& cell);

}  // namespace qcalc
