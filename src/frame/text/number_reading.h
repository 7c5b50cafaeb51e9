// Reading a number from a text without asking Excel.
#pragma once

#include <optional>

#include "xlcall/xchar.h"

namespace quillmere {

/// Reads plain decimal or scientific notation ("-12.5", ".5", "1e-3") with white space around it; nothing when the text
/// is anything else or its number is beyond the doubles. A number too small to be a normal double reads as 0.
std::optional<double> ReadPlainNumber(XStringView text, XCHAR decimalSeparator);

}  // namespace quillmere
