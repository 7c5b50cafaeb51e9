// Recalculation: formula cells in dependency order, spilled results.
#pragma once

#include "host/calculation/evaluation_context.h"
#include "host/calculation/unknown_names.h"

namespace qcalc {

/// Calculates every dirty formula cell of all books: cells before the formulas that read them, each with its own cell
/// as the caller. Dirty is a new formula, one that reads changed cells or a changed name, and one that calls a volatile
/// function. An array result spills from its cell into empty neighbours; #SPILL! when a cell is in its way or the sheet
/// ends. `names` and `addin` are taken from `context`; its sheet and caller are not looked at. Throws FormulaError,
/// with the cells, for a circle of references or a formula that cannot be evaluated; those cells stay dirty. `unknown`
/// is Evaluate's.
void Recalculate(Workbooks& workbooks, const EvaluationContext& context, UnknownNames* unknown = nullptr);

}  // namespace qcalc
