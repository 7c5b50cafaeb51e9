// Callbacks that calculate: Excel's own functions, formulas, functions of the macro language.
#include "host/calculation/evaluator.h"
#include "host/callbacks/handlers.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"

namespace qcalc {
namespace {

/// The function that an argument of xlUDF means, by name or by register id; null when there is none.
const RegisteredFunction* RegisteredAt(const CallbackRequest& request, std::size_t index) {
  const Registry& registry = request.Host().registry;
  if (const XString* name = request.TextAt(index)) return registry.Find(*name);
  const auto id = request.NumberAt(index);
  return id ? registry.Find(*id) : nullptr;
}

std::vector<Value> ValuesFrom(const CallbackRequest& request, std::size_t first) {
  std::vector<Value> values;
  for (std::size_t i = first; i < request.arguments.size(); ++i) values.push_back(request.ValueAt(i));
  return values;
}

}  // namespace

CallbackAnswer HandleWorksheetFunction(CallbackRequest& request) {
  // "xlfSum" is SUM, as the add-in's programmer and a cell's user spell it.
  const XString name(request.callback.name.begin() + 3, request.callback.name.end());
  const std::vector<Value> operands = ValuesFrom(request, 0);
  for (const Value& operand : operands)
    if (operand.IsReference()) request.CheckCalculated(operand.AsReference());
  auto result = CallBuiltin(name, operands, request.Evaluation());
  if (!result) return request.NotOffered("this function");
  return std::move(*result);
}

CallbackAnswer HandleEvaluate(CallbackRequest& request) {
  const XString* text = request.TextAt(0);
  if (!text) return request.WrongArgument(1, "a text");
  // The name that an add-in's function was registered by stands for its register id.
  if (const RegisteredFunction* function = request.Host().registry.Find(*text)) return Value::Number(function->id);
  const Parsed<Formula> formula = ParseFormula(ToUtf8(*text));
  if (!formula) return Value::Error(xlerrValue);
  return Dereference(Evaluate(*formula, request.Evaluation()), *request.Evaluation().workbooks);
}

CallbackAnswer HandleUdf(CallbackRequest& request) {
  HostState& host = request.Host();
  const XString* name = request.TextAt(0);
  if (!name && !request.NumberAt(0)) return request.WrongArgument(1, "a function's name or register id");
  if (const RegisteredFunction* function = RegisteredAt(request, 0)) {
    std::vector<Value> operands = ValuesFrom(request, 1);
    for (std::size_t i = 0; i < operands.size() && i < function->operands.size(); ++i)
      if (function->operands[i] != OperandKind::kReference)
        operands[i] = Dereference(operands[i], *request.Evaluation().workbooks);
    return request.Evaluation().addin->Call(*function, operands, request.Evaluation());
  }
  if (!name) return Value::Error(xlerrName);
  const auto macro = host.macroFunctions.results.find(FoldCase(*name));
  if (macro == host.macroFunctions.results.end()) return Value::Error(xlerrName);
  if (request.context.place == Place::kThreadSafeFunction) throw NotThreadSafe{};
  host.macroFunctions.lastArgument = request.ValueAt(1);
  return macro->second;
}

CallbackAnswer HandleRtd(CallbackRequest& request) {
  if (!request.TextAt(0)) return request.WrongArgument(1, "a program id");
  // No server is registered here.
  return Value::Error(xlerrNA);
}

}  // namespace qcalc
