#include "table/compensated_sum.h"

#include <array>
#include <cmath>
#include <cstddef>

namespace quillmere {

void CompensatedSum::Add(std::span<const double> numbers) noexcept {
  constexpr std::size_t kLanes = 4;
  double sum = sum_;
  double lost = lost_;
  std::size_t at = 0;
  if (numbers.size() >= 4 * kLanes) {
    std::array<double, kLanes> sums{};
    std::array<double, kLanes> losses{};
    for (; at + kLanes <= numbers.size(); at += kLanes)
      for (std::size_t lane = 0; lane < kLanes; ++lane) AddTo(sums[lane], losses[lane], numbers[at + lane]);
    for (const double each : sums) AddTo(sum, lost, each);
    for (const double each : losses) lost += each;
  }
  for (; at < numbers.size(); ++at) AddTo(sum, lost, numbers[at]);
  if (!std::isfinite(sum)) [[unlikely]] {
    // What goes one against the other in their order may have come together in a lane, beyond all numbers.
    sum = sum_;
    lost = lost_;
    for (const double number : numbers) AddTo(sum, lost, number);
  }
  sum_ = sum;
  lost_ = lost;
}

}  // namespace quillmere
