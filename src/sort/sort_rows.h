// The order of rows by some of their cells.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "frame/values/scratch_array.h"
#include "implementations/sort.h"
#include "sort/text_ranks.h"
#include "table/cell_line.h"

namespace quillmere::sort {

/// Rows by their numbers, from 0.
using RowOrder = ScratchArray<std::int32_t>;

/// One column that rows are sorted by.
struct SortKey {
  CellLine cells;
  bool isDescending;
};

/// Sorts the rows at some places of the keys' lines, or all rows when there are none: the positions of the places, from
/// 0, in order. Rows that are equal in all keys keep the order of their positions.
///
/// Ascending: numbers by their value, texts by `mode`, booleans, errors by their code; empty cells last in either
/// direction. Modes: kOrdinal compares texts by their UTF-16 units, a shorter text before those that it begins;
/// kCollated as the user's language does, without regard to case, kCollatedByCase with it, and of texts that it does
/// not tell apart the shorter comes first. A number that is none comes behind all others. A cell that is none is "Bad
/// XLOPER type". There is one key at least, and fewer than 2^30 rows.
RowOrder SortRows(std::span<const SortKey> keys, std::span<const std::int32_t> places, SortMode mode);

/// The order of all rows; the keys that tell some of them apart, and what was found out about the texts of each.
struct SortedRows {
  RowOrder order;
  std::vector<SortKey> keys;
  std::vector<LineRanks> ranks;
};

/// Sorts all rows in the same way.
SortedRows SortRanked(std::span<const SortKey> keys, SortMode mode);

}  // namespace quillmere::sort
