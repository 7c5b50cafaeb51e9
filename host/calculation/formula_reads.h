// Which cells a formula can read, told from what stands in it.
#pragma once

#include <functional>

#include "host/calculation/evaluation_context.h"
#include "host/formulas/formula.h"

namespace qcalc {

/// As VisitReads, for a visitor whose type does not matter.
void VisitReadsWith(const Formula& formula, const Sheet& sheet, CellPosition caller, const NamedValues* names,
                    const std::function<void(const SheetArea&)>& visitor);

/// Calls `visitor(const SheetArea&)` for each area that the formula of that cell can read: what it refers to, also by
/// names and tables, as they are now. What spilled from a cell is told as that cell, and of a range whose ends
/// functions find what stands in it: a cell between that is not calculated is met when it is read. `names` are those of
/// scripts and may be null. Areas may come twice; sheets that are not there do not come.
template <typename Visitor>
void VisitReads(const Formula& formula, const Sheet& sheet, CellPosition caller, const NamedValues* names,
                Visitor&& visitor) {
  VisitReadsWith(formula, sheet, caller, names, std::ref(visitor));
}

}  // namespace qcalc
