// What is said of a calculated book.
#pragma once

#include <string>
#include <vector>

#include "host/calculation/recalculation.h"
#include "host/workbook/workbooks.h"

namespace qcalc {

/// `Data!B7`, `'My sheet'!B7`: a cell of an open book, whose name is left out.
std::string CellName(const SheetCell& cell, const Workbooks& workbooks);

/// The cells by sheets and as areas as large as can be, `Data!B2:B90000, Data!D4`; of more than ten areas the first and
/// how many more cells there are.
std::string CellNames(std::vector<SheetCell> cells, const Workbooks& workbooks);

/// Why formulas could not be calculated, a sentence each: those that have the same reason together, with the first
/// one's formula and the cells of the others; the circles; and at the end which formulas read the cells of those.
std::vector<std::string> ReportFailures(const CalculationOutcome& outcome, const Workbooks& workbooks);

}  // namespace qcalc
