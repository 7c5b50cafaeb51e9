// The numbers that meet criteria, as ranges of doubles: what is asked of a million cells is two comparisons then.
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "criteria/criterion.h"
#include "table/hash_key.h"

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

/// The numbers within any of several ranges. Where all ranges are the surroundings of single numbers, as in a list of
/// numbers, the one that may hold a number is found by hash; else by bisection.
class NumberSet {
 public:
  NumberSet() = default;
  explicit NumberSet(const std::vector<NumberRange>& ranges);

  bool Holds(double number) const;

 private:
  void MakeIndex();
  bool HoldsByIndex(double number) const noexcept;
  /// Where the search for a stretch in a bucket of numbers begins.
  std::size_t SlotOf(std::int64_t bucket) const noexcept {
    return key_.Of(static_cast<std::uint64_t>(bucket)) & (index_.size() - 1);
  }

  std::vector<double> from_;  ///< of stretches that lie apart, in ascending order
  std::vector<double> to_;
  std::vector<std::int32_t> index_;  ///< of stretches by the hashes of their places; empty slots hold -1
  bool holdsNan_ = false;
  HashKey key_ = HashKey::OfProcess();
};

}  // namespace quillmere::criteria
