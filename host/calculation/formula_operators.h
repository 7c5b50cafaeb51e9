// The operators of formulas.
#pragma once

#include "host/formulas/formula_node.h"
#include "host/values/number_marks.h"
#include "host/values/value.h"

namespace qcalc {

/// Applies the operator, element by element where an operand is an array. Operands are scalars or arrays, no
/// references; an error is the result, the left one first. `marks` are those of numbers in texts.
Value ApplyUnary(FormulaOperator op, const Value& operand, NumberMarks marks);
Value ApplyBinary(FormulaOperator op, const Value& left, const Value& right, NumberMarks marks);

/// The number as a result of Excel's: #NUM! when it is not finite, 0 when it is negative zero.
Value NumberResult(double number);

}  // namespace qcalc
