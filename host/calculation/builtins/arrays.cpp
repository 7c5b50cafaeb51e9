// SEQUENCE, TRANSPOSE.
#include "host/calculation/builtins/builtin.h"
#include "host/calculation/formula_operators.h"

namespace qcalc {

namespace {

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

Value CallTranspose(const BuiltinCall& call) {
  const Value operand = ScalarOperand(call, 0);
  if (!operand.IsArray()) return operand.IsMissing() ? Value::Error(xlerrValue) : operand;
  const Array& array = *operand.AsArray();
  ArrayBuilder builder(array.Columns(), array.Rows());
  builder.ShareTextsOf(array);
  for (std::int32_t row = 0; row < array.Rows(); ++row)
    for (std::int32_t column = 0; column < array.Columns(); ++column)
      builder.SetShared(column, row, array.At(row, column));
  return Value::OfArray(builder.Finish());
}

constexpr Builtin kArrayBuiltins[] = {{XTEXT("SEQUENCE"), 1, 4, CallSequence},
                                      {XTEXT("TRANSPOSE"), 1, 1, CallTranspose, "a"}};

}  // namespace

std::span<const Builtin> ArrayBuiltins() { return kArrayBuiltins; }

}  // namespace qcalc
