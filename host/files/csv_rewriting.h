// A CSV file after its formulas were calculated.
#pragma once

#include <string_view>

#include "host/output/changed_cells.h"
#include "host/process/byte_output.h"

namespace qcalc {

/// Writes the file's text with values for its formulas and for the cells that their results fill, beyond the text's own
/// records and fields too; every other field, the line ends and the byte-order mark stay as they are. `text` is what
/// LoadCsv read without a fault, from A1 on, commas between its fields.
void RewriteCsv(ByteOutput& file, std::string_view text, const SheetResults& results);

}  // namespace qcalc
