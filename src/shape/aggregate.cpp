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

void WriteError(std::int32_t code, XLOPER12& to) { to = ErrorCell(code); }

/// As NumberCell, but written in place: of many short lines the results would otherwise take longest.
void WriteNumber(double number, XLOPER12& to) {
  if (!std::isfinite(number)) return WriteError(xlerrNum, to);
  to.val.num = number;
  to.xltype = xltypeNum;
}

}  // namespace

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

void LineAggregate::WriteResult(AggregateFunction function, XLOPER12& to) {
  const auto count = static_cast<double>(count_);
  if (function == AggregateFunction::kCount) return WriteNumber(count, to);
  if (function == AggregateFunction::kCountA) return WriteNumber(static_cast<double>(filled_), to);
  if (error_) return WriteError(*error_, to);
  switch (function) {
    case AggregateFunction::kAverage:
      return count_ == 0 ? WriteError(xlerrDiv0, to) : WriteNumber(sum_.Value() / count, to);
    case AggregateFunction::kSum:
      return WriteNumber(sum_.Value(), to);
    case AggregateFunction::kGreatest:
      return WriteNumber(count_ == 0 ? 0 : greatest_, to);
    case AggregateFunction::kLeast:
      return WriteNumber(count_ == 0 ? 0 : least_, to);
    case AggregateFunction::kProduct:
      return WriteNumber(count_ == 0 ? 0 : product_, to);
    case AggregateFunction::kSampleDeviation:
      return WriteVariance(true, true, to);
    case AggregateFunction::kPopulationDeviation:
      return WriteVariance(false, true, to);
    case AggregateFunction::kSampleVariance:
      return WriteVariance(true, false, to);
    case AggregateFunction::kPopulationVariance:
      return WriteVariance(false, false, to);
    default:
      return WriteMedian(to);
  }
}

void LineAggregate::WriteVariance(bool ofSample, bool asDeviation, XLOPER12& to) const {
  const std::int64_t divisor = ofSample ? count_ - 1 : count_;
  if (divisor < 1) return WriteError(xlerrDiv0, to);
  const double variance = moments_.Squares() / static_cast<double>(divisor);
  WriteNumber(asDeviation ? std::sqrt(variance) : variance, to);
}

void LineAggregate::WriteMedian(XLOPER12& to) {
  // What is not a number has no place in an order, and would lead the selection out of the list.
  const bool haveOrder = std::ranges::none_of(numbers_.Values(), [](double number) { return std::isnan(number); });
  if (numbers_.empty() || !haveOrder) return WriteError(xlerrNum, to);
  double* const middle = numbers_.begin() + numbers_.size() / 2;
  std::nth_element(numbers_.begin(), middle, numbers_.end());
  if (numbers_.size() % 2 != 0) return WriteNumber(*middle, to);
  WriteNumber(std::midpoint(*std::max_element(numbers_.begin(), middle), *middle), to);
}

}  // namespace quillmere::shape
