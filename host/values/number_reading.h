// The number that Excel reads in a text where a number is wanted: operators, direct arguments, xlCoerce.
#pragma once

#include "host/values/value.h"

namespace qcalc {

/// Digits with sign, point, exponent, thousands commas, $, percent or parentheses; times and dates as serials (1900
/// system). English (US) forms. #VALUE! for any other text, #NUM! beyond the range of doubles; subnormal results are 0.
Value TextToNumber(XStringView text);

}  // namespace qcalc
