// The order of texts without case.
#pragma once

#include <compare>

#include "xlcall/xchar.h"

namespace qcalc {

/// Texts without case in the order of the user's language; hyphens and apostrophes count only between otherwise equal
/// texts. Equivalent are those that EqualsIgnoringCase takes for equal, and no others. For any number of threads.
std::weak_ordering CompareTexts(XStringView left, XStringView right);

}  // namespace qcalc
