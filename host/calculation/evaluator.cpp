#include "host/calculation/evaluator.h"

#include <utility>

#include "host/calculation/builtins/builtin.h"
#include "host/calculation/formula_evaluation.h"
#include "host/formulas/formula_node.h"
#include "host/process/journal.h"

namespace qcalc {

void AddOperand(PreparedCall& call, Value operand, const EvaluationContext& context, bool mayBeOld) {
  const OperandKind kind = call.function->operands[call.operands.size()];
  if (kind != OperandKind::kReference && operand.IsReference()) {
    if (operand.AsReference().areas.size() > 1) call.refused = Value::Error(xlerrValue);
    if (!mayBeOld) CheckCalculated(operand.AsReference(), *context.workbooks);
    operand = Dereference(operand, *context.workbooks);
  }
  call.operands.push_back(std::move(operand));
}

Value Evaluate(const Formula& formula, const EvaluationContext& context, UnknownNames* unknown) {
  ++ProcessJournal().formulasCalculated;
  try {
    return FormulaEvaluation(formula, context, unknown).Result(formula.Root());
  } catch (const std::length_error& error) {
    throw FormulaError(error.what());
  }
}

std::optional<PreparedCall> PrepareOutermostCall(const Formula& formula, const EvaluationContext& context) {
  FormulaEvaluation evaluation(formula, context);
  const AddinFunction* function = nullptr;
  const FormulaNode* outermost = nullptr;
  for (const FormulaNode* call : formula.Tree().calls) {
    outermost = call;
    function = evaluation.FindAddinFunction(*call);
    if (function) break;
  }
  if (!function) return std::nullopt;
  try {
    return evaluation.Prepare(*outermost, *function);
  } catch (const std::length_error& error) {
    throw FormulaError(error.what());
  }
}

std::optional<Value> CallBuiltin(XStringView name, std::span<const Value> operands, const EvaluationContext& context) {
  const Builtin* builtin = FindBuiltin(name);
  if (!builtin || operands.size() < builtin->leastOperands || operands.size() > builtin->mostOperands)
    return std::nullopt;
  return builtin->call({operands, context});
}

}  // namespace qcalc
