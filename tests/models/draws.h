// What random calls are drawn with.
#pragma once

#include <algorithm>
#include <cstdint>
#include <initializer_list>
#include <iterator>
#include <random>

#include "host/values/value.h"

namespace qcalc::models {

/// The random choices of one call. All of them follow from the seed and the call's number alone.
class Draws {
 public:
  Draws(std::uint64_t seed, std::uint64_t number) : random_(seed * 1'000'003 + number) {}

  /// From 0 to before `end`; 0 when `end` is not positive.
  std::int32_t Below(std::int32_t end) {
    return static_cast<std::int32_t>(random_() % static_cast<std::uint64_t>(std::max(end, 1)));
  }
  bool Chance(int percent) { return Below(100) < percent; }
  template <typename List>
  auto Pick(List& list) -> decltype(list[0]) {
    return list[static_cast<std::size_t>(Below(static_cast<std::int32_t>(std::size(list))))];
  }
  /// One of a few values.
  Value PickOf(std::initializer_list<Value> values) {
    return values.begin()[Below(static_cast<std::int32_t>(values.size()))];
  }

 private:
  std::mt19937_64 random_;
};

}  // namespace qcalc::models
