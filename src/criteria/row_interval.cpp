#include "criteria/row_interval.h"

#include <algorithm>
#include <cstdint>

#include "xlcall/xlcall.h"

namespace quillmere::criteria {

std::int64_t CountRows(std::span<const RowInterval> intervals) noexcept {
  std::int64_t rows = 0;
  for (const RowInterval& interval : intervals) rows += interval.Rows();
  return rows;
}

RowIntervals MergeIntervals(std::span<const RowIntervals> lists) {
  RowIntervals all;
  for (const RowIntervals& list : lists) all.insert(all.end(), list.begin(), list.end());
  std::ranges::sort(all, {}, &RowInterval::first);
  RowIntervals merged;
  for (const RowInterval& interval : all) {
    if (!merged.empty() && interval.first <= merged.back().last + 1) {
      merged.back().last = std::max(merged.back().last, interval.last);
    } else {
      merged.push_back(interval);
    }
  }
  return merged;
}

bool IntervalGroups::Next() noexcept {
  while (!left_.empty() && left_.front().last < next_) left_ = left_.subspan(1);
  if (left_.empty()) return false;
  const std::int32_t first = std::max(left_.front().first, next_);
  const std::int32_t end = first + std::min(mostRows_, kXlMaxRows);
  std::int32_t last = first;
  std::size_t count = 0;
  for (const RowInterval& interval : left_) {
    if (count != 0 && (interval.first >= end || interval.first - last - 1 > mostBetween_)) break;
    last = std::min(interval.last, end - 1);
    ++count;
    if (last == end - 1) break;
  }
  next_ = last + 1;
  current_ = {{first, last}, left_.first(count)};
  return true;
}

}  // namespace quillmere::criteria
