#include "criteria/number_set.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstdint>
#include <utility>

#include "criteria/compare_cell.h"
#include "criteria/test_cell.h"

namespace quillmere::criteria {
namespace {

constexpr double kInfinity = std::numeric_limits<double>::infinity();

double Before(double number) noexcept { return std::nextafter(number, -kInfinity); }
double Behind(double number) noexcept { return std::nextafter(number, kInfinity); }

/// Numbers in ascending order are numbered in ascending order, one by one; the two zeros are neighbours.
std::int64_t PlaceOf(double number) noexcept {
  const auto bits = std::bit_cast<std::int64_t>(number);
  return bits < 0 ? std::numeric_limits<std::int64_t>::min() - bits - 1 : bits;
}
double NumberAt(std::int64_t place) noexcept {
  return std::bit_cast<double>(place < 0 ? std::numeric_limits<std::int64_t>::min() - place - 1 : place);
}

/// Numbers that are neighbours are mostly in one bucket; the surroundings of one are in two at most, but around 0.
std::int64_t BucketOf(double number) noexcept { return PlaceOf(number) >> 8; }

/// The farthest number that counts as the same, up or down. It is a few places away, but around 0 it is very many.
double FarthestMeeting(double number, int direction) {
  const std::int64_t place = PlaceOf(number);
  const auto meets = [&](std::int64_t steps) { return NumbersMeet(NumberAt(place + direction * steps), number); };
  std::int64_t beyond = 1;
  while (meets(beyond)) beyond *= 2;
  std::int64_t within = beyond / 2;
  while (beyond - within > 1) {
    const std::int64_t middle = within + (beyond - within) / 2;
    (meets(middle) ? within : beyond) = middle;
  }
  return NumberAt(place + direction * within);
}

}  // namespace

NumberRange NumbersThatMeet(const Criterion& criterion) {
  const bool comparesNumbers = !IsTypeTest(criterion.kind) && (criterion.Mask() & cell_type::kNumber) != 0;
  if (!comparesNumbers) return {.outside = TestCell(criterion, NumberCell(0))};
  const double lowest = FarthestMeeting(criterion.number, -1);
  const double highest = FarthestMeeting(criterion.number, 1);
  NumberRange range;
  switch (criterion.kind) {
    case CriterionKind::kLess:
      range = {-kInfinity, Before(lowest), false};
      break;
    case CriterionKind::kLessEqual:
      range = {-kInfinity, highest, false};
      break;
    // What is no number comes behind all, and so is not before.
    case CriterionKind::kGreater:
      range = {-kInfinity, highest, true};
      break;
    case CriterionKind::kGreaterEqual:
      range = {-kInfinity, Before(lowest), true};
      break;
    case CriterionKind::kNotEqual:
      range = {lowest, highest, true};
      break;
    default:
      range = {lowest, highest, false};
      break;
  }
  range.outside ^= criterion.negated;
  return range;
}

NumberSet::NumberSet(const std::vector<NumberRange>& ranges) {
  std::vector<std::pair<double, double>> stretches;
  stretches.reserve(ranges.size());
  const auto add = [&stretches](double from, double to) {
    if (from <= to) stretches.emplace_back(from, to);
  };
  for (const NumberRange& range : ranges) {
    holdsNan_ |= range.outside;
    if (!range.outside) {
      add(range.from, range.to);
    } else if (range.from > range.to) {
      add(-kInfinity, kInfinity);
    } else {
      if (range.from > -kInfinity) add(-kInfinity, Before(range.from));
      if (range.to < kInfinity) add(Behind(range.to), kInfinity);
    }
  }
  std::ranges::sort(stretches);
  for (const auto& [from, to] : stretches) {
    if (!to_.empty() && from <= Behind(to_.back())) {
      to_.back() = std::max(to_.back(), to);
      continue;
    }
    from_.push_back(from);
    to_.push_back(to);
  }
  MakeIndex();
}

void NumberSet::MakeIndex() {
  constexpr std::size_t kFew = 16;
  const std::size_t stretches = from_.size();
  if (stretches <= kFew) return;
  const auto isWide = [&](std::size_t stretch) { return BucketOf(to_[stretch]) - BucketOf(from_[stretch]) > 1; };
  for (std::size_t stretch = 0; stretch < stretches; ++stretch)
    if (isWide(stretch)) wide_.push_back({from_[stretch], to_[stretch]});
  if (wide_.size() > kFew) return;
  index_.emplace(static_cast<std::int32_t>(stretches * 2));
  for (std::size_t stretch = 0; stretch < stretches; ++stretch) {
    if (isWide(stretch)) continue;
    const std::int64_t last = BucketOf(to_[stretch]);
    for (std::int64_t bucket = BucketOf(from_[stretch]); bucket <= last; ++bucket) {
      const std::uint64_t hash = key_.Of(static_cast<std::uint64_t>(bucket));
      std::uint32_t slot = 0;
      index_->Find(hash, slot, [](std::int32_t) { return false; });
      index_->Put(hash, slot, static_cast<std::int32_t>(stretch));
    }
  }
}

bool NumberSet::HoldsByIndex(double number) const {
  for (const NumberRange& range : wide_)
    if (range.Holds(number)) return true;
  const std::uint64_t hash = key_.Of(static_cast<std::uint64_t>(BucketOf(number)));
  if (!index_->MayHold(hash)) return false;
  std::uint32_t slot = 0;
  const auto isWithin = [&](std::int32_t stretch) { return number >= from_[stretch] && number <= to_[stretch]; };
  return index_->Find(hash, slot, isWithin) != kNoEntry;
}

bool NumberSet::Holds(double number) const {
  if (number != number) return holdsNan_;
  if (index_) return HoldsByIndex(number);
  const auto behind = std::upper_bound(from_.begin(), from_.end(), number);
  return behind != from_.begin() && number <= to_[static_cast<std::size_t>(behind - from_.begin()) - 1];
}

}  // namespace quillmere::criteria
