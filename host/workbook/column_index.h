// Where the values of a sheet's column stand, so that many exact lookups in it need not scan it each time.
#pragma once

#include <algorithm>
#include <cstdint>
#include <map>
#include <memory>
#include <optional>
#include <shared_mutex>
#include <vector>

#include "host/workbook/cell_store.h"

namespace qcalc {

/// The rows of each value of one column, as it was when the index was built. Never changed; good until the column
/// changes.
class ColumnIndex {
 public:
  ColumnIndex(const CellStore& cells, std::int32_t column);

  /// The first row from `first` to `last` that holds the key (by EqualsKey); nothing when none does. `cells` are those
  /// that the index was built of.
  std::optional<std::int32_t> FirstRow(const CellStore& cells, const CellView& key, std::int32_t first,
                                       std::int32_t last) const;
  /// Calls `visitor(row)` for every row from `first` to `last` that holds the key, downwards.
  template <typename Visitor>
  void VisitRows(const CellStore& cells, const CellView& key, std::int32_t first, std::int32_t last,
                 Visitor&& visitor) const {
    const Rows rows = RowsOf(cells, key);
    for (const std::int32_t* row = std::lower_bound(rows.begin, rows.end, first); row != rows.end && *row <= last;
         ++row)
      visitor(*row);
  }
  /// The last row up to `last` that can be reached from `row`, which holds the key, over rows that all do.
  std::int32_t EndOfRun(const CellStore& cells, const CellView& key, std::int32_t row, std::int32_t last) const;

 private:
  struct Slot {
    std::uint32_t hash = 0;
    std::uint32_t group = 0;  ///< from 1 on; 0: free
  };
  struct Rows {
    const std::int32_t* begin;
    const std::int32_t* end;
  };

  // The slot of the key's group, or the free one where it would be; `rowOf(group)` is a row of the group.
  template <typename RowOfGroup>
  std::size_t FindSlot(const CellStore& cells, const CellView& key, std::uint32_t hash, RowOfGroup&& rowOf) const;
  Rows RowsOf(const CellStore& cells, const CellView& key) const;

  std::int32_t column_;
  std::vector<Slot> slots_;            // a power of two, at most half of them taken
  std::vector<std::uint32_t> starts_;  // of each group in rows_, and the end
  std::vector<std::int32_t> rows_;     // group by group, ascending
};

/// The indexes of one sheet's columns. They come to be where scanning has cost more than an index would, and count no
/// longer once their column is written to. Any number of threads may search while none writes.
class ColumnIndexes {
 public:
  /// The column's index, if it has one for its cells as they are.
  std::shared_ptr<const ColumnIndex> Find(const CellStore& cells, std::int32_t column) const;
  /// Tells that a search read that many cells of the column one by one. Builds the index when it has become worth it.
  void NoteScan(const CellStore& cells, std::int32_t column, std::int64_t count);

 private:
  struct Entry {
    std::uint64_t changes = 0;  ///< of the column, when this was noted
    std::int64_t scanned = 0;
    std::shared_ptr<const ColumnIndex> index;
  };

  mutable std::shared_mutex mutex_;
  std::map<std::int32_t, Entry> entries_;
};

}  // namespace qcalc
