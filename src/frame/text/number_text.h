// Values as text, the way Excel writes them into a text (`""&x`).
#pragma once

#include "xlcall/xlcall.h"

namespace quillmere {

/// The decimal separator in use: "." until another is set at opening. Any thread.
XCHAR DecimalSeparator() noexcept;
void SetDecimalSeparator(XCHAR separator) noexcept;

/// Room for the text of any number.
struct NumberTextBuffer {
  XCHAR units[32];
};

/// A number with 15 significant digits, positional or scientific as Excel chooses; a view of `buffer`. A number that is
/// not finite reads "#NUM!".
XStringView NumberText(double number, NumberTextBuffer& buffer, XCHAR decimalSeparator = DecimalSeparator()) noexcept;

/// The text form of a single cell: a text as it is, a number as NumberText has it, TRUE or FALSE, an error's text,
/// nothing for an empty cell. A view of the cell or of `buffer`; what is no single cell is "Bad XLOPER type".
XStringView TextForm(const XLOPER12& cell, NumberTextBuffer& buffer);

}  // namespace quillmere
