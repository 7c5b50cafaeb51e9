// The number formats of a book's cells, as far as they say that a number is a date.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/xlsx/date_cells.h"
#include "host/xlsx/package.h"
#include "xlcall/xchar.h"

namespace qcalc {

/// What a format shows of the numbers that its first section takes.
DateKind DateKindOf(XStringView formatCode);

/// What the cell formats of a part of styles show, in the order of their numbers (a cell's `s`), from 0 on; none when
/// the file has no such part.
std::vector<DateKind> ReadCellFormats(const Package& package, const std::string& part);

}  // namespace qcalc
