// The calls in formulas: of Excel's functions, of the add-in's, and of those that calculate only one branch.
#include <algorithm>
#include <cmath>
#include <cstring>

#include "host/calculation/broadcast.h"
#include "host/calculation/excel_functions.h"
#include "host/calculation/formula_evaluation.h"
#include "host/calculation/function_profile.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/values/conversion.h"

namespace qcalc {

namespace {

[[noreturn]] void Refuse(const FormulaNode& node, const std::string& why) {
  throw FormulaError(ToUtf8(node.name) + " at column " + std::to_string(node.column) + " " + why);
}

void CheckCount(const FormulaNode& node, std::size_t least, std::size_t most) {
  const std::size_t count = node.children.size();
  if (count >= least && count <= most) return;
  const std::string expected =
      least == most ? std::to_string(least) : std::to_string(least) + " to " + std::to_string(most);
  Refuse(node, "takes " + expected + " arguments, found " + std::to_string(count));
}

}  // namespace

BranchingFunction FindBranchingFunction(XStringView name) {
  constexpr std::pair<XStringView, BranchingFunction> kFunctions[] = {{XTEXT("IF"), BranchingFunction::kIf},
                                                                      {XTEXT("IFERROR"), BranchingFunction::kIfError},
                                                                      {XTEXT("IFNA"), BranchingFunction::kIfNa},
                                                                      {XTEXT("CHOOSE"), BranchingFunction::kChoose}};
  for (const auto& [itsName, function] : kFunctions)
    if (EqualsIgnoringCase(name, itsName)) return function;
  return BranchingFunction::kNone;
}

const AddinFunction* FormulaEvaluation::FindAddinFunction(const FormulaNode& node) const {
  if (node.kind != FormulaNode::Kind::kCall || !context_.addin || node.owner == FunctionOwner::kExcel) return nullptr;
  if (node.owner == FunctionOwner::kAny &&
      (FindBranchingFunction(node.name) != BranchingFunction::kNone || FindBuiltin(node.name)))
    return nullptr;
  return context_.addin->Find(node.name);
}

PreparedCall FormulaEvaluation::Prepare(const FormulaNode& node, const AddinFunction& function) {
  if (node.children.size() > function.operands.size())
    Refuse(node, "takes at most " + std::to_string(function.operands.size()) + " arguments, found " +
                     std::to_string(node.children.size()));
  PreparedCall call{&function, {}, std::nullopt};
  call.operands.reserve(function.operands.size());
  for (std::size_t i = 0; i < node.children.size(); ++i) {
    const FormulaNode& child = *node.children[i];
    if (isSingle_ && function.operands[i] == OperandKind::kByValue) {
      AddOperand(call, EvaluateHeld(child), context_);
    } else if (child.kind == FormulaNode::Kind::kReference && function.operands[i] != OperandKind::kReference) {
      const Sheet* sheet = FindSheet(child.reference);
      const Value value = sheet ? ReadWhole(*sheet, child.reference.At(shift_)) : Value::Error(xlerrRef);
      AddOperand(call, value, context_);
    } else {
      AddOperand(call, Evaluate(child), context_);
    }
  }
  call.operands.resize(function.operands.size(), Value::Missing());
  return call;
}

Value FormulaEvaluation::EvaluateCall(const FormulaNode& node) {
  if (node.owner != FunctionOwner::kAddin) {
    switch (FindBranchingFunction(node.name)) {
      case BranchingFunction::kIf:
        return EvaluateIf(node);
      case BranchingFunction::kIfError:
        return EvaluateIfError(node, false);
      case BranchingFunction::kIfNa:
        return EvaluateIfError(node, true);
      case BranchingFunction::kChoose:
        return EvaluateChoose(node);
      case BranchingFunction::kNone:
        break;
    }
    if (const Builtin* builtin = FindBuiltin(node.name)) return CallBuiltinNode(node, *builtin);
  }
  const AddinFunction* function =
      node.owner == FunctionOwner::kExcel || !context_.addin ? nullptr : context_.addin->Find(node.name);
  if (!function) {
    if (node.owner == FunctionOwner::kExcel || (node.owner == FunctionOwner::kAny && FindExcelFunction(node.name)))
      Refuse(node, "is a function of Excel that this host does not offer");
    Note(UnknownNames::Kind::kFunction, node.name);
    if (context_.refusesUnknown) Refuse(node, "is a function that nobody here knows");
    return Value::Error(xlerrName);
  }
  const PreparedCall call = Prepare(node, *function);
  if (call.refused) return *call.refused;
  const CallTimer timer(context_.profile, function->name);
  return context_.addin->Call(*function, call.operands, context_);
}

Value FormulaEvaluation::CallBuiltinNode(const FormulaNode& node, const Builtin& builtin) {
  CheckCount(node, builtin.leastOperands, builtin.mostOperands);
  std::vector<Value> operands;
  operands.reserve(node.children.size());
  const std::size_t letters = std::strlen(builtin.operands);
  for (std::size_t i = 0; i < node.children.size(); ++i) {
    const FormulaNode& child = *node.children[i];
    const char letter = builtin.operands[std::min(i, letters - 1)];
    if (letter == 'v' && isSingle_) {
      operands.push_back(EvaluateHeld(child));
      continue;
    }
    const Temporarily form(isSingle_, isSingle_ && letter != 'a');
    operands.push_back(Evaluate(child));
    if (operands.back().IsReference()) CheckCalculated(operands.back().AsReference(), *context_.workbooks);
  }
  const CallTimer timer(context_.profile, builtin.name);
  return builtin.call({operands, context_});
}

// A branch that is left empty is 0.
Value FormulaEvaluation::EvaluateBranch(const FormulaNode& call, std::size_t index) {
  Value value = Evaluate(*call.children[index]);
  return value.IsMissing() ? Value::Number(0) : value;
}

// A third argument left out is FALSE. Only the branch taken is evaluated, and it may be a reference; a condition with
// several elements evaluates both and chooses by element.
Value FormulaEvaluation::EvaluateIf(const FormulaNode& node) {
  CheckCount(node, 2, 3);
  const auto branch = [&](std::size_t index) {
    return index < node.children.size() ? EvaluateBranch(node, index) : Value::Boolean(false);
  };
  const Value condition = EvaluateHeld(*node.children[0]);
  if (!condition.IsArray()) {
    const Value truth = ToBoolean(condition.AsCell());
    return truth.IsError() ? truth : branch(truth.AsBoolean() ? 1 : 2);
  }
  const Value operands[] = {condition, Hold(branch(1)), Hold(branch(2))};
  return Broadcast(operands, [](std::span<const CellView> cells) {
    const Value truth = ToBoolean(cells[0]);
    return truth.IsError() ? truth : Value::OfCell(cells[truth.AsBoolean() ? 1 : 2]);
  });
}

// The other value is evaluated where there is an error to be caught, of an array element by element.
Value FormulaEvaluation::EvaluateIfError(const FormulaNode& node, bool onlyNa) {
  CheckCount(node, 2, 2);
  const auto isCaught = [onlyNa](const CellView& cell) {
    return cell.IsError() && (!onlyNa || cell.AsError() == xlerrNA);
  };
  const Value tested = Hold(EvaluateBranch(node, 0));
  if (!tested.IsArray()) return isCaught(tested.AsCell()) ? EvaluateBranch(node, 1) : tested;
  const auto cells = tested.AsArray()->Cells();
  if (std::none_of(cells.begin(), cells.end(), isCaught)) return tested;
  const Value operands[] = {tested, Hold(EvaluateBranch(node, 1))};
  return Broadcast(operands,
                   [&](std::span<const CellView> pair) { return Value::OfCell(pair[isCaught(pair[0]) ? 1 : 0]); });
}

// A number with several elements evaluates all branches and chooses by element.
Value FormulaEvaluation::EvaluateChoose(const FormulaNode& node) {
  CheckCount(node, 2, kXlMaxArguments);
  const auto place = [&](const CellView& cell) -> Value {
    const Value number = ToNumber(cell, context_.marks);
    if (number.IsError()) return number;
    const double whole = std::trunc(number.AsNumber());
    const bool isThere = whole >= 1 && whole < static_cast<double>(node.children.size());
    return isThere ? Value::Number(whole) : Value::Error(xlerrValue);
  };
  const Value number = EvaluateHeld(*node.children[0]);
  if (!number.IsArray()) {
    const Value chosen = place(number.AsCell());
    return chosen.IsError() ? chosen : EvaluateBranch(node, static_cast<std::size_t>(chosen.AsNumber()));
  }
  std::vector<Value> operands{number};
  for (std::size_t i = 1; i < node.children.size(); ++i) operands.push_back(Hold(EvaluateBranch(node, i)));
  return Broadcast(operands, [&](std::span<const CellView> cells) {
    const Value chosen = place(cells[0]);
    return chosen.IsError() ? chosen : Value::OfCell(cells[static_cast<std::size_t>(chosen.AsNumber())]);
  });
}

}  // namespace qcalc
