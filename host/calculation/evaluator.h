// Evaluation of formulas against the model, with the add-in's functions behind an interface.
#pragma once

#include <optional>
#include <span>
#include <vector>

#include "host/calculation/addin_functions.h"
#include "host/calculation/evaluation_context.h"
#include "host/calculation/unknown_names.h"
#include "host/formulas/formula.h"

namespace qcalc {

/// Evaluates the formula. The result may be a reference (Dereference gives what it holds) or an array. A function or
/// name that nobody knows gives #NAME?, a sheet that is not there #REF!; both are noted in `unknown` if given. Reads
/// the model only: several threads may evaluate at once while none writes. Throws FormulaError where the formula is
/// none that the host can evaluate, such as one with a function of Excel that the host does not offer, with the
/// function and the column.
Value Evaluate(const Formula& formula, const EvaluationContext& context, UnknownNames* unknown = nullptr);

/// The outermost add-in call of a formula, its operands evaluated as Call wants them.
struct PreparedCall {
  const AddinFunction* function = nullptr;
  std::vector<Value> operands;
  /// Set when Excel would not make the call at all (a union for a value argument): the result is this value.
  std::optional<Value> refused;
};

/// Adds the operand for the function's next argument: as it is, or what it holds where a value is wanted, once all of
/// that is calculated; `mayBeOld` takes the values that uncalculated cells had. Throws UncalculatedCell. A call has as
/// many operands as its function takes before it is made: those left out are missing.
void AddOperand(PreparedCall& call, Value operand, const EvaluationContext& context, bool mayBeOld = false);

/// Stops at the outermost add-in call (the first one met from the outside in, left to right); nothing when the formula
/// makes none. Throws as Evaluate.
std::optional<PreparedCall> PrepareOutermostCall(const Formula& formula, const EvaluationContext& context);

/// Calls one of Excel's own functions with evaluated operands, as a callback (xlfSum, ...) does; nothing when the host
/// does not offer it, or not with so many. References count as references, scalars as direct arguments.
std::optional<Value> CallBuiltin(XStringView name, std::span<const Value> operands, const EvaluationContext& context);

}  // namespace qcalc
