#include "sort/join_rows.h"

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
void PassByIndex(const RowTuples& indexed, std::vector<std::int32_t>& groupsOfIndexed, const RowTuples& passed,
                 std::vector<std::int32_t>& groupsOfPassed) {
  TupleIndex<textCase, RowTuples> index(indexed);
  index.AddAll(groupsOfIndexed);
  groupsOfPassed.assign(static_cast<std::size_t>(passed.Count()), kNoGroup);
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
    : groups_(std::move(groups.ofFirst)), keepsAll_(keepsAll), starts_(static_cast<std::size_t>(groups.names) + 1) {
  for (const std::int32_t group : groups.ofSecond)
    if (group >= 0) ++starts_[static_cast<std::size_t>(group) + 1];
  std::inclusive_scan(starts_.begin(), starts_.end(), starts_.begin());
  rows_.resize(static_cast<std::size_t>(starts_.back()));
  std::vector<std::int32_t> next(starts_);
  for (std::size_t row = 0; row < groups.ofSecond.size(); ++row)
    if (const std::int32_t group = groups.ofSecond[row]; group >= 0)
      rows_[static_cast<std::size_t>(next[static_cast<std::size_t>(group)]++)] = static_cast<std::int32_t>(row);
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
  RowPairs pairs;
  pairs.first.reserve(static_cast<std::size_t>(count_));
  pairs.second.reserve(static_cast<std::size_t>(count_));
  const auto add = [&](std::size_t first, std::int32_t second) {
    pairs.first.push_back(static_cast<std::int32_t>(first));
    pairs.second.push_back(second);
  };
  for (std::size_t row = 0; row < groups_.size(); ++row) {
    const std::span<const std::int32_t> partners = Of(groups_[row]);
    for (const std::int32_t partner : partners) add(row, partner);
    if (partners.empty() && keepsAll_) add(row, kNoPartner);
  }
  return pairs;
}

std::vector<std::int32_t> RowsWithoutPartner(std::span<const std::int32_t> groups,
                                             std::span<const std::int32_t> otherGroups, std::int32_t names) {
  std::vector<bool> isThere(static_cast<std::size_t>(names));
  for (const std::int32_t group : otherGroups)
    if (group >= 0) isThere[static_cast<std::size_t>(group)] = true;
  std::vector<std::int32_t> rows;
  for (std::size_t row = 0; row < groups.size(); ++row)
    if (groups[row] < 0 || !isThere[static_cast<std::size_t>(groups[row])])
      rows.push_back(static_cast<std::int32_t>(row));
  return rows;
}

}  // namespace quillmere::sort
