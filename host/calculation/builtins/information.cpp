// What a value is: ERROR.TYPE, N, NA, TYPE, and the functions that begin with IS.
#include "host/calculation/builtins/builtin.h"

namespace qcalc {

namespace {

using Test = bool (*)(const CellView&);

template <Test test>
Value CallTest(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call),
                   [](std::span<const CellView> cells) { return Value::Boolean(test(cells[0])); });
}

bool IsNa(const CellView& cell) { return cell.IsError() && cell.AsError() == xlerrNA; }
bool IsBlank(const CellView& cell) { return cell.IsEmpty(); }
bool IsError(const CellView& cell) { return cell.IsError(); }
bool IsErrorButNa(const CellView& cell) { return cell.IsError() && !IsNa(cell); }
bool IsLogical(const CellView& cell) { return cell.IsBoolean(); }
bool IsNonText(const CellView& cell) { return !cell.IsText(); }
bool IsNumber(const CellView& cell) { return cell.IsNumber(); }
bool IsText(const CellView& cell) { return cell.IsText(); }

Value CallIsRef(const BuiltinCall& call) { return Value::Boolean(call.operands[0].IsReference()); }

Value CallIsFormula(const BuiltinCall& call) {
  Range range;
  if (Value fault = ReadRange(call.operands[0], *call.context.workbooks, range); fault.IsError()) return fault;
  const Area& area = range.area;
  const auto isFormula = [&](std::int32_t row, std::int32_t column) {
    return Value::Boolean(range.sheet->FindFormula({area.firstRow + row, area.firstColumn + column}) != nullptr);
  };
  if (area.IsOneCell()) return isFormula(0, 0);
  ArrayBuilder builder(area.Rows(), area.Columns());
  for (std::int32_t row = 0; row < area.Rows(); ++row)
    for (std::int32_t column = 0; column < area.Columns(); ++column)
      builder.Set(row, column, isFormula(row, column).AsCell());
  return Value::OfArray(builder.Finish());
}

Value CallN(const BuiltinCall& call) {
  const Value operands[] = {FirstCell(call.operands[0], *call.context.workbooks)};
  return Broadcast(operands, [](std::span<const CellView> cells) {
    const CellView& cell = cells[0];
    if (cell.IsNumber() || cell.IsError()) return Value::OfCell(cell);
    return Value::Number(cell.IsBoolean() && cell.AsBoolean() ? 1 : 0);
  });
}

Value CallNa(const BuiltinCall&) { return Value::Error(xlerrNA); }

Value CallType(const BuiltinCall& call) {
  const Value operand = ScalarOperand(call, 0);
  switch (operand.Kind()) {
    case ValueKind::kText:
      return Value::Number(2);
    case ValueKind::kBoolean:
      return Value::Number(4);
    case ValueKind::kError:
      return Value::Number(16);
    case ValueKind::kArray:
      return Value::Number(64);
    default:
      return Value::Number(1);
  }
}

Value CallErrorType(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [](std::span<const CellView> cells) {
    constexpr std::int32_t kErrors[] = {xlerrNull, xlerrDiv0, xlerrValue,       xlerrRef,   xlerrName,
                                        xlerrNum,  xlerrNA,   xlerrGettingData, kErrorSpill};
    constexpr int kNumberOfCalc = 14;
    if (!cells[0].IsError()) return Value::Error(xlerrNA);
    const std::int32_t code = cells[0].AsError();
    const auto found = std::find(std::begin(kErrors), std::end(kErrors), code);
    if (found != std::end(kErrors)) return Value::Number(static_cast<double>(found - std::begin(kErrors) + 1));
    return code == kErrorCalc ? Value::Number(kNumberOfCalc) : Value::Error(xlerrNA);
  });
}

constexpr Builtin kInformationBuiltins[] = {{XTEXT("ERROR.TYPE"), 1, 1, CallErrorType},
                                            {XTEXT("ISBLANK"), 1, 1, CallTest<IsBlank>},
                                            {XTEXT("ISERR"), 1, 1, CallTest<IsErrorButNa>},
                                            {XTEXT("ISERROR"), 1, 1, CallTest<IsError>},
                                            {XTEXT("ISFORMULA"), 1, 1, CallIsFormula, "r"},
                                            {XTEXT("ISLOGICAL"), 1, 1, CallTest<IsLogical>},
                                            {XTEXT("ISNA"), 1, 1, CallTest<IsNa>},
                                            {XTEXT("ISNONTEXT"), 1, 1, CallTest<IsNonText>},
                                            {XTEXT("ISNUMBER"), 1, 1, CallTest<IsNumber>},
                                            {XTEXT("ISREF"), 1, 1, CallIsRef, "r"},
                                            {XTEXT("ISTEXT"), 1, 1, CallTest<IsText>},
                                            {XTEXT("N"), 1, 1, CallN, "r"},
                                            {XTEXT("NA"), 0, 0, CallNa},
                                            {XTEXT("TYPE"), 1, 1, CallType, "r"}};

}  // namespace

std::span<const Builtin> InformationBuiltins() { return kInformationBuiltins; }

}  // namespace qcalc
