#include "sort/join_rows.h"

#include <algorithm>
#include <numeric>
#include <utility>

#include "table/cell_type.h"
#include "table/tuple_index.h"

namespace quillmere::sort {
namespace {

bool HasEmptyPart(const RowTuples& rows, std::int32_t row) {
  for (std::size_t part = 0; part < rows.Parts(); ++part)
    if (CellTypeOf(rows.At(row, part)) == cell_type::kEmpty) return true;
  return false;
}

/// Indexes one table and passes the rows of the other by it. Rows with an empty part may share a group with others of
/// the table that is indexed, but with none of those that pass.
template <TextCase textCase>
void PassByIndex(const RowTuples& indexed, RowNumbers& groupsOfIndexed, const RowTuples& passed,
                 RowNumbers& groupsOfPassed) {
  groupsOfIndexed = RowNumbers(static_cast<std::size_t>(indexed.Count()));
  groupsOfPassed = RowNumbers(static_cast<std::size_t>(passed.Count()));
  std::ranges::fill(groupsOfPassed, kNoGroup);
  TupleIndex<textCase, RowTuples> index(indexed);
  index.AddAll({groupsOfIndexed.data(), groupsOfIndexed.size()});
  const auto take = [&](std::int32_t row, std::int32_t group) {
    if (!HasEmptyPart(passed, row)) groupsOfPassed[static_cast<std::size_t>(row)] = group;
    return true;
  };
  index.FindAll(passed, take, [](std::int32_t) {});
}

}  // namespace

KeyGroups GroupByKeys(const RowTuples& first, const RowTuples& second, TextCase textCase) {
  const auto pass = textCase == TextCase::kCounts ? PassByIndex<TextCase::kCounts> : PassByIndex<TextCase::kIgnored>;
  KeyGroups groups;
  // The index holds the fewer rows.
  if (first.Count() < second.Count())
    pass(first, groups.ofFirst, second, groups.ofSecond);
  else
    pass(second, groups.ofSecond, first, groups.ofFirst);
  groups.names = std::min(first.Count(), second.Count());
  return groups;
}

Partners::Partners(KeyGroups groups, bool keepsAll)
    : groups_(std::move(groups.ofFirst)), keepsAll_(keepsAll), starts_(static_cast<std::size_t>(groups.names) + 2) {
  // What a group's start is to be lies a place behind it: while its rows are put in, it moves on to the end of them.
  std::ranges::fill(starts_, 0);
  for (const std::int32_t group : groups.ofSecond)
    if (group >= 0) ++starts_[static_cast<std::size_t>(group) + 2];
  std::inclusive_scan(starts_.begin(), starts_.end(), starts_.begin());
  rows_ = RowNumbers(static_cast<std::size_t>(starts_[starts_.size() - 1]));
  std::int32_t row = 0;
  for (const std::int32_t group : groups.ofSecond) {
    if (group >= 0) rows_[static_cast<std::size_t>(starts_[static_cast<std::size_t>(group) + 1]++)] = row;
    ++row;
  }
  for (const std::int32_t group : groups_) {
    const auto partners = static_cast<std::int64_t>(Of(group).size());
    count_ += partners == 0 && keepsAll_ ? 1 : partners;
  }
}

std::span<const std::int32_t> Partners::Of(std::int32_t group) const noexcept {
  if (group < 0) return {};
  const std::int32_t* const start = &starts_[static_cast<std::size_t>(group)];
  return {rows_.data() + start[0], rows_.data() + start[1]};
}

RowPairs Partners::List() const {
  RowPairs pairs{RowNumbers(static_cast<std::size_t>(count_)), RowNumbers(static_cast<std::size_t>(count_))};
  std::int32_t* first = pairs.first.data();
  std::int32_t* second = pairs.second.data();
  std::int32_t row = 0;
  for (const std::int32_t group : groups_) {
    const std::span<const std::int32_t> partners = Of(group);
    first = std::fill_n(first, partners.size(), row);
    second = std::copy(partners.begin(), partners.end(), second);
    if (partners.empty() && keepsAll_) {
      *first++ = row;
      *second++ = kNoPartner;
    }
    ++row;
  }
  return pairs;
}

ScratchList<std::int32_t> RowsWithoutPartner(const RowNumbers& groups, const RowNumbers& otherGroups,
                                             std::int32_t names) {
  // Without jumps, since which rows have one may be anybody's guess: those in no group are marked with the others,
  // below.
  constexpr std::int32_t kBelow = -kOddTuple;
  ScratchArray<bool> isThere(static_cast<std::size_t>(names + kBelow));
  std::ranges::fill(isThere, false);
  for (const std::int32_t group : otherGroups) isThere[static_cast<std::size_t>(group + kBelow)] = true;
  std::fill_n(isThere.begin(), kBelow, false);
  ScratchList<std::int32_t> rows;
  rows.MakeRoomFor(groups.size());
  std::size_t count = 0;
  std::int32_t row = 0;
  for (const std::int32_t group : groups) {
    rows.Room()[count] = row++;
    count += isThere[static_cast<std::size_t>(group + kBelow)] ? 0 : 1;
  }
  rows.SetSize(count);
  return rows;
}

}  // namespace quillmere::sort
