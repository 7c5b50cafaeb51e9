// Sums that keep their digits.
#pragma once

#include <span>

namespace quillmere {

/// A sum that carries what rounding takes from it: Neumaier, "Rundungsfehleranalyse einiger Verfahren zur Summation
/// endlicher Summen" (1974). One that overflows is not finite, and stays so.
class CompensatedSum {
 public:
  CompensatedSum() = default;
  explicit CompensatedSum(double start) noexcept : sum_(start) {}

  void Add(double number) noexcept { AddTo(sum_, lost_, number); }
  /// Several at a time: faster, and no less exact.
  void Add(std::span<const double> numbers) noexcept;
  double Value() const noexcept { return sum_ + lost_; }

  /// A step of such a sum, for one that is kept elsewhere: adds a number to `sum`, and to `lost` what the addition
  /// loses: by Knuth's two-sum, which needs not know which of both is the larger.
  static void AddTo(double& sum, double& lost, double number) noexcept {
    const double next = sum + number;
    const double added = next - sum;
    lost += (sum - (next - added)) + (number - added);
    sum = next;
  }

 private:
  double sum_ = 0;
  double lost_ = 0;  ///< by its additions
};

}  // namespace quillmere
