#include "lookup/array_bisection.h"

#include <algorithm>
#include <array>
#include <bit>

#include "lookup/bisection.h"

namespace quillmere {
namespace {

/// So many bisections go on side by side: while one waits for its cell, the others' are on their way.
constexpr std::int32_t kLanes = 32;

struct Lane {
  Key key;
  Bisection bisection;
};

using Lanes = std::span<Lane>;

template <SortOrder order, RunEnd end>
void StepLane(const ArrayColumns& table, Key key, Bisection& bisection) {
  const std::int32_t row = bisection.Middle();
  if (IsEmptyCell(table.At(row, 0))) {
    bisection.StepOverEmpty();
    return;
  }
  const int comparison = CompareRow(table, row, key);
  bisection.Step<order, end>(comparison<0, comparison> 0);
}

/// Keys of any kind, of one or several parts.
template <SortOrder order, RunEnd end>
void BisectLanes(const ArrayColumns& table, Lanes lanes) {
  for (bool busy = true; busy;) {
    busy = false;
    for (Lane& lane : lanes)
      if (!lane.bisection.IsDone()) __builtin_prefetch(&table.At(lane.bisection.Middle(), 0));
    for (Lane& lane : lanes) {
      if (lane.bisection.IsDone()) continue;
      const XLOPER12& cell = table.At(lane.bisection.Middle(), 0);
      if (IsTextCell(cell)) __builtin_prefetch(cell.val.str);
    }
    for (Lane& lane : lanes) {
      if (lane.bisection.IsDone()) continue;
      StepLane<order, end>(table, lane.key, lane.bisection);
      busy = true;
    }
  }
}

/// Keys of one part that are numbers. No branch hangs on how they compare with number cells, nor on how far a bisection
/// has come: to look once more at the row before its end changes nothing.
template <SortOrder order, RunEnd end>
void BisectNumberLanes(const ArrayColumns& table, Lanes lanes) {
  std::array<double, kLanes> wanted;
  std::array<Bisection, kLanes> bisections;
  for (std::size_t i = 0; i < lanes.size(); ++i) {
    wanted[i] = lanes[i].key[0].value.val.num;
    bisections[i] = lanes[i].bisection;
  }
  const XLOPER12* const column = &table.At(0, 0);
  const std::int64_t stride = table.cells.columns;
  const int rounds = std::bit_width(static_cast<std::uint32_t>(table.cells.rows));
  for (int round = 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < lanes.size(); ++i) {
      Bisection& bisection = bisections[i];
      const XLOPER12& cell = column[bisection.Middle() * stride];
      if (IsNumberCell(cell)) [[likely]]
        bisection.Step<order, end>(cell.val.num<wanted[i], cell.val.num> wanted[i]);
      else if (!bisection.IsDone())
        StepLane<order, end>(table, lanes[i].key, bisection);
    }
  }
  for (std::size_t i = 0; i < lanes.size(); ++i) lanes[i].bisection = bisections[i];
}

bool AreSingleNumbers(Lanes lanes) {
  return std::all_of(lanes.begin(), lanes.end(),
                     [](const Lane& lane) { return lane.key.size() == 1 && IsNumberCell(lane.key[0].value); });
}

template <SortOrder order, RunEnd end>
void Bisect(const ArrayColumns& table, Lanes lanes) {
  for (Lane& lane : lanes) lane.bisection = Bisection(table.cells.rows);
  AreSingleNumbers(lanes) ? BisectNumberLanes<order, end>(table, lanes) : BisectLanes<order, end>(table, lanes);
}

template <SortOrder order>
void FindRuns(const ArrayColumns& table, Lanes lanes, RunEnds ends, std::span<SortedRun> runs) {
  if (ends != RunEnds::kLast) {
    Bisect<order, RunEnd::kFirst>(table, lanes);
    for (std::size_t i = 0; i < lanes.size(); ++i) {
      const Bisection& bisection = lanes[i].bisection;
      const std::int32_t row = bisection.Row<RunEnd::kFirst>();
      runs[i] = {row, row, bisection.equal};
    }
  }
  if (ends != RunEnds::kFirst) {
    Bisect<order, RunEnd::kLast>(table, lanes);
    for (std::size_t i = 0; i < lanes.size(); ++i) {
      const Bisection& bisection = lanes[i].bisection;
      runs[i].last = bisection.Row<RunEnd::kLast>();
      if (ends == RunEnds::kBoth) continue;
      runs[i].first = runs[i].last;
      runs[i].equal = bisection.equal;
    }
  }
}

}  // namespace

void BisectArray(const ArrayColumns& table, const LookupKeys& keys, const MatchRules& rules, std::int32_t position,
                 FoundRows& found) {
  const RunEnds ends = NeededEnds(rules.order, position);
  std::array<Lane, kLanes> lanes;
  std::array<SortedRun, kLanes> runs;
  std::array<KeyRoom, kLanes> rooms;
  for (std::int32_t first = 0; first < keys.Count(); first += kLanes) {
    const std::int32_t count = std::min(kLanes, keys.Count() - first);
    const Lanes busy(lanes.data(), static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i) lanes[i].key = rooms[i].Prepare(keys, first + i);
    rules.order == SortOrder::kAscending ? FindRuns<SortOrder::kAscending>(table, busy, ends, runs)
                                         : FindRuns<SortOrder::kDescending>(table, busy, ends, runs);
    for (int i = 0; i < count; ++i) RecordRun(runs[i], position, rules.exact, found);
  }
}

}  // namespace quillmere
