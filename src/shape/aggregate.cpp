#include "shape/aggregate.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace quillmere::shape {
namespace {

/// The sum of what `term` makes of each number: several at a time, since an addition waits for the one before.
template <class Term>
double SumOf(std::span<const double> numbers, const Term& term) {
  constexpr std::size_t kLanes = 4;
  std::array<double, kLanes> lanes{};
  std::size_t at = 0;
  for (; at + kLanes <= numbers.size(); at += kLanes)
    for (std::size_t lane = 0; lane < kLanes; ++lane) lanes[lane] += term(numbers[at + lane]);
  for (; at < numbers.size(); ++at) lanes[0] += term(numbers[at]);
  return (lanes[0] + lanes[1]) + (lanes[2] + lanes[3]);
}

}  // namespace

void GatheredCells::Gather(const XLOPER12* first, std::int32_t count, std::ptrdiff_t stride) {
  // Every cell is written, and stays where it is a number: there is nothing to be guessed, whatever the cells are.
  double* const to = numbers_.data() + count_;
  std::size_t numbers = 0;
  std::int32_t empty = 0;
  for (std::int32_t at = 0; at < count; ++at) {
    const XLOPER12& cell = first[at * stride];
    const std::uint32_t type = TypeOf(cell);
    to[numbers] = cell.val.num;
    numbers += type == xltypeNum;
    empty += type == xltypeNil;
  }
  count_ += numbers;
  filled_ += static_cast<std::int64_t>(numbers);
  if (numbers + empty != static_cast<std::size_t>(count)) GatherOthers(first, count, stride);
}

void GatheredCells::GatherOthers(const XLOPER12* first, std::int32_t count, std::ptrdiff_t stride) {
  for (std::int32_t at = 0; at < count; ++at) {
    const XLOPER12& cell = first[at * stride];
    switch (CellType(cell)) {
      case xltypeNum:
      case xltypeNil:
      case xltypeMissing:
        continue;
      case xltypeInt:
        numbers_[count_++] = cell.val.w;
        break;
      case xltypeErr:
        if (!error_) error_ = cell.val.err;
        break;
      default:
        break;
    }
    ++filled_;
  }
}

void CompensatedSum::Add(std::span<const double> numbers) noexcept {
  double sum = sum_;
  double correction = correction_;
  for (const double number : numbers) {
    // What the addition loses, by Knuth's two-sum: it needs not know which of both is the larger.
    const double next = sum + number;
    const double added = next - sum;
    correction += (sum - (next - added)) + (number - added);
    sum = next;
  }
  sum_ = sum;
  correction_ = correction;
}

void Moments::Add(std::span<const double> numbers) noexcept {
  if (numbers.empty()) return;
  const auto count = static_cast<double>(numbers.size());
  double mean = SumOf(numbers, [](double number) { return number; }) / count;
  // Equal numbers then have the mean that they are, which no division promises.
  mean += SumOf(numbers, [mean](double number) { return number - mean; }) / count;
  squares_ += SumOf(numbers, [mean](double number) { return (number - mean) * (number - mean); });
  if (count_ == 0) mean_ = mean;
  const double all = count_ + count;
  const double apart = mean - mean_;
  squares_ += apart * apart * (count_ * count / all);
  mean_ += apart * (count / all);
  count_ = all;
}

Measures::Measures(std::span<const AggregateFunction> functions) noexcept {
  for (const AggregateFunction function : functions) {
    switch (function) {
      case AggregateFunction::kCount:
      case AggregateFunction::kCountA:
        break;
      case AggregateFunction::kAverage:
      case AggregateFunction::kSum:
        sum = true;
        break;
      case AggregateFunction::kGreatest:
      case AggregateFunction::kLeast:
        extremes = true;
        break;
      case AggregateFunction::kProduct:
        product = true;
        break;
      case AggregateFunction::kSampleDeviation:
      case AggregateFunction::kPopulationDeviation:
      case AggregateFunction::kSampleVariance:
      case AggregateFunction::kPopulationVariance:
        moments = true;
        break;
      case AggregateFunction::kMedian:
        numbers = true;
        break;
    }
  }
}

void LineAggregate::Clear() noexcept {
  count_ = 0;
  filled_ = 0;
  error_.reset();
  sum_ = {};
  moments_ = {};
  greatest_ = -std::numeric_limits<double>::infinity();
  least_ = std::numeric_limits<double>::infinity();
  product_ = 1;
  numbers_.SetSize(0);
}

void LineAggregate::Take(const GatheredCells& cells) {
  const std::span<const double> numbers = cells.Numbers();
  count_ += static_cast<std::int64_t>(numbers.size());
  filled_ += cells.Filled();
  if (!error_) error_ = cells.Error();
  if (measures_.sum) sum_.Add(numbers);
  if (measures_.moments) moments_.Add(numbers);
  if (measures_.extremes) {
    for (const double number : numbers) {
      greatest_ = std::max(greatest_, number);
      least_ = std::min(least_, number);
    }
  }
  if (measures_.product)
    for (const double number : numbers) product_ *= number;
  if (measures_.numbers) {
    numbers_.MakeRoomFor(numbers.size());
    std::ranges::copy(numbers, numbers_.Room() + numbers_.size());
    numbers_.SetSize(numbers_.size() + numbers.size());
  }
}

XLOPER12 LineAggregate::Result(AggregateFunction function) {
  const auto count = static_cast<double>(count_);
  if (function == AggregateFunction::kCount) return NumberCell(count);
  if (function == AggregateFunction::kCountA) return NumberCell(static_cast<double>(filled_));
  if (error_) return ErrorCell(*error_);
  switch (function) {
    case AggregateFunction::kAverage:
      return count_ == 0 ? ErrorCell(xlerrDiv0) : NumberCell(sum_.Value() / count);
    case AggregateFunction::kSum:
      return NumberCell(sum_.Value());
    case AggregateFunction::kGreatest:
      return NumberCell(count_ == 0 ? 0 : greatest_);
    case AggregateFunction::kLeast:
      return NumberCell(count_ == 0 ? 0 : least_);
    case AggregateFunction::kProduct:
      return NumberCell(count_ == 0 ? 0 : product_);
    case AggregateFunction::kSampleDeviation:
      return Variance(true, true);
    case AggregateFunction::kPopulationDeviation:
      return Variance(false, true);
    case AggregateFunction::kSampleVariance:
      return Variance(true, false);
    case AggregateFunction::kPopulationVariance:
      return Variance(false, false);
    default:
      return Median();
  }
}

XLOPER12 LineAggregate::Variance(bool ofSample, bool asDeviation) const noexcept {
  const std::int64_t divisor = ofSample ? count_ - 1 : count_;
  if (divisor < 1) return ErrorCell(xlerrDiv0);
  const double variance = moments_.Squares() / static_cast<double>(divisor);
  return NumberCell(asDeviation ? std::sqrt(variance) : variance);
}

XLOPER12 LineAggregate::Median() {
  // What is not a number has no place in an order, and would lead the selection out of the list.
  const bool haveOrder = std::ranges::none_of(numbers_.Values(), [](double number) { return std::isnan(number); });
  if (numbers_.empty() || !haveOrder) return ErrorCell(xlerrNum);
  double* const middle = numbers_.begin() + numbers_.size() / 2;
  std::nth_element(numbers_.begin(), middle, numbers_.end());
  if (numbers_.size() % 2 != 0) return NumberCell(*middle);
  return NumberCell(std::midpoint(*std::max_element(numbers_.begin(), middle), *middle));
}

}  // namespace quillmere::shape
