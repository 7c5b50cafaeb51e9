// The functions of the macro language that the add-in's workbook functions call: what the companion has in Excel.
#pragma once

#include <optional>

#include "host/calculation/evaluation_context.h"

namespace qcalc {

/// Whether there is such a function, in any case: COUNTROWSvba, COUNTCONTIGROWSvba, COUNTUSEDROWSvba, the same three
/// with COLS, HASFORMULAvba and EVALvba.
bool IsWorkbookMacro(XStringView name);

/// Calls it with its one argument. What it cannot answer is #VALUE!: no reference for a count, a text that is no
/// formula. A sheet's used range is that of values and formulas here; formats do not belong to it. Throws as Evaluate
/// where a text is evaluated, UncalculatedCell too.
Value CallWorkbookMacro(XStringView name, const Value& operand, const EvaluationContext& context);

}  // namespace qcalc
