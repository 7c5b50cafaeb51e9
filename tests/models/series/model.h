// Slow and plain models of the moving averages, running totals, roll-forwards, the Gini coefficient and interpolations:
// what a random call must give, worked out in long double from the rules that the help pages state. They share nothing
// with the add-in.
#pragma once

#include <optional>

#include "tests/models/field_calls.h"

namespace qcalc::series {

using models::Expected;
using models::FieldCall;
using models::Grid;

/// Draws the call of a number, which all follows from. What the rules leave open is avoided.
FieldCall DrawAverages(std::uint64_t number);
FieldCall DrawRunning(std::uint64_t number);
FieldCall DrawCorkscrew(std::uint64_t number);
FieldCall DrawGini(std::uint64_t number);
FieldCall DrawInterpolation(std::uint64_t number);

/// What a call must give.
Expected ExpectedAverages(const FieldCall& call);
Expected ExpectedRunning(const FieldCall& call);
Expected ExpectedCorkscrew(const FieldCall& call);
Expected ExpectedGini(const FieldCall& call);
Expected ExpectedInterpolation(const FieldCall& call);

// What the models share.

inline const Value kValueError = Value::Error(xlerrValue);

/// A number of a result. It may be off by so many roundings of the sum of the magnitudes that it is made of; without
/// any it is exact.
struct Figure {
  Figure(long double number = 0, long double magnitude = 0, long double roundings = 0);
  static Figure None() {
    Figure none;
    none.cell = CellView::Error(xlerrNA);
    return none;
  }
  CellView cell;
  CellView off;
};

/// Rows and columns of figures, each as `figure(row, column)` has it.
template <typename Make>
Expected Figures(std::int32_t rows, std::int32_t columns, Make&& figure) {
  std::vector<Figure> all;
  const Grid cells = Grid::Of(
      rows, columns, [&](std::int32_t row, std::int32_t column) { return all.emplace_back(figure(row, column)).cell; });
  auto next = all.begin();
  return {cells, Grid::Of(rows, columns, [&](std::int32_t, std::int32_t) { return (next++)->off; })};
}

/// The number of an element of a vector or matrix: empty cells are 0, texts may hold one. Nothing for any other.
std::optional<double> NumberIn(const CellView& cell);

/// An operand's cells as numbers, or the text that says what of that name is none.
struct Numbers {
  Grid cells;
  std::optional<Value> failure;
  long double At(std::int32_t row, std::int32_t column) const { return cells.At(row, column).AsNumber(); }
};
Numbers ReadNumbers(const FieldCall& call, std::size_t operand, XStringView name);

/// What a call says whose argument of that name has no code of a list, or a text for a number; nothing when it has.
std::optional<Value> BadCode(const FieldCall& call, std::size_t operand, std::int32_t first, std::int32_t last,
                             XStringView name);
std::optional<Value> BadNumber(const FieldCall& call, std::size_t operand, XStringView name, XStringView kind);

}  // namespace qcalc::series
