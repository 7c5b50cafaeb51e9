// What SUM and its kin count of their operands, and what they make of it.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>
#include <utility>
#include <vector>

#include "host/calculation/builtins/builtin.h"
#include "host/calculation/formula_operators.h"

namespace qcalc {

/// The error that stands first by rows among cells that come in any order.
class FirstError {
 public:
  void Note(CellPosition position, const CellView& cell) {
    if (code_ && position_ <= position) return;
    position_ = position;
    code_ = cell.AsError();
  }
  /// Empty where there was none.
  Value Result() const { return code_ ? Value::Error(*code_) : Value(); }

 private:
  CellPosition position_;
  std::optional<std::int32_t> code_;
};

/// Calls `visitor(const CellView&)` for each number, text and boolean in an array or a reference, those of a sheet
/// column by column; gives the first error by rows, or empty.
template <typename Visitor>
Value VisitHeld(const Value& operand, const Workbooks& workbooks, Visitor&& visitor) {
  if (operand.IsArray()) {
    std::optional<std::int32_t> error;
    for (const CellView& cell : operand.AsArray()->Cells()) {
      if (cell.IsError())
        error = error.value_or(cell.AsError());
      else if (!cell.IsEmpty())
        visitor(cell);
    }
    return error ? Value::Error(*error) : Value();
  }
  const Sheet* sheet = workbooks.FindSheet(operand.AsReference().sheet);
  if (!sheet) return Value::Error(xlerrRef);
  for (const Area& area : operand.AsReference().areas) {
    FirstError error;
    sheet->VisitUsed(area, [&](std::int32_t row, std::int32_t column, const CellView& cell) {
      if (cell.IsError())
        error.Note({row, column}, cell);
      else
        visitor(cell);
    });
    if (Value fault = error.Result(); fault.IsError()) return fault;
  }
  return {};
}

/// Calls `visitor(double)` for each number that SUM counts of the operand: of arrays and references the numbers alone,
/// of a single value what it converts to. Gives the first error, or empty.
template <typename Visitor>
Value VisitNumbers(const Value& operand, const EvaluationContext& context, Visitor&& visitor) {
  if (operand.IsArray() || operand.IsReference())
    return VisitHeld(operand, *context.workbooks, [&](const CellView& cell) {
      if (cell.IsNumber()) visitor(cell.AsNumber());
    });
  const Value number = ToNumber(operand.AsCell(), context.marks);
  if (number.IsError()) return number;
  visitor(number.AsNumber());
  return {};
}

/// The same for all operands, one after the other up to the first with an error.
template <typename Visitor>
Value VisitNumbers(const BuiltinCall& call, Visitor&& visitor) {
  for (const Value& operand : call.operands)
    if (Value fault = VisitNumbers(operand, call.context, visitor); fault.IsError()) return fault;
  return {};
}

enum class Aggregate { kSum, kAverage, kProduct, kLeast, kGreatest, kSquares };

/// What the numbers of a walk come to: `walk(visitor) -> Value` calls `visitor(double)` and gives an error or empty. Of
/// no numbers the average is #DIV/0!, all else 0.
template <typename Walk>
Value Aggregated(Aggregate kind, Walk&& walk) {
  std::int64_t count = 0;
  const auto gather = [&](double start, auto&& add) {
    double total = start;
    const Value fault = walk([&](double number) {
      ++count;
      total = add(total, number);
    });
    return fault.IsError() ? fault : NumberResult(count > 0 ? total : 0);
  };
  switch (kind) {
    case Aggregate::kProduct:
      return gather(1, [](double total, double number) { return total * number; });
    case Aggregate::kLeast:
      return gather(std::numeric_limits<double>::infinity(),
                    [](double total, double number) { return std::min(total, number); });
    case Aggregate::kGreatest:
      return gather(-std::numeric_limits<double>::infinity(),
                    [](double total, double number) { return std::max(total, number); });
    case Aggregate::kSquares:
      return gather(0, [](double total, double number) { return total + number * number; });
    default:
      break;
  }
  const Value total = gather(0, [](double sum, double number) { return sum + number; });
  if (kind == Aggregate::kSum || total.IsError()) return total;
  return count > 0 ? Value::Number(total.AsNumber() / static_cast<double>(count)) : Value::Error(xlerrDiv0);
}

/// Variance or its root, of a sample or a whole population; #DIV/0! of too few numbers. The mean goes first:
/// differences from it lose less than squares would.
struct Spread {
  bool isOfSample;
  bool isRoot;
};
template <typename Walk>
Value Spreading(const Spread& spread, Walk&& walk) {
  std::vector<double> numbers;
  double total = 0;
  const Value fault = walk([&](double number) {
    numbers.push_back(number);
    total += number;
  });
  if (fault.IsError()) return fault;
  const double count = static_cast<double>(numbers.size()), divisor = spread.isOfSample ? count - 1 : count;
  if (divisor <= 0) return Value::Error(xlerrDiv0);
  double squares = 0;
  for (const double number : numbers) squares += (number - total / count) * (number - total / count);
  const double variance = squares / divisor;
  return NumberResult(spread.isRoot ? std::sqrt(variance) : variance);
}

}  // namespace qcalc
