// Running through the series of a table.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "series/series_table.h"

namespace quillmere::series {

/// Cells of a series for which there is no result.
struct SeriesEdges {
  std::int32_t before = 0;        ///< so many numbers come in before the first that gives a result
  std::int32_t later = 0;         ///< a result belongs to the number that came so many before the one that gives it
  XLOPER12 filler = EmptyCell();  ///< stands where there is none
};

/// What is made of the numbers of a series, as they come in, each giving a result. It keeps nothing of them itself: all
/// that it has to know of those gone by is its state. State and results are proportional to the numbers, and finite
/// where neither numbers nor start are larger than kMostUnscaled.
class SeriesMethod {
 public:
  virtual ~SeriesMethod() = default;

  virtual SeriesEdges Edges() const noexcept { return {}; }
  /// How many doubles its state has.
  virtual std::size_t StateSize() const noexcept = 0;
  /// What the first of them is when a series, counted from 0, begins; all others are 0.
  virtual double Start(std::int32_t /*series*/) const noexcept { return 0; }
  /// Puts results in the place of numbers, the first of which stands at a place of the series, counted from 0.
  virtual void Run(std::int32_t place, std::span<double> numbers, double* state) const noexcept = 0;
};

/// The results of all series, in the shape of their table; of a single one its value. CXlErrorException with #VALUE!
/// when Excel does not give the cells of a reference; CXlConversionException for a cell that is no number.
CXlOper RunSeries(const SeriesTable& table, const SeriesShape& shape, const SeriesMethod& method);

}  // namespace quillmere::series
