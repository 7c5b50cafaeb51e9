// Bisection of a sorted table: which of equal rows it ends at, and where it ends when no row is equal.
#pragma once

#include <cstdint>

#include "table/sort_order.h"

namespace quillmere {

/// Which end of a run of equal rows a bisection looks for.
enum class RunEnd { kFirst, kLast };

/// One bisection in progress, over 0-based rows. An empty cell is taken as lying after every key in either
/// order, so that blank rows at the end of a table are never found.
struct Bisection {
  std::int32_t low = -1;
  std::int32_t high;
  bool equal = false;  ///< a row that was looked at is equal to the key

  explicit Bisection(std::int32_t rows = 0) noexcept : high(rows) {}

  bool IsDone() const noexcept { return high - low <= 1; }
  /// The row to look at next, if it is not done.
  std::int32_t Middle() const noexcept { return (low + high) >> 1; }

  /// Whether the search goes on behind a row, which stands `before` or `after` the key by value, or is equal to it.
  template <SortOrder order, RunEnd end>
  static bool GoesOn(bool before, bool after) noexcept {
    const bool ahead = order == SortOrder::kAscending ? before : after;
    const bool behind = order == SortOrder::kAscending ? after : before;
    return end == RunEnd::kFirst ? ahead : !behind;
  }

  /// Takes in where the middle row stands.
  template <SortOrder order, RunEnd end>
  void Step(bool before, bool after) noexcept {
    const std::int32_t middle = Middle();
    const bool goOn = GoesOn<order, end>(before, after);
    equal |= !before && !after;
    // Which way it goes cannot be foretold, so nothing may jump on it: the bits are picked by a mask.
    const std::int32_t mask = -static_cast<std::int32_t>(goOn);
    low ^= (low ^ middle) & mask;
    high ^= (high ^ middle) & ~mask;
  }
  void StepOverEmpty() noexcept { high = Middle(); }

  /// The row that it ended at: the first or last equal row; where none is equal, the nearest before the key in the
  /// table's order, -1 when the key comes before them all.
  template <RunEnd end>
  std::int32_t Row() const noexcept {
    return end == RunEnd::kFirst && equal ? high : low;
  }
};

}  // namespace quillmere
