#include "series/running_averages.h"

#include "table/compensated_sum.h"

namespace quillmere::series {
namespace {

template <bool isDouble>
void Smooth(double alpha, std::span<double> numbers, double* state) noexcept {
  double first = state[0];
  double second = state[1];
  for (double& number : numbers) {
    first = alpha * number + (1 - alpha) * first;
    if constexpr (isDouble) {
      second = alpha * first + (1 - alpha) * second;
      number = 2 * first - second;
    } else {
      number = first;
    }
  }
  state[0] = first;
  state[1] = second;
}

}  // namespace

void CumulativeAverage::Run(std::int32_t place, std::span<double> numbers, double* state) const noexcept {
  double count = place;
  double sum = state[0];
  double lost = state[1];
  for (double& number : numbers) {
    count += 1;
    CompensatedSum::AddTo(sum, lost, number);
    number = (sum + lost) / count;
  }
  state[0] = sum;
  state[1] = lost;
}

double ExponentialAverage::Start(std::int32_t series) const noexcept {
  return starts_.empty() ? 0 : starts_[static_cast<std::size_t>(series)];
}

void ExponentialAverage::Run(std::int32_t place, std::span<double> numbers, double* state) const noexcept {
  if (place == 0) {
    // Both averages are there before the first number comes in, and are what it gives.
    if (starts_.empty()) state[0] = numbers.front();
    state[1] = state[0];
    numbers.front() = state[0];
    numbers = numbers.subspan(1);
  }
  isDouble_ ? Smooth<true>(alpha_, numbers, state) : Smooth<false>(alpha_, numbers, state);
}

}  // namespace quillmere::series
