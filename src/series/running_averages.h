// Averages in which every number of a series so far counts.
#pragma once

#include "series/series_run.h"

namespace quillmere::series {

/// The average of all numbers so far.
class CumulativeAverage final : public SeriesMethod {
 public:
  std::size_t StateSize() const noexcept override { return 2; }
  void Run(std::int32_t place, std::span<double> numbers, double* state) const noexcept override;
};

/// alpha = 2 / (N + 1): the weight of the last number in an exponential average.
constexpr double SmoothingConstant(std::int32_t count) noexcept { return 2 / (static_cast<double>(count) + 1); }

/// What exponential averages, both of a double one, start with in place of the first number: a value for each series;
/// or no values.
using StartingValues = std::span<const double>;

/// The exponential average, E = alpha x + (1 - alpha) E: Brown, "Exponential Smoothing for Predicting Demand" (1956).
/// Or the double one, 2 E1 - E2, where E2 is the exponential average of the exponential average E1: Brown, "Smoothing,
/// Forecasting and Prediction of Discrete Time Series" (1963).
class ExponentialAverage final : public SeriesMethod {
 public:
  /// The starting values must outlive it.
  ExponentialAverage(double alpha, bool isDouble, StartingValues starts) noexcept
      : alpha_(alpha), isDouble_(isDouble), starts_(starts) {}

  std::size_t StateSize() const noexcept override { return 2; }
  double Start(std::int32_t series) const noexcept override;
  void Run(std::int32_t place, std::span<double> numbers, double* state) const noexcept override;

 private:
  double alpha_;
  bool isDouble_;
  StartingValues starts_;
};

}  // namespace quillmere::series
