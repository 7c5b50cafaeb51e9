// Excel's conversions between the types of a value, and its order of values.
#pragma once

#include <compare>
#include <variant>

#include "host/values/value.h"

namespace qcalc {

/// The cell as a number, a text or a boolean, as operators, direct arguments and xlCoerce convert; the error itself for
/// an error, #VALUE! (or #NUM!) for a text that does not convert. An empty cell gives 0, "" and FALSE.
Value ToNumber(const CellView& cell);
Value ToText(const CellView& cell, XCHAR decimalSeparator = XTEXT('.'));
Value ToBoolean(const CellView& cell);

/// How the comparison operators order two cells, neither an error: number < text < FALSE < TRUE, texts without case, an
/// empty cell as the other's 0, "" or FALSE, numbers by their 15 digits.
std::weak_ordering CompareCells(const CellView& left, const CellView& right);

/// Texts without case in the operators' order: hyphens and apostrophes count only between otherwise equal texts.
std::weak_ordering CompareTexts(XStringView left, XStringView right);

}  // namespace qcalc
