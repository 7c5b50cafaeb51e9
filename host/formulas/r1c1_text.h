// References in the style of numbered rows and columns.
#pragma once

#include <optional>
#include <string_view>

#include "host/formulas/reference_text.h"

namespace qcalc {

/// Reads one reference that takes up the whole of `text`, UTF-8: `R1C1`, `R[2]C[-1]`, `R3`, `C4`, two of them with a
/// colon between, a sheet before it or none. What stands in brackets, or is left out, counts from the first cell of
/// `base` on. Nothing for any other text, and for cells beyond the sheet.
std::optional<ReferenceText> ParseR1C1(std::string_view text, const Area& base);

}  // namespace qcalc
