#include "criteria/row_scan.h"

#include <algorithm>
#include <numeric>
#include <vector>

namespace quillmere::criteria {
namespace {

/// Rows are tested so many at a time: few enough for their cells to stay in the processor's cache from test to test.
constexpr std::int32_t kBatchRows = 1024;
/// And after so many batches the order of the tests is thought over.
constexpr int kBatchesPerOrder = 16;

/// One group on its way down the rows.
class GroupScan {
 public:
  explicit GroupScan(const NarrowedGroup& group) : runs_(group.runs), tests_(group.tests.size()) {
    for (std::size_t i = 0; i < tests_.size(); ++i) tests_[i].test = &group.tests[i];
    SortTests();
  }

  /// Writes the selected rows of a batch, counted from its first; returns how many there are. Batches come in
  /// ascending order. `offset` is the batch's place in what was read of the columns.
  std::int32_t Select(const CriteriaColumns& columns, const RowInterval& batch, std::int32_t offset,
                      BatchPlace* places) {
    std::int32_t count = RowsOfRuns(batch, places);
    if (count != 0 && ++batches_ % kBatchesPerOrder == 0) SortTests();
    for (RankedTest& ranked : tests_) {
      if (count == 0) break;
      CellLine cells = columns.Line(ranked.test->column);
      cells.first += std::int64_t{offset} * cells.stride;
      ranked.tested += count;
      count = ranked.test->test->Keep(cells, places, count);
      ranked.kept += count;
    }
    return count;
  }

 private:
  struct RankedTest {
    const CriteriaTest* test;
    double tested = 1;
    double kept = 0.5;

    /// What it costs to be rid of a row.
    double CostPerReject() const noexcept { return test->test->Cost() * tested / (tested - kept); }
  };

  void SortTests() { std::ranges::stable_sort(tests_, {}, &RankedTest::CostPerReject); }

  std::int32_t RowsOfRuns(const RowInterval& batch, BatchPlace* places) {
    std::int32_t count = 0;
    while (!runs_.empty() && runs_.front().last < batch.first) runs_ = runs_.subspan(1);
    for (const RowInterval& run : runs_) {
      if (run.first > batch.last) break;
      const std::int32_t first = std::max(run.first, batch.first);
      const std::int32_t last = std::min(run.last, batch.last);
      std::iota(places + count, places + count + (last - first + 1), static_cast<BatchPlace>(first - batch.first));
      count += last - first + 1;
    }
    return count;
  }

  std::span<const RowInterval> runs_;  ///< those not passed yet
  std::vector<RankedTest> tests_;
  int batches_ = 0;
};

void AddPlaces(RowIntervals& intervals, std::int32_t firstRow, const BatchPlace* places, std::int32_t count) {
  for (std::int32_t i = 0; i < count;) {
    const std::int32_t start = i;
    while (++i < count && places[i] == places[i - 1] + 1) continue;
    AddRows(intervals, firstRow + places[start], firstRow + places[i - 1]);
  }
}

/// All groups on their way.
class Scan {
 public:
  Scan(CriteriaColumns& columns, std::span<const NarrowedGroup> groups)
      : columns_(columns), groups_(groups.begin(), groups.end()) {}

  void Batch(const RowInterval& batch, std::int32_t offset) {
    BatchPlace places[kBatchRows];
    if (groups_.size() == 1) {
      AddPlaces(selected_, batch.first, places, groups_.front().Select(columns_, batch, offset, places));
      return;
    }
    bool isSelected[kBatchRows] = {};
    for (GroupScan& group : groups_) {
      const std::int32_t count = group.Select(columns_, batch, offset, places);
      for (std::int32_t i = 0; i < count; ++i) isSelected[places[i]] = true;
    }
    std::int32_t count = 0;
    for (std::int32_t place = 0; place < batch.Rows(); ++place) {
      places[count] = static_cast<BatchPlace>(place);
      count += isSelected[place] ? 1 : 0;
    }
    AddPlaces(selected_, batch.first, places, count);
  }

  RowIntervals Selected() && { return std::move(selected_); }

 private:
  CriteriaColumns& columns_;
  std::vector<GroupScan> groups_;
  RowIntervals selected_;
};

}  // namespace

RowIntervals ScanRows(CriteriaColumns& columns, std::span<const NarrowedGroup> groups) {
  std::vector<RowIntervals> runs;
  for (const NarrowedGroup& group : groups) runs.push_back(group.runs);
  const RowIntervals rows = MergeIntervals(runs);
  Scan scan(columns, groups);
  for (IntervalGroups stretches(rows, columns.MostRows(), kRowsReadAlong); stretches.Next();) {
    const RowInterval& stretch = stretches.Current().rows;
    columns.Read(stretch);
    for (std::int32_t first = stretch.first; first <= stretch.last; first += kBatchRows)
      scan.Batch({first, std::min(first + kBatchRows - 1, stretch.last)}, first - stretch.first);
  }
  return std::move(scan).Selected();
}

}  // namespace quillmere::criteria
