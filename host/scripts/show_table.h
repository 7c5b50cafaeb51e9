// A result as a table to look at.
#pragma once

#include <cstdint>
#include <string>

#include "host/values/value.h"

namespace qcalc {

/// An array's cells in aligned columns between rulers of row and column numbers (1-based), lines ending in LF; anything
/// else as a literal. Numbers stand to the right, texts to the left and in quotes only where they could be taken for
/// something else, empty cells blank. At most `maxRows` rows, the last quarter of them from the end, and as many
/// columns as a line can hold; then it is said how many there are. References must be read before.
std::string ShowTable(const Value& value, std::int32_t maxRows);

}  // namespace qcalc
