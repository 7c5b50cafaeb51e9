// Writes a sample workbook from what its description holds.
#pragma once

#include <string>

#include "samples/writer/description.h"

namespace samples {

/// Writes the workbook, always the same bytes for the same description and data: sheet "Start here", then the sheets
/// that are described. Formulas have no values yet. Data are read from the CSV files of `dataFolder`. What cannot be
/// shown as it is described is reported, and then no file is left. Throws std::runtime_error when the file cannot be
/// written.
void WriteBook(const Book& book, const std::string& dataFolder, const std::string& path, Diagnostics& diagnostics);

}  // namespace samples
