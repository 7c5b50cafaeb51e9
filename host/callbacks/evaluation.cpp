// Callbacks that calculate: Excel's own functions, formulas, functions of the macro language.
#include "host/addin/text_evaluation.h"
#include "host/addin/workbook_macros.h"
#include "host/calculation/builtins/builtin.h"
#include "host/calculation/evaluator.h"
#include "host/callbacks/handlers.h"
#include "host/text/letter_case.h"

namespace qcalc {
namespace {

/// The function that an argument of xlUDF means, by name or by register id; null when there is none. Commands are none.
const RegisteredFunction* RegisteredAt(const CallbackRequest& request, std::size_t index) {
  const Registry& registry = request.Host().registry;
  const XString* name = request.TextAt(index);
  const auto id = request.NumberAt(index);
  const RegisteredFunction* function = name ? registry.Find(*name) : id ? registry.Find(*id) : nullptr;
  return function && !function->IsCommand() ? function : nullptr;
}

CallbackAnswer CallRegistered(const CallbackRequest& request, const RegisteredFunction& function) {
  const std::size_t count = request.arguments.size() - 1;
  if (count > function.operands.size()) return request.WrongCount(count);
  PreparedCall call{&function, {}, std::nullopt};
  for (std::size_t i = 1; i <= count; ++i)
    AddOperand(call, request.ValueAt(i), request.Evaluation(), request.MayReadOldValues());
  call.operands.resize(function.operands.size(), Value::Missing());
  if (call.refused) return *call.refused;
  return request.Evaluation().addin->Call(function, call.operands, request.Evaluation());
}

}  // namespace

CallbackAnswer HandleWorksheetFunction(CallbackRequest& request) {
  // "xlfSum" is SUM, as the add-in's programmer and a cell's user spell it.
  const XString name(request.callback.name.begin() + 3, request.callback.name.end());
  std::vector<Value> operands;
  for (std::size_t i = 0; i < request.arguments.size(); ++i) operands.push_back(request.ValueAt(i));
  for (const Value& operand : operands)
    if (operand.IsReference()) request.CheckCalculated(operand.AsReference());
  EvaluationContext evaluation = request.Evaluation();
  evaluation.marks = request.Marks();
  if (auto result = CallBuiltin(name, operands, evaluation)) return std::move(*result);
  return FindBuiltin(name) ? request.WrongCount(operands.size()) : request.NotOffered("this function");
}

CallbackAnswer HandleEvaluate(CallbackRequest& request) {
  const XString* text = request.TextAt(0);
  if (!text) return request.WrongArgument(1, "a text");
  return EvaluateText(*text, request.Host(), request.Evaluation());
}

CallbackAnswer HandleUdf(CallbackRequest& request) {
  HostState& host = request.Host();
  const XString* name = request.TextAt(0);
  if (!name && !request.NumberAt(0)) return request.WrongArgument(1, "a function's name or register id");
  if (const RegisteredFunction* function = RegisteredAt(request, 0)) return CallRegistered(request, *function);
  if (!name) return Value::Error(xlerrName);
  const auto macro = host.macroFunctions.results.find(FoldCase(*name));
  const bool isMade = macro != host.macroFunctions.results.end();
  if (!isMade && !(host.settings.hasWorkbookMacros && IsWorkbookMacro(*name))) return Value::Error(xlerrName);
  if (request.context.place == Place::kThreadSafeFunction) throw NotThreadSafe{};
  if (!isMade) return CallWorkbookMacro(*name, request.ValueAt(1), request.Evaluation());
  host.macroFunctions.lastArgument = request.ValueAt(1);
  return macro->second;
}

CallbackAnswer HandleRtd(CallbackRequest& request) {
  const XString* id = request.TextAt(0);
  if (!id) return request.WrongArgument(1, "a program id");
  // The second argument names another machine.
  if (!request.IsOmitted(1) && !request.TextAt(1)) return request.WrongArgument(2, "a server's name");
  DataServers& servers = request.Host().dataServers;
  const auto server = servers.answers.find(FoldCase(*id));
  if (server == servers.answers.end()) return Value::Error(xlerrNA);
  std::vector<Value> topics;
  for (std::size_t i = 2; i < request.arguments.size(); ++i) {
    topics.push_back(Dereference(request.ValueAt(i), request.Host().workbooks));
    if (topics.back().IsArray()) return Value::Error(xlerrValue);
  }
  servers.topics.push_back(std::move(topics));
  return server->second;
}

}  // namespace qcalc
