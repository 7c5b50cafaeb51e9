// Which rows of several groups are wanted, as searches meet them.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"

namespace quillmere::lookup {

/// Takes in which rows are in which group, in the order in which they are wanted.
class RowCollector {
 public:
  /// `groups` groups, whose names are below `names`.
  RowCollector(std::int32_t names, std::int32_t groups, std::int32_t position)
      : nth_(std::max(position, 1)),
        wantsAll_(position == wanted_match::kAll),
        unfinished_(groups),
        rows_(static_cast<std::size_t>(names), kNoRow) {
    if (nth_ > 1 || wantsAll_) counts_.resize(rows_.size());
  }

  /// Takes the next row of a group. False when further ones of that group make no difference.
  bool Add(std::int32_t group, std::int32_t row) {
    const auto place = static_cast<std::size_t>(group);
    if (wantsAll_) {
      ++counts_[place];
      pairs_.push_back({group, row});
      return true;
    }
    if (rows_[place] == kNoRow && (nth_ == 1 || ++counts_[place] == nth_)) {
      rows_[place] = row;
      --unfinished_;
    }
    return rows_[place] == kNoRow;
  }

  /// Whether further rows make no difference to any group.
  bool IsDone() const noexcept { return unfinished_ == 0; }
  /// How many rows were taken of all groups, where all are wanted.
  std::size_t Taken() const noexcept { return pairs_.size(); }

  /// The wanted row of each group, or kNoRow; where not all are wanted.
  std::vector<std::int32_t> TakeRows() && { return std::move(rows_); }

  /// All rows, group by group, and the place where each group starts, and the last one ends.
  void TakeAll(std::vector<std::int32_t>& starts, std::vector<std::int32_t>& rows) && {
    starts.assign(counts_.size() + 1, 0);
    std::inclusive_scan(counts_.begin(), counts_.end(), starts.begin() + 1);
    rows.resize(pairs_.size());
    std::vector<std::int32_t> next(starts);
    for (const auto& [group, row] : pairs_)
      rows[static_cast<std::size_t>(next[static_cast<std::size_t>(group)]++)] = row;
  }

 private:
  struct Pair {
    std::int32_t group;
    std::int32_t row;
  };

  std::int32_t nth_;
  bool wantsAll_;
  std::int32_t unfinished_;
  std::vector<std::int32_t> rows_;
  std::vector<std::int32_t> counts_;
  std::vector<Pair> pairs_;
};

}  // namespace quillmere::lookup
