// Finding where values stand among the coordinates of a table.
#pragma once

#include <cmath>
#include <cstdint>
#include <span>

#include "frame/values/scratch_array.h"
#include "series/table_numbers.h"
#include "table/table_view.h"

namespace quillmere::series {

/// What becomes of values beyond the coordinates.
enum class Outside : std::int32_t {
  kNothing = 0,
  kNearestEdge = 1,
  kExtrapolated = 2,  ///< from the nearest two points
};

/// Where a value stands: between two neighbouring coordinates, or beyond both, by their places from 0; at one of them,
/// which is then both; or nowhere.
struct Bracket {
  std::int32_t low = -1;
  std::int32_t high = -1;
  double weight = 0;  ///< of the high one: 0 at the low one, 1 at the high one

  bool IsNowhere() const noexcept { return low < 0; }
  PlaceRange Range() const noexcept { return {low, high}; }
};

/// What stands between, or beyond, two numbers. From the nearer of both, so that each end is met exactly and equal ones
/// give that number; nothing jumps on where that is, which cannot be foretold.
inline double Mix(double low, double high, double weight) noexcept {
  const double apart = high - low;
  if (!std::isfinite(apart)) [[unlikely]]
    return low * (1 - weight) + high * weight;
  const bool isLowNearer = weight < 0.5;
  return (isLowNearer ? low : high) + apart * (isLowNearer ? weight : weight - 1);
}

/// What stands there, `at(place)` being what stands at the coordinates: on the straight line through both. What is at
/// one of them is just that, whatever is beside it.
template <class NumberAt>
double Interpolate(const Bracket& bracket, const NumberAt& at) {
  const double low = at(bracket.low);
  return bracket.low == bracket.high ? low : Mix(low, at(bracket.high), bracket.weight);
}

/// All places that brackets have, which are none where all stand nowhere.
PlaceRange RangeOf(std::span<const Bracket> brackets) noexcept;

/// Coordinates below or beside each other in a table. Empty cells behind the last do not count.
struct CoordinateLine {
  const TableView& table;
  std::int32_t row;  ///< of the first, from 0
  std::int32_t column;
  std::int32_t count;
  bool isDown;
  XStringView argument;  ///< that the table is

  CXlOper ReadCell(std::int32_t place) const {
    return isDown ? table.ReadCell(row + place, column) : table.ReadCell(row, column + place);
  }
  CoordinateLine Part(std::int32_t first, std::int32_t some) const noexcept {
    return {table, isDown ? row + first : row, isDown ? column : column + first, some, isDown, argument};
  }
};

/// Which coordinates count as being in order, beside ascending ones.
enum class Order { kAscending, kEither };

/// Where each value stands, found by bisection. Coordinates are looked at where a bisection leads, at their ends, and
/// those an extrapolation needs: one that is looked at and is no number is refused, all others may be anything. Where
/// the first and the last are equal or not in order, or those around a value, only values equal to one have a place. Of
/// a reference a few coordinates are fetched one by one, and all of them only where that is cheaper.
ScratchArray<Bracket> FindBrackets(const CoordinateLine& line, std::span<const double> values, Order order,
                                   Outside outside);

}  // namespace quillmere::series
