// COUNTA, NA, SEQUENCE, SUM.
#include <algorithm>
#include <optional>

#include "host/calculation/builtins/builtin.h"
#include "host/calculation/formula_operators.h"
#include "host/values/conversion.h"

namespace qcalc {

namespace {

// What is not empty counts, "" and errors too; so does an operand left empty behind its comma.
Value CallCounta(const BuiltinCall& call) {
  std::int64_t count = 0;
  for (const Value& operand : call.operands) {
    const Sheet* sheet =
        operand.IsReference() ? call.context.workbooks->FindSheet(operand.AsReference().sheet) : nullptr;
    if (operand.IsArray()) {
      const auto cells = operand.AsArray()->Cells();
      count += std::count_if(cells.begin(), cells.end(), [](const CellView& cell) { return !cell.IsEmpty(); });
    } else if (sheet) {
      for (const Area& area : operand.AsReference().areas)
        sheet->VisitUsed(area, [&](std::int32_t, std::int32_t, const CellView&) { ++count; });
    } else if (!operand.IsEmpty()) {
      ++count;
    }
  }
  return Value::Number(static_cast<double>(count));
}

Value CallNa(const BuiltinCall&) { return Value::Error(xlerrNA); }

// A count of rows or columns: 1 when left out; an empty result with `count` set, else the error.
Value ReadCount(const BuiltinCall& call, std::size_t index, std::int32_t limit, std::int32_t& count) {
  const Value operand = ScalarOperand(call, index);
  count = 1;
  if (operand.IsMissing()) return {};
  if (operand.IsArray()) return Value::Error(xlerrValue);
  if (Value fault = ToWholeNumber(operand.AsCell(), call.context.marks, count); fault.IsError()) return fault;
  if (count == 0) return Value::Error(kErrorCalc);
  return count < 0 || count > limit ? Value::Error(xlerrValue) : Value();
}

Value ReadNumberOr1(const BuiltinCall& call, std::size_t index) {
  const Value operand = ScalarOperand(call, index);
  if (operand.IsMissing()) return Value::Number(1);
  return operand.IsArray() ? Value::Error(xlerrValue) : ToNumber(operand.AsCell(), call.context.marks);
}

Value CallSequence(const BuiltinCall& call) {
  std::int32_t rows = 1, columns = 1;
  if (Value fault = ReadCount(call, 0, kXlMaxRows, rows); fault.IsError()) return fault;
  if (Value fault = ReadCount(call, 1, kXlMaxColumns, columns); fault.IsError()) return fault;
  const Value start = ReadNumberOr1(call, 2), step = ReadNumberOr1(call, 3);
  if (start.IsError()) return start;
  if (step.IsError()) return step;
  ArrayBuilder builder(rows, columns);
  double index = 0;
  for (CellView& cell : builder.Cells()) cell = NumberResult(start.AsNumber() + step.AsNumber() * index++).AsCell();
  return Value::OfArray(builder.Finish());
}

// Adds what SUM counts; remembers the first error.
class Sum {
 public:
  explicit Sum(NumberMarks marks) : marks_(marks) {}

  bool Failed() const { return error_.has_value(); }
  Value Result() const { return error_ ? *error_ : NumberResult(total_); }

  void AddDirect(const Value& value) {
    const Value number = ToNumber(value.AsCell(), marks_);
    if (number.IsError())
      error_ = number;
    else
      total_ += number.AsNumber();
  }

  // Inside arrays and references numbers alone count.
  void AddArray(const Array& array) {
    for (const CellView& cell : array.Cells()) {
      if (cell.IsNumber()) total_ += cell.AsNumber();
      if (cell.IsError() && !error_) error_ = Value::OfCell(cell);
    }
  }

  // Cells come by columns; the error that counts is the first by rows.
  void AddArea(const Sheet& sheet, const Area& area) {
    std::optional<CellPosition> firstError;
    sheet.VisitUsed(area, [&](std::int32_t row, std::int32_t column, const CellView& cell) {
      if (cell.IsNumber()) total_ += cell.AsNumber();
      if (cell.IsError() && (!firstError || CellPosition{row, column} < *firstError)) firstError = {row, column};
    });
    if (firstError && !error_) error_ = Value::OfCell(sheet.Get(firstError->row, firstError->column));
  }

 private:
  NumberMarks marks_;
  double total_ = 0;
  std::optional<Value> error_;
};

Value CallSum(const BuiltinCall& call) {
  Sum sum(call.context.marks);
  for (const Value& operand : call.operands) {
    if (operand.IsArray()) {
      sum.AddArray(*operand.AsArray());
    } else if (operand.IsReference()) {
      const Sheet* sheet = call.context.workbooks->FindSheet(operand.AsReference().sheet);
      if (!sheet) return Value::Error(xlerrRef);
      for (const Area& area : operand.AsReference().areas) sum.AddArea(*sheet, area);
    } else {
      sum.AddDirect(operand);
    }
    if (sum.Failed()) break;
  }
  return sum.Result();
}

constexpr Builtin kBuiltins[] = {{XTEXT("COUNTA"), 1, kXlMaxArguments, CallCounta, "r"},
                                 {XTEXT("NA"), 0, 0, CallNa},
                                 {XTEXT("SEQUENCE"), 1, 4, CallSequence},
                                 {XTEXT("SUM"), 1, kXlMaxArguments, CallSum, "r"}};

}  // namespace

std::span<const Builtin> NumberBuiltins() { return kBuiltins; }

}  // namespace qcalc
