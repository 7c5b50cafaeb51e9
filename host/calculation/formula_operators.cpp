#include "host/calculation/formula_operators.h"

#include <cmath>
#include <span>

#include "host/calculation/broadcast.h"
#include "host/calculation/power.h"
#include "host/values/conversion.h"
#include "host/values/value_order.h"

namespace qcalc {

namespace {

Value Calculate(FormulaOperator op, double left, double right) {
  switch (op) {
    case FormulaOperator::kAdd:
      return NumberResult(left + right);
    case FormulaOperator::kSubtract:
      return NumberResult(left - right);
    case FormulaOperator::kMultiply:
      return NumberResult(left * right);
    case FormulaOperator::kDivide:
      return right == 0 ? Value::Error(xlerrDiv0) : NumberResult(left / right);
    default:
      return Power(left, right);
  }
}

Value Concatenate(const CellView& left, const CellView& right, NumberMarks marks) {
  const Value l = ToText(left, marks), r = ToText(right, marks);
  if (l.AsText().size() + r.AsText().size() > static_cast<std::size_t>(kXlMaxText)) return Value::Error(xlerrValue);
  return Value::Text(l.AsText() + r.AsText());
}

Value Arithmetic(FormulaOperator op, const CellView& left, const CellView& right, NumberMarks marks) {
  const Value l = ToNumber(left, marks);
  if (l.IsError()) return l;
  const Value r = ToNumber(right, marks);
  return r.IsError() ? r : Calculate(op, l.AsNumber(), r.AsNumber());
}

Value ApplyToCells(FormulaOperator op, const CellView& left, const CellView& right, NumberMarks marks) {
  if (left.IsError()) return Value::OfCell(left);
  if (right.IsError()) return Value::OfCell(right);
  switch (op) {
    case FormulaOperator::kConcatenate:
      return Concatenate(left, right, marks);
    case FormulaOperator::kEqual:
      return Value::Boolean(CompareCells(left, right) == 0);
    case FormulaOperator::kNotEqual:
      return Value::Boolean(CompareCells(left, right) != 0);
    case FormulaOperator::kLess:
      return Value::Boolean(CompareCells(left, right) < 0);
    case FormulaOperator::kLessOrEqual:
      return Value::Boolean(CompareCells(left, right) <= 0);
    case FormulaOperator::kGreater:
      return Value::Boolean(CompareCells(left, right) > 0);
    case FormulaOperator::kGreaterOrEqual:
      return Value::Boolean(CompareCells(left, right) >= 0);
    default:
      return Arithmetic(op, left, right, marks);
  }
}

}  // namespace

Value NumberResult(double number) {
  if (!std::isfinite(number)) return Value::Error(xlerrNum);
  return Value::Number(number == 0 ? 0 : number);
}

Value ApplyUnary(FormulaOperator op, const Value& operand, NumberMarks marks) {
  const auto apply = [op, marks](const CellView& cell) {
    // A plus sign leaves even a text as it is.
    if (op == FormulaOperator::kPlus) return Value::OfCell(cell);
    const Value number = ToNumber(cell, marks);
    if (number.IsError()) return number;
    return NumberResult(op == FormulaOperator::kPercent ? number.AsNumber() / 100 : -number.AsNumber());
  };
  if (!operand.IsArray()) return apply(operand.AsCell());
  return Broadcast(std::span(&operand, 1), [&](std::span<const CellView> cells) { return apply(cells[0]); });
}

Value ApplyBinary(FormulaOperator op, const Value& left, const Value& right, NumberMarks marks) {
  if (!left.IsArray() && !right.IsArray()) return ApplyToCells(op, left.AsCell(), right.AsCell(), marks);
  const Value operands[] = {left, right};
  return Broadcast(
      operands, [op, marks](std::span<const CellView> cells) { return ApplyToCells(op, cells[0], cells[1], marks); });
}

}  // namespace qcalc
