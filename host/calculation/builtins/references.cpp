// COLUMNS, INDEX, ROWS.
#include <utility>

#include "host/calculation/broadcast.h"
#include "host/calculation/builtins/builtin.h"

namespace qcalc {

namespace {

// Rows and columns of a reference or an array; 1 x 1 for a single value.
struct Size {
  std::int32_t rows = 1;
  std::int32_t columns = 1;
};

Size SizeOf(const Value& value) {
  if (value.IsArray()) return {value.AsArray()->Rows(), value.AsArray()->Columns()};
  if (!value.IsReference()) return {};
  const Area& area = value.AsReference().areas[0];
  return {area.Rows(), area.Columns()};
}

bool IsUnion(const Value& value) { return value.IsReference() && value.AsReference().areas.size() > 1; }

Value CallRows(const BuiltinCall& call) {
  const Value& operand = call.operands[0];
  if (operand.IsError()) return operand;
  if (operand.IsMissing()) return Value::Error(xlerrValue);
  return IsUnion(operand) ? Value::Error(xlerrRef) : Value::Number(SizeOf(operand).rows);
}

Value CallColumns(const BuiltinCall& call) {
  const Value& operand = call.operands[0];
  if (operand.IsError()) return operand;
  if (operand.IsMissing()) return Value::Error(xlerrValue);
  return IsUnion(operand) ? Value::Error(xlerrRef) : Value::Number(SizeOf(operand).columns);
}

// The part that INDEX asks for; a row or column of 0 means all of them.
Area PartOf(std::int32_t row, std::int32_t column, const Size& size) {
  return {row == 0 ? 0 : row - 1, row == 0 ? size.rows - 1 : row - 1, column == 0 ? 0 : column - 1,
          column == 0 ? size.columns - 1 : column - 1};
}

}  // namespace

Value TakePart(const Value& source, const Area& part) {
  if (source.IsReference()) {
    const Reference& whole = source.AsReference();
    const Area& area = whole.areas[0];
    return Value::OfReference({whole.sheet,
                               {{area.firstRow + part.firstRow, area.firstRow + part.lastRow,
                                 area.firstColumn + part.firstColumn, area.firstColumn + part.lastColumn}}});
  }
  if (!source.IsArray()) return source;
  const Array& array = *source.AsArray();
  if (part.IsOneCell()) return Value::OfCell(array.At(part.firstRow, part.firstColumn));
  ArrayBuilder builder(part.Rows(), part.Columns());
  builder.ShareTextsOf(array);
  for (std::int32_t row = 0; row < part.Rows(); ++row)
    for (std::int32_t column = 0; column < part.Columns(); ++column)
      builder.SetShared(row, column, array.At(part.firstRow + row, part.firstColumn + column));
  return Value::OfArray(builder.Finish());
}

namespace {

Value IndexAt(const Value& source, bool columnGiven, const CellView& rowCell, const CellView& columnCell,
              NumberMarks marks) {
  std::int32_t row = 0, column = 0;
  if (Value fault = ToWholeNumber(rowCell, marks, row); fault.IsError()) return fault;
  if (Value fault = ToWholeNumber(columnCell, marks, column); fault.IsError()) return fault;
  if (row < 0 || column < 0) return Value::Error(xlerrValue);
  const Size size = SizeOf(source);
  if (!columnGiven && size.rows == 1) {
    // One index counts along a single row.
    std::swap(row, column);
  } else if (!columnGiven && size.columns > 1 && source.IsReference()) {
    return Value::Error(xlerrRef);
  }
  if (row > size.rows || column > size.columns) return Value::Error(xlerrRef);
  return TakePart(source, PartOf(row, column, size));
}

// The area of a union that the fourth operand chooses, or the source as it is.
Value ChooseArea(const BuiltinCall& call) {
  const Value& source = call.operands[0];
  std::int32_t number = 1;
  const Value chosen = ScalarOperand(call, 3);
  if (!chosen.IsMissing()) {
    if (chosen.IsArray()) return Value::Error(xlerrValue);
    if (Value fault = ToWholeNumber(chosen.AsCell(), call.context.marks, number); fault.IsError()) return fault;
  }
  if (number < 1) return Value::Error(xlerrValue);
  const auto index = static_cast<std::size_t>(number - 1);
  if (!source.IsReference()) return index == 0 ? source : Value::Error(xlerrRef);
  const Reference& reference = source.AsReference();
  return index < reference.areas.size() ? Value::OfReference({reference.sheet, {reference.areas[index]}})
                                        : Value::Error(xlerrRef);
}

Value CallIndex(const BuiltinCall& call) {
  const Value source = ChooseArea(call);
  if (source.IsError()) return source;
  const bool columnGiven = call.operands.size() > 2;
  const Value indices[] = {ScalarOperand(call, 1), ScalarOperand(call, 2)};
  if (!indices[0].IsArray() && !indices[1].IsArray())
    return IndexAt(source, columnGiven, indices[0].AsCell(), indices[1].AsCell(), call.context.marks);
  return Broadcast(indices, [&](std::span<const CellView> cells) {
    const Value part =
        Dereference(IndexAt(source, columnGiven, cells[0], cells[1], call.context.marks), *call.context.workbooks);
    return part.IsArray() ? Value::OfCell(part.AsArray()->At(0, 0)) : part;
  });
}

constexpr Builtin kReferenceBuiltins[] = {{XTEXT("COLUMNS"), 1, 1, CallColumns, "r"},
                                          {XTEXT("INDEX"), 2, 4, CallIndex, "rv"},
                                          {XTEXT("ROWS"), 1, 1, CallRows, "r"}};

}  // namespace

std::span<const Builtin> ReferenceBuiltins() { return kReferenceBuiltins; }

}  // namespace qcalc
