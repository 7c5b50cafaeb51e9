#include "host/calculation/evaluator.h"

#include <utility>

#include "host/calculation/broadcast.h"
#include "host/calculation/builtins/builtin.h"
#include "host/calculation/excel_functions.h"
#include "host/calculation/formula_operators.h"
#include "host/formulas/formula_node.h"
#include "host/process/journal.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/values/conversion.h"

namespace qcalc {

namespace {

bool IsIf(XStringView name) { return EqualsIgnoringCase(name, XTEXT("IF")); }

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

// Evaluates nodes in one context; nesting in the formula is the only recursion.
class Evaluator {
 public:
  explicit Evaluator(const EvaluationContext& context, UnknownNames* unknown = nullptr)
      : context_(context), unknown_(unknown) {}

  Value Evaluate(const FormulaNode& node) {
    switch (node.kind) {
      case FormulaNode::Kind::kConstant:
        return node.constant;
      case FormulaNode::Kind::kReference:
        return EvaluateReference(node.reference);
      case FormulaNode::Kind::kName:
        return EvaluateName(node);
      case FormulaNode::Kind::kCall:
        return EvaluateCall(node);
      case FormulaNode::Kind::kUnary:
        return ApplyUnary(node.op, EvaluateHeld(*node.children[0]), context_.marks);
      case FormulaNode::Kind::kBinary:
        return EvaluateChain(node);
      case FormulaNode::Kind::kUnion:
      case FormulaNode::Kind::kRange:
        return EvaluateCombined(node);
    }
    return {};
  }

  const AddinFunction* FindAddinFunction(const FormulaNode& node) const {
    if (node.kind != FormulaNode::Kind::kCall || !context_.addin || IsIf(node.name) || FindBuiltin(node.name))
      return nullptr;
    return context_.addin->Find(node.name);
  }

  PreparedCall Prepare(const FormulaNode& node, const AddinFunction& function) {
    if (node.children.size() > function.operands.size())
      Refuse(node, "takes at most " + std::to_string(function.operands.size()) + " arguments, found " +
                       std::to_string(node.children.size()));
    PreparedCall call{&function, {}, std::nullopt};
    for (const auto& child : node.children) AddOperand(call, Evaluate(*child), context_);
    call.operands.resize(function.operands.size(), Value::Missing());
    return call;
  }

 private:
  Value EvaluateReference(const ReferenceText& text) const {
    const Sheet* sheet = text.sheet.empty() && text.book.empty()
                             ? context_.sheet
                             : context_.workbooks->FindSheet(text.book, text.sheet, context_.sheet);
    if (sheet) return Value::OfReference({sheet->Id(), {text.area}});
    Note(UnknownNames::Kind::kSheet, text.book.empty() ? text.sheet : FullSheetName(text.book, text.sheet));
    return Value::Error(xlerrRef);
  }

  Value EvaluateName(const FormulaNode& node) const {
    if (context_.names)
      if (const auto found = context_.names->find(FoldCase(node.name)); found != context_.names->end())
        return found->second;
    Note(UnknownNames::Kind::kName, node.name);
    return Value::Error(xlerrName);
  }

  void Note(UnknownNames::Kind kind, XStringView name) const {
    if (unknown_) unknown_->Note(kind, name);
  }

  // What a reference holds, once all of it is calculated.
  Value Hold(Value value) const {
    if (!value.IsReference()) return value;
    CheckCalculated(value.AsReference(), *context_.workbooks);
    return Dereference(value, *context_.workbooks);
  }

  Value EvaluateHeld(const FormulaNode& node) { return Hold(Evaluate(node)); }

  // Walks a chain of operators from its left end.
  Value EvaluateChain(const FormulaNode& node) {
    std::vector<const FormulaNode*> chain;
    const FormulaNode* first = &node;
    for (; first->kind == FormulaNode::Kind::kBinary; first = first->children[0].get()) chain.push_back(first);
    Value left = EvaluateHeld(*first);
    for (auto link = chain.rbegin(); link != chain.rend(); ++link)
      left = ApplyBinary((*link)->op, left, EvaluateHeld(*(*link)->children[1]), context_.marks);
    return left;
  }

  // A union lists the areas of its parts, a range spans them. Parts lie on one sheet.
  Value EvaluateCombined(const FormulaNode& node) {
    Reference result;
    for (const auto& child : node.children) {
      const Value part = Evaluate(*child);
      if (part.IsError()) return part;
      if (!part.IsReference() || (result.sheet != 0 && result.sheet != part.AsReference().sheet))
        return Value::Error(xlerrValue);
      result.sheet = part.AsReference().sheet;
      result.areas.insert(result.areas.end(), part.AsReference().areas.begin(), part.AsReference().areas.end());
    }
    if (node.kind == FormulaNode::Kind::kRange) {
      Area span = result.areas[0];
      for (const Area& area : result.areas) span = span.Around(area);
      result.areas = {span};
    }
    return Value::OfReference(std::move(result));
  }

  Value EvaluateCall(const FormulaNode& node) {
    if (IsIf(node.name)) return EvaluateIf(node);
    if (const Builtin* builtin = FindBuiltin(node.name)) return CallBuiltinNode(node, *builtin);
    const AddinFunction* function = FindAddinFunction(node);
    if (!function) {
      if (FindExcelFunction(node.name)) Refuse(node, "is a function of Excel that this host does not offer");
      Note(UnknownNames::Kind::kFunction, node.name);
      return Value::Error(xlerrName);
    }
    const PreparedCall call = Prepare(node, *function);
    return call.refused ? *call.refused : context_.addin->Call(*function, call.operands, context_);
  }

  Value CallBuiltinNode(const FormulaNode& node, const Builtin& builtin) {
    CheckCount(node, builtin.leastOperands, builtin.mostOperands);
    std::vector<Value> operands;
    for (const auto& child : node.children) {
      operands.push_back(Evaluate(*child));
      if (operands.back().IsReference()) CheckCalculated(operands.back().AsReference(), *context_.workbooks);
    }
    return builtin.call({operands, context_});
  }

  // A branch that is left empty is 0, a third argument left out FALSE. Only the branch taken is evaluated, and it may
  // be a reference; a condition with several elements evaluates both and chooses by element.
  Value EvaluateIf(const FormulaNode& node) {
    CheckCount(node, 2, 3);
    const auto branch = [&](std::size_t index) {
      if (index >= node.children.size()) return Value::Boolean(false);
      Value value = Evaluate(*node.children[index]);
      return value.IsMissing() ? Value::Number(0) : value;
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

  const EvaluationContext& context_;
  UnknownNames* unknown_;
};

}  // namespace

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
    return Evaluator(context, unknown).Evaluate(formula.Root());
  } catch (const std::length_error& error) {
    throw FormulaError(error.what());
  }
}

std::optional<PreparedCall> PrepareOutermostCall(const Formula& formula, const EvaluationContext& context) {
  Evaluator evaluator(context);
  const FormulaNode* outermost = nullptr;
  VisitNodes(formula.Root(), [&](const FormulaNode& node) {
    if (!outermost && evaluator.FindAddinFunction(node)) outermost = &node;
  });
  if (!outermost) return std::nullopt;
  try {
    return evaluator.Prepare(*outermost, *evaluator.FindAddinFunction(*outermost));
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
