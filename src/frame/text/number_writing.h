// Numbers as text, the way Excel writes them into a text (`""&x`).
#pragma once

#include "xlcall/xchar.h"

namespace quillmere {

/// Room for the text of any number.
struct NumberTextBuffer {
  XCHAR units[32];
};

/// A number with 15 significant digits, positional or scientific as Excel chooses; a view of `buffer`. A number that is
/// not finite reads "#NUM!".
XStringView NumberText(double number, NumberTextBuffer& buffer, XCHAR decimalSeparator) noexcept;

}  // namespace quillmere
