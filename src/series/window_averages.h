// Averages of the last N numbers of a series.
//
// A series is cut into blocks of N numbers. Every window is the end of one block and the beginning of the next, so that
// sums from each number to the end of its block, made when the block is complete, and a sum that runs from its
// beginning are all that is needed: van Herk, "A fast algorithm for local minimum and maximum filters on rectangular
// and octagonal kernels" (1992); Gil, Werman, "Computing 2-D min, median, and max filters" (1993). The work is the same
// whatever N is, and nothing is ever subtracted: of a number that has left the window no trace is left.
#pragma once

#include "series/series_run.h"

namespace quillmere::series {

/// The plain average; one that is central belongs to the number in the middle of the window, of an even window to that
/// before the middle, others to the last. 0 where there is no whole window.
class WindowAverage final : public SeriesMethod {
 public:
  /// Of so many numbers, one at least.
  WindowAverage(std::int32_t count, bool isCentral) noexcept : count_(count), isCentral_(isCentral) {}

  SeriesEdges Edges() const noexcept override { return {count_ - 1, isCentral_ ? count_ / 2 : 0, NumberCell(0)}; }
  std::size_t StateSize() const noexcept override;
  void Run(std::int32_t place, std::span<double> numbers, double* state) const noexcept override;

 private:
  std::int32_t count_;
  bool isCentral_;
};

/// The average whose weights go up by equal steps: 1 for the oldest number of the window, N for the last. 0 where there
/// is no whole window.
class WeightedWindowAverage final : public SeriesMethod {
 public:
  /// Of so many numbers, one at least.
  explicit WeightedWindowAverage(std::int32_t count) noexcept : count_(count) {}

  SeriesEdges Edges() const noexcept override { return {count_ - 1, 0, NumberCell(0)}; }
  std::size_t StateSize() const noexcept override;
  void Run(std::int32_t place, std::span<double> numbers, double* state) const noexcept override;

 private:
  std::int32_t count_;
};

}  // namespace quillmere::series
