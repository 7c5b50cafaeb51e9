// What the bisection of a sorted table says of the rows that are wanted.
#pragma once

#include <cstdint>

#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"
#include "table/bisection.h"
#include "table/sort_order.h"

namespace quillmere::lookup {

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
