// The text that Excel makes of a number where a text is wanted.
#pragma once

#include "host/values/number_marks.h"

namespace qcalc {

/// As `""&number` and xlCoerce to text have it: 15 significant digits, positional while it stays within 20 characters,
/// else scientific (1.5E-20). `number` is finite and not
/// subnormal.
XString NumberToText(double number, NumberMarks marks);

}  // namespace qcalc
