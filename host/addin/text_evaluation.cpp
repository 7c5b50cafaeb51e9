#include "host/addin/text_evaluation.h"

#include "host/calculation/evaluator.h"
#include "host/formulas/formula_node.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

constexpr std::size_t kMaxEvaluatedText = 255;

/// Whether a formula names cells or values of the active sheet without the "!" that a macro sheet wants before them.
bool HasBareName(const Formula& formula) {
  bool isBare = false;
  VisitNodes(formula.Root(), [&](const FormulaNode& node) {
    const bool mayBeBare = node.kind == FormulaNode::Kind::kName || node.kind == FormulaNode::Kind::kReference;
    if (mayBeBare && node.reference.sheet.empty())
      isBare = isBare || formula.Text()[static_cast<std::size_t>(node.column) - 1] != '!';
  });
  return isBare;
}

}  // namespace

Value EvaluateText(XStringView text, const HostState& host, const EvaluationContext& context) {
  if (text.size() > kMaxEvaluatedText) return Value::Error(xlerrValue);
  if (const RegisteredFunction* function = host.registry.Find(text)) return Value::Number(function->id);
  const Parsed<Formula> formula = ParseFormula(ToUtf8(text));
  if (!formula) return Value::Error(xlerrValue);
  if (HasBareName(*formula)) return Value::Error(xlerrName);
  return Evaluate(*formula, context);
}

}  // namespace qcalc
