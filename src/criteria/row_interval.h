// Selected rows as runs of rows that follow each other: a million rows that are all selected are one of them.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

namespace quillmere::criteria {

/// The first and last row of a run, 0-based within the data.
struct RowInterval {
  std::int32_t first;
  std::int32_t last;

  std::int32_t Rows() const noexcept { return last - first + 1; }
  friend bool operator==(const RowInterval&, const RowInterval&) = default;
};

/// In ascending order, with rows between them that are not selected.
using RowIntervals = std::vector<RowInterval>;

/// Adds rows that lie behind all that are in the list: to its last interval where they follow it.
inline void AddRows(RowIntervals& intervals, std::int32_t first, std::int32_t last) {
  if (!intervals.empty() && intervals.back().last + 1 == first) {
    intervals.back().last = last;
  } else {
    intervals.push_back({first, last});
  }
}

/// The number of rows in all intervals.
std::int64_t CountRows(std::span<const RowInterval> intervals) noexcept;

/// The rows that are in any of several lists.
RowIntervals MergeIntervals(std::span<const RowIntervals> lists);

/// Rows between two intervals of a reference that are read along with them, since another callback would cost more.
constexpr std::int32_t kRowsReadAlong = 64;

/// Intervals taken together for reading: `rows` from the first to the last of `intervals`.
struct IntervalGroup {
  RowInterval rows;
  std::span<const RowInterval> intervals;  ///< as they are listed, the first and last perhaps reaching beyond `rows`
};

/// Walks through intervals by groups that are read at once:
///
///   for (IntervalGroups groups(intervals, mostRows, mostBetween); groups.Next();) ... groups.Current() ...
///
/// A group has `mostRows` rows at most, a longer interval is in several; intervals are together where no more than
/// `mostBetween` rows lie between them.
class IntervalGroups {
 public:
  IntervalGroups(std::span<const RowInterval> intervals, std::int32_t mostRows, std::int32_t mostBetween) noexcept
      : left_(intervals), mostRows_(mostRows), mostBetween_(mostBetween) {}

  bool Next() noexcept;
  const IntervalGroup& Current() const noexcept { return current_; }

 private:
  std::span<const RowInterval> left_;  ///< from the one on that the last group ended in
  std::int32_t mostRows_;
  std::int32_t mostBetween_;
  std::int32_t next_ = 0;  ///< the first row that may be in the next group
  IntervalGroup current_{{0, -1}, {}};
};

}  // namespace quillmere::criteria
