// Which rows of two tables are partners: those whose keys are equal.
#pragma once

#include <cstdint>
#include <span>

#include "frame/values/scratch_list.h"
#include "table/cell_hash.h"
#include "table/cell_tuples.h"

namespace quillmere::sort {

using RowNumbers = ScratchArray<std::int32_t>;

/// The rows of two tables, 0-based, by their keys. Rows are partners when they are in the same group; one that cannot
/// have a partner may be in a group of its own table alone, or in none, which is a negative number.
struct KeyGroups {
  RowNumbers ofFirst;      ///< the group of each row of the first table
  RowNumbers ofSecond;     ///< and of the second
  std::int32_t names = 0;  ///< all groups are numbers below this
};

/// Groups the rows of two tables by keys of equally many parts. A key with an empty cell, or with a number that is
/// none, equals nothing.
KeyGroups GroupByKeys(const RowTuples& first, const RowTuples& second, TextCase textCase);

/// In place of a partner: none.
constexpr std::int32_t kNoPartner = -1;

/// Rows of two tables side by side; the lists are equally long.
struct RowPairs {
  RowNumbers first;
  RowNumbers second;  ///< kNoPartner where there is none
};

/// The rows of the first table in order, each with its partners in theirs.
class Partners {
 public:
  /// `keepsAll`: a row without partners is listed too, once.
  Partners(KeyGroups groups, bool keepsAll);

  /// How many pairs there are. They may be more than memory holds.
  std::int64_t Count() const noexcept { return count_; }
  RowPairs List() const;

 private:
  std::span<const std::int32_t> Of(std::int32_t group) const noexcept;

  RowNumbers groups_;  ///< of each row of the first table
  bool keepsAll_;
  RowNumbers starts_;  ///< of each group in rows_, and the end of the last
  RowNumbers rows_;    ///< of the second table, group by group
  std::int64_t count_ = 0;
};

/// The rows of a table that have no partner among those of the other, in order, by the groups of both.
ScratchList<std::int32_t> RowsWithoutPartner(const RowNumbers& groups, const RowNumbers& otherGroups,
                                             std::int32_t names);

}  // namespace quillmere::sort
