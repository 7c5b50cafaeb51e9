// The number that Excel reads in a text where a number is wanted: VALUE, operators, direct arguments, xlCoerce.
#pragma once

#include "host/values/number_marks.h"
#include "host/values/value.h"

namespace qcalc {

/// Digits with sign, point, exponent, thousands commas, $, percent or parentheses; whole numbers with a fraction
/// (`1 1/2`); times and dates as serials. English (US) forms but for the marks; digits beyond the 15th
/// count as zeros. #VALUE! for any other text, #NUM! beyond the range of doubles.
Value TextToNumber(XStringView text, NumberMarks marks);

}  // namespace qcalc
