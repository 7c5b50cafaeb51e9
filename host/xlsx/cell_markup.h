// The value of a cell as the XML of a worksheet.
#pragma once

#include <string>
#include <string_view>

#include "host/values/cell_view.h"

namespace qcalc {

/// What stands in a cell's tag for its type, with the blank before it: ` t="str"`; nothing for numbers and empty cells.
/// What no file holds, a number that is not finite, counts as #NUM!.
std::string_view TypeAttribute(const CellView& cell);

/// Appends the element of its value, its name behind `prefix` (`x:`, or none): `<v>1.5</v>`, and nothing for an empty
/// cell. Numbers are written in as many digits as tell them apart. Errors younger than files of this kind (#SPILL!,
/// #CALC!) are #VALUE!, as other programs write them for those that do not know them.
void AppendCellValue(std::string& out, std::string_view prefix, const CellView& cell);

}  // namespace qcalc
