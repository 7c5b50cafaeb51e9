#include <algorithm>
#include <cmath>

#include "tests/models/shape/model.h"

namespace qcalc::shape {
namespace {

using CellRow = std::span<const CellView>;

CellView Finite(long double number) {
  const auto narrow = static_cast<double>(number);
  return std::isfinite(narrow) ? CellView::Number(narrow) : CellView::Error(xlerrNum);
}

CellView Total(int function, CellRow cells) {
  std::vector<long double> numbers;
  long double sum = 0, squares = 0, filled = 0;
  double product = 1;
  for (const CellView& cell : cells) {
    if (cell.IsError() && function != 2 && function != 3) return cell;
    if (!cell.IsEmpty()) ++filled;
    if (!cell.IsNumber()) continue;
    numbers.push_back(cell.AsNumber());
    sum += cell.AsNumber();
    product *= cell.AsNumber();
  }
  const std::size_t count = numbers.size();
  const auto divisor = static_cast<long double>(count);
  for (const long double number : numbers) squares += (number - sum / divisor) * (number - sum / divisor);
  std::sort(numbers.begin(), numbers.end());
  if (function == 2) return Finite(divisor);
  if (function == 3) return Finite(filled);
  if (function == 9) return Finite(sum);
  const bool isSample = function == 7 || function == 10;
  if (function == 12 && count == 0) return CellView::Error(xlerrNum);
  if (count == 0 && (function == 4 || function == 5 || function == 6)) return CellView::Number(0);
  if (count == 0 || (isSample && count == 1)) return CellView::Error(xlerrDiv0);
  if (function == 1) return Finite(sum / divisor);
  if (function == 4) return Finite(numbers.back());
  if (function == 5) return Finite(numbers.front());
  if (function == 6) return Finite(product);
  if (function == 12) return Finite((numbers[count / 2] + numbers[(count - 1) / 2]) / 2);
  const long double variance = squares / (isSample ? divisor - 1 : divisor);
  return Finite(function < 10 ? std::sqrt(variance) : variance);
}

bool HoldsNumber(CellRow cells) {
  return std::any_of(cells.begin(), cells.end(), [](const CellView& c) { return c.IsNumber() || c.IsError(); });
}

/// `by`: 0 one value, 1 a row of totals a function, 2 a column.
Value Aggregated(const FieldCall& call, const Grid& functions, int by, std::size_t selectors) {
  if (by < 0 || by > 2) return Told(XTEXT("#ERROR: Expected one of 0, 1, 2 for By"));
  const Slice slice = ReadSlice(call, call.operands[selectors], call.operands[selectors + 1], call.function);
  if (slice.failure) return *slice.failure;
  Grid lines = slice.Of(call.Cells(0));
  if (by == 0) lines = {1, lines.rows * lines.columns, lines.cells};
  if (by == 1) lines = lines.Turned();
  const auto totals = Grid::Of(static_cast<std::int32_t>(functions.cells.size()), lines.rows,
                               [&](std::int32_t function, std::int32_t line) {
                                 const CellView& one = functions.cells[static_cast<std::size_t>(function)];
                                 return Total(static_cast<int>(one.AsNumber()), lines.Row(line));
                               });
  return (by == 2 ? totals.Turned() : totals).Result();
}

/// The cells and the totals of their rows, or of their columns, which are rows of what is turned.
Value WithTotals(const FieldCall& call, int function, bool isAcross) {
  const CellView label = call.Cell(2, CellView::Text(XTEXT("Total")));
  const Slice slice = ReadSlice(call, Value::Missing(), isAcross ? call.operands[3] : Value::Missing(), call.function);
  if (slice.failure) return *slice.failure;
  const Grid cells = isAcross ? call.Cells(0) : call.Cells(0).Turned();
  const Grid counted = isAcross ? slice.Of(cells) : cells;
  bool isLabelled = false;
  const Grid result = Grid::Of(cells.rows, cells.columns + 1, [&](std::int32_t row, std::int32_t column) {
    if (column < cells.columns) return cells.At(row, column);
    if (HoldsNumber(counted.Row(row))) return Total(function, counted.Row(row));
    const bool isBlank = isLabelled && !isAcross;
    isLabelled = true;
    return isBlank ? CellView::Text(XTEXT("")) : label;
  });
  return (isAcross ? result : result.Turned()).Result();
}

}  // namespace

Value ExpectedTotals(const FieldCall& call) {
  const auto at = std::find(std::begin(kTotals), std::end(kTotals), call.function) - std::begin(kTotals);
  constexpr double kFunctions[] = {9, 1, 2};
  if (call.Cells(0).rows == 0) return kValueError;
  if (at < 6) return Aggregated(call, {1, 1, {CellView::Number(kFunctions[at % 3])}}, at < 3 ? 1 : 2, 1);
  const Grid functions = call.operands[1].IsMissing() ? Grid{1, 1, {CellView::Number(9)}} : call.Cells(1);
  for (const CellView& function : functions.cells)
    if (function.AsNumber() < 1 || function.AsNumber() >= 13)
      return Told(XTEXT("#ERROR: Expected one of 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 11, 12 for Function"));
  if (at == 8) return Aggregated(call, functions, call.Number(2, 1), 3);
  return WithTotals(call, static_cast<int>(functions.cells[0].AsNumber()), at == 7);
}

}  // namespace qcalc::shape
