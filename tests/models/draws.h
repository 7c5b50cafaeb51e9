// What random calls are drawn with.
#pragma once

#include <algorithm>
#include <cstdint>
#include <deque>
#include <initializer_list>
#include <iterator>
#include <random>
#include <string_view>
#include <vector>

#include "host/values/literal.h"

namespace qcalc::models {

/// The cells of an array's literal, for good.
inline std::vector<CellView> CellsIn(std::string_view literal) {
  static std::deque<Value> kept;
  const auto cells = kept.emplace_back(*ParseLiteral(literal)).AsArray()->Cells();
  return {cells.begin(), cells.end()};
}

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
