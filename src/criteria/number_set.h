// The numbers that meet criteria, as ranges of doubles: what is asked of a million cells is two comparisons then.
#pragma once

#include <limits>
#include <optional>
#include <vector>

#include "criteria/criterion.h"
#include "table/hash_key.h"
#include "table/place_index.h"

namespace quillmere::criteria {

/// The numbers from `from` to `to`, both included, or all others. A number that is none is never inside.
struct NumberRange {
  double from = std::numeric_limits<double>::infinity();
  double to = -std::numeric_limits<double>::infinity();
  bool outside = false;

  bool Holds(double number) const noexcept { return ((number >= from) & (number <= to)) != outside; }
};

/// The numbers that meet a prepared criterion of any kind but patterns, as TestCell has it.
NumberRange NumbersThatMeet(const Criterion& criterion);

/// The numbers within any of several ranges. Where nearly all of them are the surroundings of single numbers, as in a
/// list of numbers, the one that may hold a number is found by hash; else by bisection.
class NumberSet {
 public:
  NumberSet() = default;
  explicit NumberSet(const std::vector<NumberRange>& ranges);

  bool Holds(double number) const;

 private:
  void MakeIndex();
  bool HoldsByIndex(double number) const;

  std::vector<double> from_;  ///< of stretches that lie apart, in ascending order
  std::vector<double> to_;
  bool holdsNan_ = false;
  std::vector<NumberRange> wide_;    ///< stretches beside the index: the surroundings of 0, and a few ranges
  std::optional<PlaceIndex> index_;  ///< of the stretches, by the buckets of numbers that they lie in
  HashKey key_ = HashKey::OfProcess();
};

}  // namespace quillmere::criteria
