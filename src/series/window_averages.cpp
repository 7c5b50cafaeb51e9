#include "series/window_averages.h"

#include <algorithm>
#include <utility>

#include "series/number_pair.h"
#include "table/compensated_sum.h"

namespace quillmere::series {
namespace {

/// So many neighbours are added up as they are, and what they come to is added compensated: short sums lose little, and
/// long ones no more than short ones.
constexpr std::int32_t kPlainSum = 32;

/// A sum in the making, as CompensatedSum keeps one.
struct Sum {
  double sum;
  double lost;

  void Add(double number) noexcept { CompensatedSum::AddTo(sum, lost, number); }
  double Value() const noexcept { return sum + lost; }
};

/// Calls `take(numbers, inBlock)` for stretches of numbers that stand from a place of one block on, no more than are
/// added up plainly, the first of all at a place of the series; and `end()` behind each whole block.
template <class Take, class End>
void ForEachStretch(std::int32_t blockSize, std::int32_t place, std::span<double> numbers, const Take& take,
                    const End& end) {
  std::int32_t inBlock = place % blockSize;
  while (!numbers.empty()) {
    const std::int32_t most = std::min(blockSize - inBlock, kPlainSum);
    const std::size_t count = std::min(numbers.size(), static_cast<std::size_t>(most));
    take(numbers.first(count), inBlock);
    numbers = numbers.subspan(count);
    inBlock += static_cast<std::int32_t>(count);
    if (inBlock != blockSize) continue;
    end();
    inBlock = 0;
  }
}

/// Calls `take(numbers)` for such stretches of a block's numbers, the last of them first.
template <class Take>
void ForEachStretchBackwards(std::span<double> block, const Take& take) {
  while (!block.empty()) {
    const std::span<double> stretch = block.last(std::min(block.size(), std::size_t{kPlainSum}));
    take(stretch);
    block = block.first(block.size() - stretch.size());
  }
}

/// Puts in the place of each number of a block the sum from it to the block's end.
void SumTails(std::span<double> block) noexcept {
  Sum behind{};
  ForEachStretchBackwards(block, [&](std::span<double> stretch) {
    const double sumBehind = behind.Value();
    double sum = 0;
    for (std::size_t at = stretch.size(); at-- > 0;) {
      sum += stretch[at];
      stretch[at] = sumBehind + sum;
    }
    behind.Add(sum);
  });
}

/// The same for sums with weights from 1 on.
void SumWeightedTails(std::span<double> block) noexcept {
  Sum behind{};
  Sum weightedBehind{};
  ForEachStretchBackwards(block, [&](std::span<double> stretch) {
    const double sumBehind = behind.Value();
    const double weightedSumBehind = weightedBehind.Value();
    double sum = 0;
    double weightedSum = 0;
    for (std::size_t at = stretch.size(); at-- > 0;) {
      // A number before others has the weight 1, and puts theirs up by 1.
      sum += stretch[at];
      weightedSum += sumBehind + sum;
      stretch[at] = weightedSumBehind + weightedSum;
    }
    behind.Add(sum);
    weightedBehind.Add(weightedSum);
  });
}

}  // namespace

// The state: the sum from the block's beginning (2); for each number of the block before, and one place behind them,
// the sum from it to the end of the block (N + 1). The block's own numbers are put where sums are needed no more.
std::size_t WindowAverage::StateSize() const noexcept { return 2 + static_cast<std::size_t>(count_) + 1; }

void WindowAverage::Run(std::int32_t place, std::span<double> numbers, double* state) const noexcept {
  Sum head{state[0], state[1]};
  double* const tails = state + 2;
  const double divisor = count_;
  const auto take = [&](std::span<double> stretch, std::int32_t inBlock) {
    double* const tail = tails + inBlock;
    const double before = head.Value();
    double sum = 0;
    std::size_t at = 0;
    for (; at + 1 < stretch.size(); at += 2) {
      const Pair pair = LoadPair(&stretch[at]);
      const double first = sum + pair[0];
      sum = first + pair[1];
      const Pair heads = Pair{first, sum} + Pair{before, before};
      StorePair(&stretch[at], (LoadPair(tail + at + 1) + heads) / Pair{divisor, divisor});
      StorePair(tail + at, pair);
    }
    if (at < stretch.size()) {
      const double number = stretch[at];
      sum += number;
      stretch[at] = (tail[at + 1] + (sum + before)) / divisor;
      tail[at] = number;
    }
    head.Add(sum);
  };
  const auto end = [&] {
    SumTails({tails, static_cast<std::size_t>(count_)});
    head = {};
  };
  ForEachStretch(count_, place, numbers, take, end);
  state[0] = head.sum;
  state[1] = head.lost;
}

// The state: the sum from the block's beginning (2), and the same with weights from 1 on (2); for each number of the
// block before, and one place behind them, the sum from it to the end of the block with weights from 1 on (N + 1). The
// block's own numbers are put where sums are needed no more.
std::size_t WeightedWindowAverage::StateSize() const noexcept { return 4 + static_cast<std::size_t>(count_) + 1; }

void WeightedWindowAverage::Run(std::int32_t place, std::span<double> numbers, double* state) const noexcept {
  Sum head{state[0], state[1]};
  Sum weightedHead{state[2], state[3]};
  double* const tails = state + 4;
  const double count = count_;
  const double divisor = count * (count + 1) / 2;
  const auto take = [&](std::span<double> stretch, std::int32_t inBlock) {
    double* tail = tails + inBlock;
    const double before = head.Value();
    const double weightedBefore = weightedHead.Value();
    double sum = 0;
    double weightedSum = 0;
    double weight = inBlock;
    for (double& number : stretch) {
      weight += 1;
      sum += number;
      weightedSum += weight * number;
      // The numbers of the block before have the weights from 1 on, and those of this block come behind them.
      const double window = tail[1] + ((weightedSum + weightedBefore) + (count - weight) * (sum + before));
      *tail++ = std::exchange(number, window / divisor);
    }
    head.Add(sum);
    weightedHead.Add(weightedSum);
  };
  const auto end = [&] {
    SumWeightedTails({tails, static_cast<std::size_t>(count_)});
    head = {};
    weightedHead = {};
  };
  ForEachStretch(count_, place, numbers, take, end);
  state[0] = head.sum;
  state[1] = head.lost;
  state[2] = weightedHead.sum;
  state[3] = weightedHead.lost;
}

}  // namespace quillmere::series
