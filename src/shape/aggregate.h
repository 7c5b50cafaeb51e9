// What the cells of a line come to: sums, counts, extremes, deviations, the median.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <optional>
#include <span>

#include "frame/values/cell.h"
#include "frame/values/scratch_list.h"
#include "table/compensated_sum.h"
#include "table/gathered_cells.h"

namespace quillmere::shape {

/// By the numbers of Excel's SUBTOTAL, and one more.
enum class AggregateFunction : std::int32_t {
  kAverage = 1,
  kCount = 2,   ///< of numbers
  kCountA = 3,  ///< of cells that are not empty
  kGreatest = 4,
  kLeast = 5,
  kProduct = 6,
  kSampleDeviation = 7,
  kPopulationDeviation = 8,
  kSum = 9,
  kSampleVariance = 10,
  kPopulationVariance = 11,
  kMedian = 12,
};
inline constexpr std::size_t kMostFunction = 12;

/// The mean, and the squares of the deviations from it. Each block of numbers is passed twice, once for its mean and
/// once for the squares; what blocks give is joined as in Chan, Golub, LeVeque, "Updating Formulae and a Pairwise
/// Algorithm for Computing Sample Variances" (1979).
class Moments {
 public:
  void Add(std::span<const double> numbers) noexcept;
  /// The sum of the squared deviations; exactly 0 when all numbers are the same.
  double Squares() const noexcept { return squares_; }

 private:
  double count_ = 0;
  double mean_ = 0;
  double squares_ = 0;
};

/// What some functions have to know of a line, each thing kept once.
class Measures {
 public:
  explicit Measures(std::span<const AggregateFunction> functions) noexcept;

  bool sum = false;
  bool moments = false;
  bool extremes = false;
  bool product = false;
  bool numbers = false;
};

/// The aggregates of one line, which takes its cells block by block, in order.
class LineAggregate {
 public:
  explicit LineAggregate(const Measures& measures) noexcept : measures_(measures) {}

  /// Begins another line.
  void Clear() noexcept;
  /// std::bad_alloc.
  void Take(const GatheredCells& cells);

  /// Whether there is a number among the cells, or an error, which might have been one.
  bool HoldsNumber() const noexcept { return count_ != 0 || error_.has_value(); }
  /// Writes a number, or an error: that of the first erroneous cell, unless cells are counted, or what a function gives
  /// that has too few numbers. The function is one of those that the measures are for.
  void WriteResult(AggregateFunction function, XLOPER12& to);

 private:
  void WriteVariance(bool ofSample, bool asDeviation, XLOPER12& to) const;
  void WriteMedian(XLOPER12& to);

  Measures measures_;
  std::int64_t count_ = 0;
  std::int64_t filled_ = 0;
  std::optional<std::int32_t> error_;
  CompensatedSum sum_;
  Moments moments_;
  double greatest_ = -std::numeric_limits<double>::infinity();
  double least_ = std::numeric_limits<double>::infinity();
  double product_ = 1;
  ScratchList<double> numbers_;
};

}  // namespace quillmere::shape
