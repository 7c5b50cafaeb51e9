// Number formats: what TEXT makes of a value.
#pragma once

#include "host/values/number_marks.h"
#include "host/values/value.h"

namespace qcalc {

/// The value as the format shows it. A text that reads as a number is one; other texts, and booleans, go through the
/// section for texts. #VALUE! for what is no format, for dates that the calendar does not have and for a result that is
/// too long for a cell; an error gives itself. `marks` are those of the format and of the result.
Value FormatCell(const CellView& cell, XStringView format, NumberMarks marks);

}  // namespace qcalc
