// The texts that Excel makes of a number without a format of its own.
#pragma once

#include "host/values/number_marks.h"

namespace qcalc {

/// As `""&number` and xlCoerce to text have it: 15 significant digits, positional while it stays within 20 characters,
/// else scientific (1.5E-20). `number` is finite and not subnormal.
XString NumberToText(double number, NumberMarks marks);

/// As cells show it in the General format: 11 characters, the sign not counted, scientific with 6 digits where whole
/// digits need more, or zeros behind the point.
XString NumberToGeneral(double number, NumberMarks marks);

}  // namespace qcalc
