#include <algorithm>
#include <cmath>

#include "tests/models/series/model.h"

namespace qcalc::series {
namespace {

enum : std::int32_t { kNone, kEdge, kExtrapolated };

/// Two places among coordinates, and how far from the one to the other a value is.
struct Spot {
  std::size_t from, to;
  long double way;
};

/// Coordinates ascend or descend, and none stands twice. Nothing where a value has no answer.
std::optional<Spot> Locate(const std::vector<long double>& coordinates, long double value, std::int32_t outside) {
  std::vector<std::size_t> order;
  for (std::size_t at = 0; at < coordinates.size(); ++at) {
    if (coordinates[at] == value) return Spot{at, at, 0};
    order.push_back(at);
  }
  if (order.size() < 2) return std::nullopt;
  if (coordinates.back() < coordinates.front()) std::reverse(order.begin(), order.end());
  const std::size_t below = static_cast<std::size_t>(
      std::count_if(coordinates.begin(), coordinates.end(), [&](long double one) { return one < value; }));
  const bool isOutside = below == 0 || below == order.size();
  const std::size_t upper = std::clamp<std::size_t>(below, 1, order.size() - 1);
  const std::size_t from = order[upper - 1], to = order[upper];
  if (isOutside && outside == kNone) return std::nullopt;
  if (isOutside && outside == kEdge) return below == 0 ? Spot{from, from, 0} : Spot{to, to, 0};
  return Spot{from, to, (value - coordinates[from]) / (coordinates[to] - coordinates[from])};
}

/// A figure of what stands at the spots' four corners.
template <typename At>
Figure Between(const Spot& row, const Spot& column, At&& at) {
  long double number = 0, magnitude = 0;
  for (const bool isLower : {false, true})
    for (const bool isRight : {false, true}) {
      const long double down = isLower ? row.way : 1 - row.way, across = isRight ? column.way : 1 - column.way;
      const long double one = at(isLower ? row.to : row.from, isRight ? column.to : column.from);
      number += down * across * one;
      magnitude += (1 + 2 * std::abs(row.way)) * (1 + 2 * std::abs(column.way)) * std::abs(one);
    }
  const bool isHit = row.from == row.to && column.from == column.to;
  return {number, magnitude, isHit ? 0.0L : 8.0L};
}

Expected ExpectedTable(const FieldCall& call) {
  for (std::size_t operand = 0; operand < 3; ++operand)
    if (call.Cells(operand).rows == 0) return kValueError;
  for (const std::size_t operand : {0, 1})
    if (const auto bad =
            BadNumber(call, operand, operand == 0 ? XTEXT("Row_Value") : XTEXT("Column_Value"), XTEXT("number")))
      return *bad;
  if (const auto bad = BadCode(call, 3, 0, 2, XTEXT("Outside"))) return *bad;
  const Grid table = call.Cells(2);
  const auto at = [&](std::size_t row, std::size_t column) -> long double {
    return *NumberIn(table.At(static_cast<std::int32_t>(row), static_cast<std::int32_t>(column)));
  };
  std::vector<long double> rows, columns;
  for (std::size_t row = 1; row < static_cast<std::size_t>(table.rows); ++row) rows.push_back(at(row, 0));
  for (std::size_t column = 1; column < static_cast<std::size_t>(table.columns); ++column)
    columns.push_back(at(0, column));
  const std::int32_t outside = call.Number(3, 0);
  const auto row = Locate(rows, *NumberIn(call.Cell(0, {})), outside);
  const auto column = Locate(columns, *NumberIn(call.Cell(1, {})), outside);
  return Figures(1, 1, [&](std::int32_t, std::int32_t) {
    if (!row || !column) return Figure::None();
    return Between(*row, *column, [&](std::size_t down, std::size_t across) { return at(down + 1, across + 1); });
  });
}

/// From 0; nothing for what names no column of the table.
std::optional<std::int32_t> ColumnOf(const Grid& table, const CellView& selector) {
  if (!selector.IsText()) {
    const auto column = static_cast<std::int32_t>(selector.AsNumber());
    return column >= 1 && column <= table.columns ? std::optional(column - 1) : std::nullopt;
  }
  for (std::int32_t column = 0; column < table.columns; ++column)
    if (EqualsKey(selector, table.At(0, column))) return column;
  return std::nullopt;
}

Expected ExpectedLookups(const FieldCall& call) {
  const Grid table = call.Cells(1);
  if (call.operands[0].IsMissing() || table.rows == 0) return kValueError;
  // One value alone is what Excel reads in it.
  if (!call.operands[0].IsArray())
    if (const auto bad = BadNumber(call, 0, XTEXT("Lookup_Values"), XTEXT("number"))) return *bad;
  const Numbers values = ReadNumbers(call, 0, XTEXT("Lookup_Values"));
  if (values.failure) return *values.failure;
  if (const auto bad = BadCode(call, 4, 0, 2, XTEXT("Outside"))) return *bad;
  const Grid selectors = call.operands[2].IsMissing() ? Grid{1, 1, {CellView::Number(2)}} : call.Cells(2);
  const CellView lookup = call.Cell(3, CellView::Number(1));
  std::int32_t header = lookup.IsText();
  std::vector<std::int32_t> columns;
  for (const CellView& selector : selectors.cells) {
    if (selector.IsText()) header = 1;
    const auto column = ColumnOf(table, selector);
    if (!column) return kValueError;
    columns.push_back(*column);
  }
  const auto key = ColumnOf(table, lookup);
  if (!key) return kValueError;
  std::vector<long double> coordinates;
  for (std::int32_t row = header; row < table.rows; ++row) coordinates.push_back(*NumberIn(table.At(row, *key)));
  return Figures(static_cast<std::int32_t>(values.cells.cells.size()), static_cast<std::int32_t>(columns.size()),
                 [&](std::int32_t value, std::int32_t column) {
                   const auto row = Locate(coordinates, values.cells.cells[static_cast<std::size_t>(value)].AsNumber(),
                                           call.Number(4, 0));
                   if (!row) return Figure::None();
                   return Between(*row, {0, 0, 0}, [&](std::size_t down, std::size_t) -> long double {
                     return *NumberIn(
                         table.At(static_cast<std::int32_t>(down) + header, columns[static_cast<std::size_t>(column)]));
                   });
                 });
}

}  // namespace

Expected ExpectedGini(const FieldCall& call) {
  const Grid cells = call.Cells(0);
  if (cells.rows == 0) return kValueError;
  std::vector<long double> numbers;
  for (const CellView& cell : cells.cells) {
    if (cell.IsError()) return Value::OfCell(cell);
    if (cell.IsNumber()) numbers.push_back(cell.AsNumber());
  }
  std::sort(numbers.begin(), numbers.end());
  long double sum = 0, weighted = 0;
  const auto count = static_cast<long double>(numbers.size());
  for (std::size_t at = 0; at < numbers.size(); ++at) {
    sum += numbers[at];
    weighted += (2 * static_cast<long double>(at + 1) - count - 1) * numbers[at];
  }
  if (!numbers.empty() && numbers.front() < 0) return Value::Error(xlerrNum);
  if (sum == 0) return Value::Error(xlerrDiv0);
  return Figures(1, 1, [&](std::int32_t, std::int32_t) { return Figure(weighted / (count * sum), 1, 16); });
}

Expected ExpectedInterpolation(const FieldCall& call) {
  return call.function == XTEXT("LINTERP2D") ? ExpectedTable(call) : ExpectedLookups(call);
}

}  // namespace qcalc::series
