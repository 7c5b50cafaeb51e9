#include "lookup/array_index.h"

#include <algorithm>

#include "lookup/lookup_arguments.h"
#include "lookup/row_collector.h"
#include "table/tuple_index.h"

namespace quillmere::lookup {

struct ArrayIndex::Search {
  ArrayIndex& result;
  const LookupKeys& keys;
  const std::int32_t position;
  const bool wantsLast;
  const RowTuples rows;  ///< in the order in which they are wanted

  template <TextCase textCase>
  void Run() {
    if (rows.Count() < keys.Count())
      PassKeysByRows<textCase>();
    else
      PassRowsByKeys<textCase>();
  }

  template <TextCase textCase>
  void PassRowsByKeys() {
    TupleIndex<textCase, LookupKeys> index(keys);
    result.groupOfKey_.resize(static_cast<std::size_t>(keys.Count()));
    index.AddAll(result.groupOfKey_);
    RowCollector collector(keys.Count(), index.Groups(), position);
    const auto take = [&](std::int32_t place, std::int32_t group) {
      collector.Add(group, RowAt(place));
      return !collector.IsDone();
    };
    index.FindAll(rows, take, [&](std::int32_t place) { result.oddRows_.push_back(RowAt(place)); });
    Take(std::move(collector));
  }

  template <TextCase textCase>
  void PassKeysByRows() {
    TupleIndex<textCase, RowTuples> index(rows);
    std::vector<std::int32_t> groups(static_cast<std::size_t>(rows.Count()));
    index.AddAll(groups);
    RowCollector collector(rows.Count(), index.Groups(), position);
    for (std::int32_t place = 0; place < rows.Count(); ++place) {
      const std::int32_t group = groups[static_cast<std::size_t>(place)];
      if (group == kOddTuple)
        result.oddRows_.push_back(RowAt(place));
      else
        collector.Add(group, RowAt(place));
    }
    Take(std::move(collector));
    result.groupOfKey_.assign(static_cast<std::size_t>(keys.Count()), kNoGroup);
    const auto take = [&](std::int32_t place, std::int32_t group) {
      result.groupOfKey_[static_cast<std::size_t>(place)] = group;
      return true;
    };
    index.FindAll(keys, take, [&](std::int32_t place) { take(place, kOddTuple); });
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
  keys.CaseSensitive() ? search.Run<TextCase::kCounts>() : search.Run<TextCase::kIgnored>();
  if (wantsLast) std::ranges::reverse(oddRows_);
  // Which row is the n-th hangs on the odd ones before it.
  if (position > 1 && !oddRows_.empty()) *this = ArrayIndex(rows, keys, wanted_match::kAll);
}

bool ArrayIndex::IsOddKey(std::int32_t key) const noexcept {
  return groupOfKey_[static_cast<std::size_t>(key)] == kOddTuple;
}

std::span<const std::int32_t> ArrayIndex::RowsOf(std::int32_t key) const noexcept {
  const std::int32_t group = groupOfKey_[static_cast<std::size_t>(key)];
  if (group < 0) return {};
  const std::int32_t* const row = &rowOfGroup_[static_cast<std::size_t>(group)];
  if (wantsAll_) return {allRows_.data() + row[0], allRows_.data() + row[1]};
  return {row, *row == kNoRow ? std::size_t{0} : 1};
}

bool ArrayIndex::Record(std::int32_t key, FoundRows& found) const {
  const std::int32_t group = groupOfKey_[static_cast<std::size_t>(key)];
  if (group == kOddTuple || !oddRows_.empty()) return false;
  if (group == kNoGroup) {
    AddFoundRow(found, kNoRow);
  } else if (!wantsAll_) {
    AddFoundRow(found, rowOfGroup_[static_cast<std::size_t>(group)]);
  } else {
    const std::span<const std::int32_t> rows = RowsOf(key);
    if (rows.empty()) AddFoundRow(found, kNoRow);
    for (const std::int32_t row : rows) AddFoundRow(found, row);
  }
  return true;
}

}  // namespace quillmere::lookup
