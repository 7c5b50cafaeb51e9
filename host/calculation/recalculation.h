// Recalculation: formula cells in dependency order, spilled results.
#pragma once

#include <string>
#include <vector>

#include "host/calculation/evaluation_context.h"
#include "host/calculation/unknown_names.h"

namespace qcalc {

/// Calculates every dirty formula cell of all books: cells before the formulas that read them, each with its own cell
/// as the caller. Dirty is a new formula, one that reads changed cells or a changed name, and one that calls a volatile
/// function. An array result spills from its cell into empty neighbours; #SPILL! when a cell is in its way or the sheet
/// ends. `names` and `addin` are taken from `context`; its sheet and caller are not looked at.
/// Returns why formulas could not be calculated, with their cells: circles of references, and what cannot be evaluated;
/// those and all that depend on them stay dirty, the others are calculated. Throws FormulaError when spilled arrays
/// never settle. `unknown` is Evaluate's.
std::vector<std::string> Recalculate(Workbooks& workbooks, const EvaluationContext& context,
                                     UnknownNames* unknown = nullptr);

}  // namespace qcalc
