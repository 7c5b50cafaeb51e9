// A result as a table to look at.
#pragma once

#include <string>

#include "host/value.h"

namespace qcalc {

/// The value's cells in aligned columns between rulers of row and column numbers (1-based), numbers to the right, lines
/// ending in LF. At most `maxRows` rows, then a line that says how many more there are. References must be read before.
std::string ShowTable(const Value& value, int maxRows);

}  // namespace qcalc
