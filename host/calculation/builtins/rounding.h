// Rounding as ROUND and its kin have it.
#pragma once

#include "host/values/decimal_digits.h"

namespace qcalc {

enum class Rounding { kHalfAway, kAway, kTowardsZero };

/// The number with so many digits behind the point, negative counts before it, going by its 15 significant digits and
/// not by its last bits: 1.005 rounds to 1.01. Infinity beyond the range of doubles.
double Rounded(double number, int decimals, Rounding rounding);

}  // namespace qcalc
