// Bisection of a sorted table: which of equal rows it ends at, and what it says where no row is equal.
#pragma once

#include <cstdint>

#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"
#include "table/sort_order.h"

namespace quillmere::lookup {

/// Which end of a run of equal rows a bisection looks for.
enum class RunEnd { kFirst, kLast };

/// One bisection in progress, over 0-based rows. Empty cells of the first key column are taken as lying after every key
/// in either order, so that blank rows at the end of a table are never found.
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
  /// table's order, kNoRow when the key comes before them all.
  template <RunEnd end>
  std::int32_t Row() const noexcept {
    return end == RunEnd::kFirst && equal ? high : low;
  }
};

/// What a search of a sorted table found for one key. Where one end of the run is known, both are that.
struct SortedRun {
  std::int32_t first = kNoRow;
  std::int32_t last = kNoRow;
  bool equal = false;  ///< else `first` is the nearest row, or kNoRow
};

/// What a bisection that is done tells of the end that it looked for.
template <RunEnd end>
SortedRun RunOf(const Bisection& bisection) noexcept {
  const std::int32_t row = bisection.Row<end>();
  return {row, row, bisection.equal};
}

/// Which ends of a run must be known for the row that is wanted.
enum class RunEnds { kFirst, kLast, kBoth };

constexpr RunEnds NeededEnds(SortOrder order, std::int32_t position) noexcept {
  if (position > 1 || position == wanted_match::kAll) return RunEnds::kBoth;
  if (position == wanted_match::kDefault) return order == SortOrder::kAscending ? RunEnds::kLast : RunEnds::kFirst;
  return position == wanted_match::kLast ? RunEnds::kLast : RunEnds::kFirst;
}

/// Adds the wanted rows of a key. With `exact` a nearest row counts as no match; else it stands for the only one.
void RecordRun(const SortedRun& run, std::int32_t position, bool exact, FoundRows& found);

}  // namespace quillmere::lookup
