// MATCH, VLOOKUP.

#include "host/calculation/broadcast.h"
#include "host/calculation/builtins/builtin.h"
#include "host/calculation/lookup_search.h"
#include "host/values/conversion.h"

namespace qcalc {

namespace {

// What is searched: cells of a sheet, an array, or a single value.
class Table {
 public:
  // `operand` outlives the table. A single number or boolean is an array of one, a text is refused. (Whether Excel
  // takes single values so is not known but for texts.)
  Table(const Value& operand, const Workbooks& workbooks) {
    if (operand.IsReference()) {
      const Reference& reference = operand.AsReference();
      sheet_ = workbooks.FindSheet(reference.sheet);
      area_ = reference.areas[0];
      if (!sheet_) fault_ = Value::Error(xlerrRef);
      if (reference.areas.size() > 1) fault_ = Value::Error(xlerrValue);
    } else if (operand.IsArray()) {
      array_ = operand.AsArray().get();
      area_ = {0, array_->Rows() - 1, 0, array_->Columns() - 1};
    } else {
      single_ = operand.AsCell();
      if (operand.IsError()) fault_ = operand;
      if (operand.IsText()) fault_ = Value::Error(xlerrValue);
    }
  }

  // An error when nothing can be searched.
  const Value& Fault() const { return fault_; }
  std::int32_t Rows() const { return area_.Rows(); }
  std::int32_t Columns() const { return area_.Columns(); }
  // The column by its place, from 0.
  CellLine Column(std::int32_t column) const {
    const std::int32_t c = area_.firstColumn + column;
    if (sheet_) return {*sheet_, {area_.firstRow, area_.lastRow, c, c}};
    return array_ ? CellLine::ColumnOf(*array_, c) : CellLine(single_);
  }
  CellLine FirstRow() const {
    if (sheet_) return {*sheet_, {area_.firstRow, area_.firstRow, area_.firstColumn, area_.lastColumn}};
    return array_ ? CellLine::RowOf(*array_, 0) : CellLine(single_);
  }

 private:
  const Sheet* sheet_ = nullptr;
  const Array* array_ = nullptr;
  CellView single_;
  Area area_;
  Value fault_;
};

// An error when nothing can be looked up by that value.
Value FaultOfKey(const CellView& key) {
  if (key.IsError()) return Value::OfCell(key);
  return key.IsText() && key.AsText().size() > kMaxLookupText ? Value::Error(xlerrValue) : Value();
}

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
  const Table table(call.operands[1], *call.context.workbooks);
  const CellLine line = table.Rows() == 1 ? table.FirstRow() : table.Column(0);
  const bool isLine = table.Rows() == 1 || table.Columns() == 1;
  const Value operands[] = {ScalarOperand(call, 0),
                            call.operands.size() > 2 ? ScalarOperand(call, 2) : Value::Number(1)};
  return Broadcast(operands, [&](std::span<const CellView> cells) {
    if (Value fault = FaultOfKey(cells[0]); fault.IsError()) return fault;
    if (table.Fault().IsError()) return table.Fault();
    LookupOrder order{};
    if (Value fault = ReadMatchType(cells[1], call.context.marks, order); fault.IsError()) return fault;
    const auto place = isLine ? FindInLine(EmptyAsZero(cells[0]), line, order) : std::nullopt;
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

// The answer in that row of the table; the column, counted from 1, is cut off. A text that is no number gives #VALUE!,
// where Excel once gave #REF!. An empty cell is answered as an empty value, which a cell shows as 0 and a text takes
// for "".
Value Answer(const Table& table, std::int32_t row, const CellView& columnCell, NumberMarks marks) {
  const Value column = ToNumber(columnCell, marks);
  if (column.IsError()) return column;
  if (column.AsNumber() < 1) return Value::Error(xlerrValue);
  if (column.AsNumber() >= table.Columns() + 1.0) return Value::Error(xlerrRef);
  return Value::OfCell(table.Column(static_cast<std::int32_t>(column.AsNumber()) - 1).At(row));
}

// The search comes before the column is looked at: where both fail it is #N/A (old recordings; not sure for today).
Value CallVlookup(const BuiltinCall& call) {
  const Table table(call.operands[1], *call.context.workbooks);
  const CellLine keys = table.Column(0);
  const Value operands[] = {ScalarOperand(call, 0), ScalarOperand(call, 2),
                            call.operands.size() > 3 ? ScalarOperand(call, 3) : Value::Boolean(true)};
  return Broadcast(operands, [&](std::span<const CellView> cells) {
    if (Value fault = FaultOfKey(cells[0]); fault.IsError()) return fault;
    if (table.Fault().IsError()) return table.Fault();
    LookupOrder order{};
    if (Value fault = ReadRangeLookup(cells[2], order); fault.IsError()) return fault;
    const auto row = FindInLine(EmptyAsZero(cells[0]), keys, order);
    return row ? Answer(table, *row, cells[1], call.context.marks) : Value::Error(xlerrNA);
  });
}

constexpr Builtin kBuiltins[] = {{XTEXT("MATCH"), 2, 3, CallMatch, "vrv"},
                                 {XTEXT("VLOOKUP"), 3, 4, CallVlookup, "vrv"}};

}  // namespace

std::span<const Builtin> LookupBuiltins() { return kBuiltins; }

}  // namespace qcalc
