#include "lookup/array_index.h"

#include <algorithm>
#include <numeric>

#include "lookup/lookup_arguments.h"
#include "table/tuple_index.h"

namespace quillmere::lookup {
namespace {

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

  void Add(std::int32_t group, std::int32_t row) {
    const auto place = static_cast<std::size_t>(group);
    if (wantsAll_) {
      ++counts_[place];
      pairs_.push_back({group, row});
    } else if (rows_[place] == kNoRow && (nth_ == 1 || ++counts_[place] == nth_)) {
      rows_[place] = row;
      --unfinished_;
    }
  }

  /// Whether further rows make no difference.
  bool IsDone() const noexcept { return unfinished_ == 0; }

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

}  // namespace

struct ArrayIndex::Search {
  ArrayIndex& result;
  const LookupKeys& keys;
  const std::int32_t position;
  const bool wantsLast;
  const RowTuples rows;  ///< in the order in which they are wanted

  template <TextCase textCase>
  bool Run() {
    return rows.Count() < keys.Count() ? PassKeysByRows<textCase>() : PassRowsByKeys<textCase>();
  }

  template <TextCase textCase>
  bool PassRowsByKeys() {
    TupleIndex<textCase, LookupKeys> index(keys);
    if (!index.AddAll(result.groupOfKey_)) return false;
    RowCollector collector(keys.Count(), index.Groups(), position);
    const bool ordinary = index.FindAll(rows, [&](std::int32_t place, std::int32_t group) {
      collector.Add(group, RowAt(place));
      return !collector.IsDone();
    });
    Take(std::move(collector));
    return ordinary;
  }

  template <TextCase textCase>
  bool PassKeysByRows() {
    TupleIndex<textCase, RowTuples> index(rows);
    std::vector<std::int32_t> groups;
    if (!index.AddAll(groups)) return false;
    RowCollector collector(rows.Count(), index.Groups(), position);
    for (std::int32_t place = 0; place < rows.Count(); ++place)
      collector.Add(groups[static_cast<std::size_t>(place)], RowAt(place));
    Take(std::move(collector));
    result.groupOfKey_.assign(static_cast<std::size_t>(keys.Count()), kNoGroup);
    return index.FindAll(keys, [&](std::int32_t place, std::int32_t group) {
      result.groupOfKey_[static_cast<std::size_t>(place)] = group;
      return true;
    });
  }

  std::int32_t RowAt(std::int32_t place) const noexcept { return wantsLast ? rows.Count() - 1 - place : place; }

  void Take(RowCollector&& collector) {
    if (result.wantsAll_)
      std::move(collector).TakeAll(result.rowOfGroup_, result.allRows_);
    else
      result.rowOfGroup_ = std::move(collector).TakeRows();
  }
};

ArrayIndex::ArrayIndex(const RowTuples& rows, const LookupKeys& keys, std::int32_t position)
    : wantsAll_(position == wanted_match::kAll) {
  const bool wantsLast = position == wanted_match::kLast;
  Search search{*this, keys, position, wantsLast, wantsLast ? rows.Reversed() : rows};
  usable_ = keys.CaseSensitive() ? search.Run<TextCase::kCounts>() : search.Run<TextCase::kIgnored>();
}

void ArrayIndex::Record(std::int32_t key, FoundRows& found) const {
  const std::int32_t group = groupOfKey_[static_cast<std::size_t>(key)];
  if (group == kNoGroup) {
    AddFoundRow(found, kNoRow);
    return;
  }
  const auto place = static_cast<std::size_t>(group);
  if (!wantsAll_) {
    AddFoundRow(found, rowOfGroup_[place]);
    return;
  }
  if (rowOfGroup_[place] == rowOfGroup_[place + 1]) AddFoundRow(found, kNoRow);
  for (std::int32_t i = rowOfGroup_[place]; i < rowOfGroup_[place + 1]; ++i)
    AddFoundRow(found, allRows_[static_cast<std::size_t>(i)]);
}

}  // namespace quillmere::lookup
