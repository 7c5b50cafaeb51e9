// Where cells are: ADDRESS, AREAS, COLUMN, INDIRECT, OFFSET, ROW.
#include <string>

#include "host/calculation/builtins/builtin.h"
#include "host/formulas/formula.h"
#include "host/formulas/formula_node.h"
#include "host/formulas/r1c1_text.h"
#include "host/formulas/reference_text.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"

namespace qcalc {

namespace {

// The numbers of the rows or columns of the operand, or of the calling cells.
template <bool isRow>
Value CallLines(const BuiltinCall& call) {
  const Value* operand = call.operands.empty() || call.operands[0].IsMissing() ? nullptr : &call.operands[0];
  if (operand && operand->IsError()) return *operand;
  if (operand && !operand->IsReference()) return Value::Error(xlerrValue);
  const Reference& reference = operand ? operand->AsReference() : call.context.caller;
  if (reference.areas.size() != 1) return Value::Error(operand ? xlerrRef : xlerrValue);
  const Area& area = reference.areas[0];
  const std::int32_t first = isRow ? area.firstRow : area.firstColumn, count = isRow ? area.Rows() : area.Columns();
  if (count == 1) return Value::Number(first + 1);
  ArrayBuilder builder(isRow ? count : 1, isRow ? 1 : count);
  double number = first;
  for (CellView& cell : builder.Cells()) cell = CellView::Number(++number);
  return Value::OfArray(builder.Finish());
}

Value CallAreas(const BuiltinCall& call) {
  const Value& operand = call.operands[0];
  if (operand.IsError()) return operand;
  return operand.IsReference() ? Value::Number(static_cast<double>(operand.AsReference().areas.size()))
                               : Value::Error(xlerrValue);
}

// One part of an address: relative ones stand in brackets in the one style, absolute ones behind a mark in the other.
std::string PartOfAddress(const std::string& part, bool isAbsolute, const char* letter) {
  if (!letter) return (isAbsolute ? "$" : "") + part;
  return letter + (isAbsolute ? part : "[" + part + "]");
}

// 1: both parts absolute, 2: the row, 3: the column, 4: none.
Value CallAddress(const BuiltinCall& call) {
  std::vector<Value> operands = ScalarOperands(call, 2, {1, 1});
  const bool hasSheet = operands.size() > 4 && !operands[4].IsMissing();
  // Left empty behind their commas, kind and style are what they are when they are left out.
  for (std::size_t i = 2; i < 4; ++i)
    if (operands[i].IsMissing()) operands[i] = Value::Number(1);
  return Broadcast(operands, [&](std::span<const CellView> cells) {
    std::int32_t row = 0, column = 0, kind = 0;
    for (const auto& [cell, whole] : {std::pair{cells[0], &row}, {cells[1], &column}, {cells[2], &kind}})
      if (Value fault = ToWholeNumber(cell, call.context.marks, *whole); fault.IsError()) return fault;
    const Value isA1 = ToBoolean(cells[3]);
    if (isA1.IsError()) return isA1;
    if (kind < 1 || kind > 4 || row < 1 || row > kXlMaxRows || column < 1 || column > kXlMaxColumns)
      return Value::Error(xlerrValue);
    const bool rowIsAbsolute = kind <= 2, columnIsAbsolute = kind == 1 || kind == 3;
    std::string address;
    if (isA1.AsBoolean()) {
      const std::string wholeColumn = AreaToText({0, kXlMaxRows - 1, column - 1, column - 1});
      address = PartOfAddress(wholeColumn.substr(0, wholeColumn.find(':')), columnIsAbsolute, nullptr) +
                PartOfAddress(std::to_string(row), rowIsAbsolute, nullptr);
    } else {
      address = PartOfAddress(std::to_string(row), rowIsAbsolute, "R") +
                PartOfAddress(std::to_string(column), columnIsAbsolute, "C");
    }
    if (hasSheet) {
      const Value sheet = ToText(cells[4], call.context.marks);
      if (sheet.IsError()) return sheet;
      address = (sheet.AsText().empty() ? "" : QualifiedSheetName(sheet.AsText())) + "!" + address;
    }
    return TextResult(*FromUtf8(address));
  });
}

// Reads a size of OFFSET: left out it is the reference's own, and negative it reaches back from the first cell.
Value ReadExtent(const BuiltinCall& call, std::size_t index, std::int32_t& first, std::int32_t& last) {
  const Value operand = ScalarOperand(call, index);
  if (operand.IsMissing()) return {};
  if (operand.IsArray()) return Value::Error(xlerrValue);
  std::int32_t extent = 0;
  if (Value fault = ToWholeNumber(operand.AsCell(), call.context.marks, extent); fault.IsError()) return fault;
  if (extent == 0 || std::abs(extent) > kXlMaxRows) return Value::Error(xlerrRef);
  last = extent > 0 ? first + extent - 1 : first;
  first = extent > 0 ? first : first + extent + 1;
  return {};
}

Value CallOffset(const BuiltinCall& call) {
  const Value& start = call.operands[0];
  if (start.IsError()) return start;
  if (!start.IsReference() || start.AsReference().areas.size() > 1) return Value::Error(xlerrValue);
  std::int32_t moves[2] = {};
  for (std::size_t i = 0; i < 2; ++i) {
    const Value operand = ScalarOperand(call, i + 1);
    if (operand.IsArray()) return Value::Error(xlerrValue);
    if (Value fault = ToWholeNumber(operand.AsCell(), call.context.marks, moves[i]); fault.IsError()) return fault;
    if (std::abs(moves[i]) > kXlMaxRows) return Value::Error(xlerrRef);
  }
  Area area = start.AsReference().areas[0];
  area = Area::OfSize(area.firstRow + moves[0], area.firstColumn + moves[1], area.Rows(), area.Columns());
  if (Value fault = ReadExtent(call, 3, area.firstRow, area.lastRow); fault.IsError()) return fault;
  if (Value fault = ReadExtent(call, 4, area.firstColumn, area.lastColumn); fault.IsError()) return fault;
  return area.IsOnSheet() ? Value::OfReference({start.AsReference().sheet, {area}}) : Value::Error(xlerrRef);
}

Value ReferenceTo(const ReferenceText& text, const CellShift& shift, const EvaluationContext& context) {
  const Sheet* sheet = context.workbooks->FindSheet(text.book, text.sheet, context.sheet);
  return sheet ? Value::OfReference({sheet->Id(), {text.At(shift)}}) : Value::Error(xlerrRef);
}

// The cells that a name of the book stands for, or one of its tables or a part of that. What a name would have to
// calculate first is none to Excel here.
Value CellsNamed(std::string_view text, const EvaluationContext& context) {
  const auto parsed = ParseFormula(text, FormulaDialect::kBook);
  if (!parsed) return Value::Error(xlerrRef);
  const FormulaNode& node = parsed->Root();
  const Sheet* sheet = context.workbooks->FindSheet(node.reference.book, node.reference.sheet, context.sheet);
  if (!sheet) return Value::Error(xlerrRef);
  TableReference reference{.table = node.name, .hasData = true};
  if (node.kind == FormulaNode::Kind::kName) {
    if (const Formula* formula = sheet->ItsBook().Names().Find(node.name, sheet->Id())) {
      if (formula->Root().kind != FormulaNode::Kind::kReference) return Value::Error(xlerrRef);
      const Area caller = context.caller.areas.empty() ? Area() : context.caller.areas[0];
      return ReferenceTo(formula->Root().reference, formula->Shift().Plus(caller.firstRow, caller.firstColumn),
                         context);
    }
  } else if (node.kind == FormulaNode::Kind::kTable) {
    reference = *node.table;
  }
  const Table* table = sheet->ItsBook().ItsTables().Find(reference.table);
  return table ? CellsOfTable(*table, reference, context) : Value::Error(xlerrRef);
}

// The reference that a text names: by its cells, or by a name that stands for some.
Value ReferenceNamed(const XString& name, bool isA1, const EvaluationContext& context) {
  const std::string text = ToUtf8(name);
  std::optional<ReferenceText> reference;
  if (!isA1) {
    const bool isCalled = !context.caller.areas.empty();
    reference = ParseR1C1(text, isCalled ? context.caller.areas[0] : Area());
  } else if (auto parsed = ParseReference(text)) {
    reference = *parsed;
  }
  if (reference) return ReferenceTo(*reference, {}, context);
  if (context.names)
    if (const auto found = context.names->find(FoldCase(name)); found != context.names->end())
      if (found->second.IsReference()) return found->second;
  return CellsNamed(text, context);
}

Value CallIndirect(const BuiltinCall& call) {
  const Value text = ScalarOperand(call, 0), style = ScalarOperand(call, 1);
  if (text.IsArray() || style.IsArray()) return Value::Error(xlerrValue);
  const Value name = ToText(text.AsCell(), call.context.marks);
  if (name.IsError()) return name;
  const Value isA1 = call.operands.size() > 1 ? ToBoolean(style.AsCell()) : Value::Boolean(true);
  return isA1.IsError() ? isA1 : ReferenceNamed(name.AsText(), isA1.AsBoolean(), call.context);
}

constexpr Builtin kPlaceBuiltins[] = {
    {XTEXT("ADDRESS"), 2, 5, CallAddress},           {XTEXT("AREAS"), 1, 1, CallAreas, "r"},
    {XTEXT("COLUMN"), 0, 1, CallLines<false>, "r"},  {XTEXT("INDIRECT"), 1, 2, CallIndirect, "v", true},
    {XTEXT("OFFSET"), 3, 5, CallOffset, "rv", true}, {XTEXT("ROW"), 0, 1, CallLines<true>, "r"}};

}  // namespace

std::span<const Builtin> PlaceBuiltins() { return kPlaceBuiltins; }

}  // namespace qcalc
