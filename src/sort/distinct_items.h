// Finding the distinct items of a list, and what they add up to.
#pragma once

#include <cstdint>

#include "frame/values/scratch_list.h"
#include "frame/values/xl_oper.h"
#include "table/cell_hash.h"
#include "table/cell_line.h"
#include "table/ignored_items.h"

namespace quillmere::sort {

/// What is told of each distinct item.
enum class ItemFigure { kNone, kCount, kSum, kAverage };

/// Distinct items in the order in which they first occur. Items are numbered from 0 by the rows that they are.
struct DistinctItems {
  ScratchList<std::int32_t> firstPlaces;  ///< where each occurs first
  ScratchList<std::int32_t> counts;       ///< how often each occurs; for counts and averages alone
  ScratchList<double> sums;               ///< of the values beside each; for sums and averages alone
  std::int32_t all = 0;                   ///< how many items there are that are not ignored
};

/// The distinct ones of less than 2^30 items, each a row of cells. `values` has a cell for each item, and may be null
/// where nothing is summed; cells that are no numbers add nothing.
DistinctItems FindDistinctItems(const CXlCells& items, TextCase textCase, const IgnoredItems& ignored,
                                ItemFigure figure, const CellLine* values = nullptr);

}  // namespace quillmere::sort
