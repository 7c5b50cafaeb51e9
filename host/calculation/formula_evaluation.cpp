#include "host/calculation/formula_evaluation.h"

#include <algorithm>
#include <utility>

#include "host/calculation/formula_operators.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/values/value_order.h"

namespace qcalc {

namespace {

// A formula nests so deep at most; what the names in it stand for nests deeper.
constexpr int kMostDepth = 3 * kMaxFormulaDepth;

// Whether what remains of the two is below their 15 digits. Excel makes that 0 where it is a formula's last operation,
// as in =0.1+0.2-0.3.
bool Cancels(FormulaOperator op, const Value& left, const Value& right) {
  if ((op != FormulaOperator::kAdd && op != FormulaOperator::kSubtract) || !left.IsNumber() || !right.IsNumber())
    return false;
  const double other = op == FormulaOperator::kAdd ? -right.AsNumber() : right.AsNumber();
  return CompareCells(left.AsCell(), CellView::Number(other)) == 0;
}

}  // namespace

Value FormulaEvaluation::Result(const FormulaNode& root) {
  Value value = Evaluate(root);
  if (!isSingle_) return value;
  if (value.IsReference()) return CutReference(value.AsReference());
  return value.IsArray() ? Value::OfCell(value.AsArray()->At(0, 0)) : value;
}

Value FormulaEvaluation::Evaluate(const FormulaNode& node) {
  if (depth_ >= kMostDepth) throw FormulaError("its names stand for formulas that nest too deep");
  const Temporarily deeper(depth_, depth_ + 1);
  return EvaluateByKind(node);
}

Value FormulaEvaluation::EvaluateByKind(const FormulaNode& node) {
  switch (node.kind) {
    case FormulaNode::Kind::kConstant:
      return node.constant;
    case FormulaNode::Kind::kReference:
      return EvaluateReference(node.reference);
    case FormulaNode::Kind::kTable:
      return EvaluateTable(*node.table);
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
    case FormulaNode::Kind::kIntersection:
      return EvaluateIntersection(node);
    case FormulaNode::Kind::kSpill:
      return EvaluateSpill(node);
    case FormulaNode::Kind::kSingle: {
      const Value value = Evaluate(*node.children[0]);
      if (value.IsReference()) return CutReference(value.AsReference());
      return value.IsArray() ? Value::OfCell(value.AsArray()->At(0, 0)) : value;
    }
    case FormulaNode::Kind::kRefused:
      throw FormulaError(ToUtf8(node.constant.AsText()));
  }
  return {};
}

const Sheet* FormulaEvaluation::FindSheet(const ReferenceText& text) const {
  if (text.sheet.empty() && text.book.empty()) return context_.sheet;
  const Sheet* sheet = context_.workbooks->FindSheet(text.book, text.sheet, context_.sheet);
  if (!sheet) Note(UnknownNames::Kind::kSheet, text.book.empty() ? text.sheet : FullSheetName(text.book, text.sheet));
  return sheet;
}

Value FormulaEvaluation::EvaluateReference(const ReferenceText& text) const {
  const Sheet* sheet = FindSheet(text);
  return sheet ? Value::OfReference({sheet->Id(), {text.At(shift_)}}) : Value::Error(xlerrRef);
}

Value FormulaEvaluation::EvaluateTable(const TableReference& reference) const {
  const Table* table = context_.sheet ? context_.sheet->ItsBook().ItsTables().Find(reference.table) : nullptr;
  if (!table) {
    Note(UnknownNames::Kind::kName, reference.table);
    return Value::Error(xlerrRef);
  }
  return CellsOfTable(*table, reference, context_);
}

// What scripts call so goes first, then a sheet's own names, then the book's, then its tables.
Value FormulaEvaluation::EvaluateName(const FormulaNode& node) {
  const bool isPlain = node.reference.sheet.empty() && node.reference.book.empty();
  if (context_.names && isPlain)
    if (const auto found = context_.names->find(FoldCase(node.name)); found != context_.names->end())
      return found->second;
  const Sheet* sheet = FindSheet(node.reference);
  if (!sheet && !isPlain) return Value::Error(xlerrRef);
  if (sheet) {
    if (const Formula* formula = sheet->ItsBook().Names().Find(node.name, sheet->Id()))
      return EvaluateFormulaOfName(*formula);
    if (sheet->ItsBook().ItsTables().Find(node.name))
      return EvaluateTable(TableReference{.table = node.name, .hasData = true});
  }
  Note(UnknownNames::Kind::kName, node.name);
  return Value::Error(xlerrName);
}

// Element by element in every form, as Excel has it.
Value FormulaEvaluation::EvaluateFormulaOfName(const Formula& formula) {
  if (std::find(openNames_.begin(), openNames_.end(), &formula) != openNames_.end()) return Value::Error(xlerrName);
  if (++namesEvaluated_ > kMostNamesFollowed)
    throw FormulaError("its names stand for too much: more than " + std::to_string(kMostNamesFollowed) +
                       " names in names");
  const CellPosition caller = CallingCell().value_or(CellPosition{});
  const Temporarily shift(shift_, formula.Shift().Plus(caller.row, caller.column));
  const Temporarily form(isSingle_, false);
  openNames_.push_back(&formula);
  Value value = Evaluate(formula.Root());
  openNames_.pop_back();
  return value;
}

void FormulaEvaluation::Note(UnknownNames::Kind kind, XStringView name) const {
  if (unknown_) unknown_->Note(kind, name);
}

std::optional<CellPosition> FormulaEvaluation::CallingCell() const {
  if (context_.caller.areas.empty()) return std::nullopt;
  return CellPosition{context_.caller.areas[0].firstRow, context_.caller.areas[0].firstColumn};
}

std::optional<Area> FormulaEvaluation::CellInLine(const Area& area) const {
  if (area.IsOneCell()) return area;
  const auto caller = CallingCell();
  if (!caller) return std::nullopt;
  const Area cell =
      area.Columns() == 1 ? Area::OfCell(caller->row, area.firstColumn) : Area::OfCell(area.firstRow, caller->column);
  const bool isLine = area.Columns() == 1 || area.Rows() == 1;
  return isLine && area.Contains(cell.firstRow, cell.firstColumn) ? std::optional(cell) : std::nullopt;
}

Value FormulaEvaluation::CutReference(const Reference& reference) const {
  const auto cell = reference.areas.size() == 1 ? CellInLine(reference.areas[0]) : std::nullopt;
  return cell ? Value::OfReference({reference.sheet, {*cell}}) : Value::Error(xlerrValue);
}

Value FormulaEvaluation::ReadWhole(const Sheet& sheet, const Area& area) const {
  if (const auto cell = sheet.FirstUncalculated(area)) throw UncalculatedCell{sheet.Id(), *cell};
  return sheet.Read(area);
}

Value FormulaEvaluation::ReadArea(const Sheet& sheet, Area area) const {
  if (isSingle_) {
    const auto cell = CellInLine(area);
    if (!cell) return Value::Error(xlerrValue);
    area = *cell;
  }
  return ReadWhole(sheet, area);
}

Value FormulaEvaluation::Hold(Value value) const {
  if (!value.IsReference()) return value;
  const Reference& reference = value.AsReference();
  const Sheet* sheet = context_.workbooks->FindSheet(reference.sheet);
  if (!sheet) return Value::Error(xlerrRef);
  if (reference.areas.size() != 1) {
    CheckCalculated(reference, *context_.workbooks);
    return Value::Error(xlerrValue);
  }
  return ReadArea(*sheet, reference.areas[0]);
}

Value FormulaEvaluation::EvaluateHeld(const FormulaNode& node) {
  if (node.kind != FormulaNode::Kind::kReference) return Hold(Evaluate(node));
  const Sheet* sheet = FindSheet(node.reference);
  return sheet ? ReadArea(*sheet, node.reference.At(shift_)) : Value::Error(xlerrRef);
}

// Walks a chain of operators from its left end.
Value FormulaEvaluation::EvaluateChain(const FormulaNode& node) {
  const bool isWhole = depth_ == 1;
  const auto operate = [&](const FormulaNode& link, const Value& left, const Value& right) {
    if (isWhole && &link == &node && Cancels(node.op, left, right)) return Value::Number(0);
    return ApplyBinary(link.op, left, right, context_.marks);
  };
  if (node.children[0]->kind != FormulaNode::Kind::kBinary) {
    const Value left = EvaluateHeld(*node.children[0]);
    return operate(node, left, EvaluateHeld(*node.children[1]));
  }
  std::vector<const FormulaNode*> chain;
  const FormulaNode* first = &node;
  for (; first->kind == FormulaNode::Kind::kBinary; first = first->children[0].get()) chain.push_back(first);
  Value left = EvaluateHeld(*first);
  for (auto link = chain.rbegin(); link != chain.rend(); ++link)
    left = operate(**link, left, EvaluateHeld(*(*link)->children[1]));
  return left;
}

// A union lists the areas of its parts, a range spans them. Parts lie on one sheet.
Value FormulaEvaluation::EvaluateCombined(const FormulaNode& node) {
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

Value FormulaEvaluation::EvaluateIntersection(const FormulaNode& node) {
  const Value left = Evaluate(*node.children[0]);
  if (left.IsError()) return left;
  const Value right = Evaluate(*node.children[1]);
  if (right.IsError()) return right;
  if (!left.IsReference() || !right.IsReference() || left.AsReference().sheet != right.AsReference().sheet)
    return Value::Error(xlerrValue);
  Reference result{left.AsReference().sheet, {}};
  for (const Area& one : left.AsReference().areas)
    for (const Area& other : right.AsReference().areas)
      if (one.Intersects(other))
        result.areas.push_back({std::max(one.firstRow, other.firstRow), std::min(one.lastRow, other.lastRow),
                                std::max(one.firstColumn, other.firstColumn),
                                std::min(one.lastColumn, other.lastColumn)});
  return result.areas.empty() ? Value::Error(xlerrNull) : Value::OfReference(std::move(result));
}

Value FormulaEvaluation::EvaluateSpill(const FormulaNode& node) {
  const Value anchor = Evaluate(*node.children[0]);
  if (anchor.IsError()) return anchor;
  if (!anchor.IsReference() || !anchor.AsReference().IsOneCell()) return Value::Error(xlerrRef);
  const Reference& cell = anchor.AsReference();
  CheckCalculated(cell, *context_.workbooks);
  const Sheet* sheet = context_.workbooks->FindSheet(cell.sheet);
  const FormulaCell* formula =
      sheet ? sheet->FindFormula({cell.areas[0].firstRow, cell.areas[0].firstColumn}) : nullptr;
  if (!formula || formula->form != FormulaForm::kSpilling || !formula->spill) return Value::Error(xlerrRef);
  return Value::OfReference({cell.sheet, {*formula->spill}});
}

}  // namespace qcalc
