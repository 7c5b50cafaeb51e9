// Values as text, the way Excel writes them into a text (`""&x`).
#pragma once

#include "frame/text/number_writing.h"
#include "xlcall/xlcall.h"

namespace quillmere {

/// The text form of a single cell: a text as it is, a number with 15 significant digits and Excel's decimal separator,
/// TRUE or FALSE, an error's text, nothing for an empty cell. A view of the cell or of `buffer`; what is no single cell
/// is "Bad XLOPER type".
XStringView TextForm(const XLOPER12& cell, NumberTextBuffer& buffer);

}  // namespace quillmere
