// The operator ^.
#pragma once

#include "host/values/value.h"

namespace qcalc {

/// `base` to the power of `exponent`, rounded once, and the same on every platform: none of the C library's inexact
/// functions has a part in it. Exact where the power is one of the doubles. #NUM! beyond their range, for 0^0 and for
/// roots of negative numbers that are not real (an odd root is: (-8)^(1/3) is -2); #DIV/0! for a negative power of 0.
Value Power(double base, double exponent);

}  // namespace qcalc
