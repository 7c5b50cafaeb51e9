// HLOOKUP, LOOKUP, MATCH, VLOOKUP.

#include "host/calculation/builtins/lookup_table.h"

namespace qcalc {

Value FaultOfKey(const CellView& key) {
  if (key.IsError()) return Value::OfCell(key);
  return key.IsText() && key.AsText().size() > kMaxLookupText ? Value::Error(xlerrValue) : Value();
}

namespace {

// Left empty behind its comma it is 0, a boolean 1 or 0; what is no number gives #REF!, of which neither that nor the
// former is sure for every version of Excel.
Value ReadMatchType(const CellView& cell, NumberMarks marks, LookupOrder& order) {
  const Value number = ToNumber(cell, marks);
  if (number.IsError()) return Value::Error(xlerrRef);
  order = number.AsNumber() > 0   ? LookupOrder::kAscending
          : number.AsNumber() < 0 ? LookupOrder::kDescending
                                  : LookupOrder::kUnsorted;
  return {};
}

Value CallMatch(const BuiltinCall& call) {
  const LookupTable table(call.operands[1], *call.context.workbooks);
  const CellLine line = table.OnlyLine();
  const Value operands[] = {ScalarOperand(call, 0),
                            call.operands.size() > 2 ? ScalarOperand(call, 2) : Value::Number(1)};
  return Broadcast(operands, [&](std::span<const CellView> cells) {
    if (Value fault = FaultOfKey(cells[0]); fault.IsError()) return fault;
    if (table.Fault().IsError()) return table.Fault();
    LookupOrder order{};
    if (Value fault = ReadMatchType(cells[1], call.context.marks, order); fault.IsError()) return fault;
    const auto place = table.IsLine() ? FindInLine(EmptyAsZero(cells[0]), line, order) : std::nullopt;
    return place ? Value::Number(*place + 1) : Value::Error(xlerrNA);
  });
}

// TRUE and FALSE may be written as texts, but no number may.
Value ReadRangeLookup(const CellView& cell, LookupOrder& order) {
  const Value truth = ToBoolean(cell);
  if (truth.IsError()) return truth;
  order = truth.AsBoolean() ? LookupOrder::kAscending : LookupOrder::kUnsorted;
  return {};
}

// The answer in that row of the table, or of a table that lies across in that column; its place, counted from 1, is cut
// off. A text that is no number gives #VALUE!, where Excel once gave #REF!. An empty cell is answered as an empty
// value, which a cell shows as 0 and a text takes for "".
template <bool liesAcross>
Value Answer(const LookupTable& table, std::int32_t found, const CellView& placeCell, NumberMarks marks) {
  const Value place = ToNumber(placeCell, marks);
  if (place.IsError()) return place;
  if (place.AsNumber() < 1) return Value::Error(xlerrValue);
  if (place.AsNumber() >= (liesAcross ? table.Rows() : table.Columns()) + 1.0) return Value::Error(xlerrRef);
  const auto line = static_cast<std::int32_t>(place.AsNumber()) - 1;
  return Value::OfCell((liesAcross ? table.Row(line) : table.Column(line)).At(found));
}

// The search comes before the place is looked at: where both fail it is #N/A (old recordings; not sure for today).
template <bool liesAcross>
Value CallTableLookup(const BuiltinCall& call) {
  const LookupTable table(call.operands[1], *call.context.workbooks);
  const CellLine keys = liesAcross ? table.Row(0) : table.Column(0);
  const Value operands[] = {ScalarOperand(call, 0), ScalarOperand(call, 2),
                            call.operands.size() > 3 ? ScalarOperand(call, 3) : Value::Boolean(true)};
  return Broadcast(operands, [&](std::span<const CellView> cells) {
    if (Value fault = FaultOfKey(cells[0]); fault.IsError()) return fault;
    if (table.Fault().IsError()) return table.Fault();
    LookupOrder order{};
    if (Value fault = ReadRangeLookup(cells[2], order); fault.IsError()) return fault;
    const auto found = FindInLine(EmptyAsZero(cells[0]), keys, order);
    return found ? Answer<liesAcross>(table, *found, cells[1], call.context.marks) : Value::Error(xlerrNA);
  });
}

// In ascending keys. Without a third operand the keys are the first column and the answers the last, or of a table that
// is wider than high the rows.
Value CallLookup(const BuiltinCall& call) {
  const LookupTable table(call.operands[1], *call.context.workbooks);
  const bool hasAnswers = call.operands.size() > 2;
  const LookupTable answers(call.operands[hasAnswers ? 2 : 1], *call.context.workbooks);
  const bool isWide = table.Columns() > table.Rows();
  const CellLine keys = isWide ? table.Row(0) : table.Column(0);
  const CellLine results = hasAnswers ? answers.OnlyLine()
                           : isWide   ? table.Row(table.Rows() - 1)
                                      : table.Column(table.Columns() - 1);
  const Value operands[] = {ScalarOperand(call, 0)};
  return Broadcast(operands, [&](std::span<const CellView> cells) {
    if (Value fault = FaultOfKey(cells[0]); fault.IsError()) return fault;
    if (table.Fault().IsError()) return table.Fault();
    if (answers.Fault().IsError()) return answers.Fault();
    if (hasAnswers && !answers.IsLine()) return Value::Error(xlerrNA);
    const auto found = FindInLine(EmptyAsZero(cells[0]), keys, LookupOrder::kAscending);
    return found && *found < results.Size() ? Value::OfCell(results.At(*found)) : Value::Error(xlerrNA);
  });
}

constexpr Builtin kLookupBuiltins[] = {{XTEXT("HLOOKUP"), 3, 4, CallTableLookup<true>, "vrv"},
                                       {XTEXT("LOOKUP"), 2, 3, CallLookup, "vaa"},
                                       {XTEXT("MATCH"), 2, 3, CallMatch, "vrv"},
                                       {XTEXT("VLOOKUP"), 3, 4, CallTableLookup<false>, "vrv"}};

}  // namespace

std::span<const Builtin> LookupBuiltins() { return kLookupBuiltins; }

}  // namespace qcalc
