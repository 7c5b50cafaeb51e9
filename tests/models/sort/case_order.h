// The order of texts in the user's language where case counts, which the host itself has no use for.
#pragma once

#include <compare>

#include "xlcall/xchar.h"

namespace qcalc::sort {

/// As CompareInLanguage, but texts of any case: of two that differ by case alone the one with the small letter first.
std::weak_ordering CompareWithCase(XStringView left, XStringView right);

}  // namespace qcalc::sort
