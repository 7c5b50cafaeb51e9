#include "lookup/array_bisection.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <optional>

#include "lookup/array_rows.h"
#include "lookup/bisection_top.h"
#include "lookup/sorted_run.h"

namespace quillmere::lookup {
namespace {

/// So many bisections go on side by side: while one waits for its cell, the others' are on their way.
constexpr std::int32_t kLanes = 32;

struct Lane {
  Key key;        ///< not made ready where `number` is all that is looked for
  double number;  ///< of a key that is one number
  Bisection bisection;
};

using Lanes = std::span<Lane>;
using Runs = std::array<SortedRun, kLanes>;

/// What a batch of keys is made of.
enum class LaneKind {
  kNumbers,  ///< each key is one finite number
  kAny,
};

bool IsFiniteNumber(const XLOPER12& cell) { return IsNumberCell(cell) && std::isfinite(cell.val.num); }

/// Gives the lanes the keys from `first` on.
LaneKind FillLanes(Lanes lanes, std::span<KeyRoom> rooms, const LookupKeys& keys, std::int32_t first) {
  bool areNumbers = keys.Parts() == 1;
  for (std::size_t i = 0; areNumbers && i < lanes.size(); ++i) {
    const XLOPER12& key = keys.At(first + static_cast<std::int32_t>(i), 0);
    areNumbers = IsFiniteNumber(key);
    lanes[i].number = key.val.num;
  }
  if (areNumbers) return LaneKind::kNumbers;
  for (std::size_t i = 0; i < lanes.size(); ++i)
    lanes[i].key = rooms[i].Prepare(keys, first + static_cast<std::int32_t>(i));
  return LaneKind::kAny;
}

template <SortOrder order, RunEnd end>
void StepLane(const RowTuples& rows, Key key, Bisection& bisection) {
  const std::int32_t row = bisection.Middle();
  if (IsEmptyCell(rows.At(row, 0))) {
    bisection.StepOverEmpty();
    return;
  }
  const int comparison = CompareRow(rows, row, key);
  const bool before = comparison < 0;
  const bool after = comparison > 0;
  bisection.Step<order, end>(before, after);
}

/// Keys of any kind, of one or several parts.
template <SortOrder order, RunEnd end>
void BisectLanes(const RowTuples& rows, Lanes lanes) {
  for (bool busy = true; busy;) {
    busy = false;
    for (Lane& lane : lanes)
      if (!lane.bisection.IsDone()) PrefetchCell(&rows.At(lane.bisection.Middle(), 0));
    for (Lane& lane : lanes)
      if (!lane.bisection.IsDone()) PrefetchText(rows.At(lane.bisection.Middle(), 0));
    for (Lane& lane : lanes) {
      if (lane.bisection.IsDone()) continue;
      StepLane<order, end>(rows, lane.key, lane.bisection);
      busy = true;
    }
  }
}

/// Takes in a cell that is no number, for a key that is one.
template <SortOrder order, RunEnd end>
void StepOverOther(const XLOPER12& cell, Bisection& bisection) {
  if (CellType(cell) == xltypeNil)
    bisection.StepOverEmpty();
  else
    bisection.Step<order, end>(false, true);  // all other kinds come after the numbers
}

/// The lanes' first steps, by the top of all bisections.
template <SortOrder order, RunEnd end>
void DescendTop(const BisectionTop& top, Lanes lanes) {
  std::array<std::uint32_t, kLanes> nodes{};
  std::array<bool, kLanes> equal{};
  for (int level = 0; level < BisectionTop::kLevels; ++level) {
    for (std::size_t i = 0; i < lanes.size(); ++i) {
      const double number = top[nodes[i]];
      const bool before = number < lanes[i].number;
      const bool after = number > lanes[i].number;
      equal[i] |= !before && !after;
      nodes[i] = nodes[i] * 2 + (Bisection::GoesOn<order, end>(before, after) ? 2 : 1);
    }
  }
  for (std::size_t i = 0; i < lanes.size(); ++i) {
    lanes[i].bisection = top.BelowIt(nodes[i]);
    lanes[i].bisection.equal = equal[i];
  }
}

/// Keys of one part that are numbers. No branch hangs on how they compare with number cells, and each lane asks for its
/// next cell as soon as it knows which that is.
template <SortOrder order, RunEnd end>
void BisectNumberLanes(const RowTuples& rows, Lanes lanes, const BisectionTop* top) {
  if (top) DescendTop<order, end>(*top, lanes);
  const XLOPER12* const column = rows.CellAt(0, 0);
  const std::ptrdiff_t stride = rows.Stride();
  std::array<double, kLanes> wanted;
  std::array<Bisection, kLanes> bisections;
  std::array<const XLOPER12*, kLanes> cells;
  const auto aim = [&](std::size_t i) {
    cells[i] = column + std::max(bisections[i].Middle(), 0) * stride;
    PrefetchCell(cells[i]);
  };
  for (std::size_t i = 0; i < lanes.size(); ++i) {
    wanted[i] = lanes[i].number;
    bisections[i] = lanes[i].bisection;
    aim(i);
  }
  const auto step = [&](std::size_t i) {
    Bisection& bisection = bisections[i];
    if (IsNumberCell(*cells[i])) [[likely]]
      bisection.Step<order, end>(cells[i]->val.num<wanted[i], cells[i]->val.num> wanted[i]);
    else
      StepOverOther<order, end>(*cells[i], bisection);
  };
  // So many halvings leave every lane with something to halve; after them a lane is done or has one row to look at.
  const int rounds = std::bit_width(static_cast<std::uint32_t>(rows.Count()) + 1) - 1;
  for (int round = top ? BisectionTop::kLevels : 0; round < rounds; ++round) {
    for (std::size_t i = 0; i < lanes.size(); ++i) {
      step(i);
      aim(i);
    }
  }
  for (std::size_t i = 0; i < lanes.size(); ++i) {
    if (!bisections[i].IsDone()) step(i);
    lanes[i].bisection = bisections[i];
  }
}

template <SortOrder order, RunEnd end>
void Bisect(const RowTuples& rows, Lanes lanes, LaneKind kind, const BisectionTop* top, Runs& runs) {
  for (Lane& lane : lanes) lane.bisection = Bisection(rows.Count());
  if (kind == LaneKind::kNumbers)
    BisectNumberLanes<order, end>(rows, lanes, top);
  else
    BisectLanes<order, end>(rows, lanes);
  for (std::size_t i = 0; i < lanes.size(); ++i) runs[i] = RunOf<end>(lanes[i].bisection);
}

template <SortOrder order>
void FindFirstSorted(const RowTuples& rows, Lanes lanes, LaneKind kind, const BisectionTop* top, Runs& runs) {
  Bisect<order, RunEnd::kFirst>(rows, lanes, kind, top, runs);
}

template <SortOrder order>
void FindLastSorted(const RowTuples& rows, Lanes lanes, LaneKind kind, const BisectionTop* top, Runs& runs) {
  Bisect<order, RunEnd::kLast>(rows, lanes, kind, top, runs);
}

template <SortOrder order>
void FindRuns(const RowTuples& rows, Lanes lanes, LaneKind kind, const BisectionTop* top, RunEnds ends, Runs& runs) {
  if (ends == RunEnds::kLast) {
    FindLastSorted<order>(rows, lanes, kind, top, runs);
    return;
  }
  FindFirstSorted<order>(rows, lanes, kind, top, runs);
  if (ends == RunEnds::kFirst) return;
  Runs lasts;
  FindLastSorted<order>(rows, lanes, kind, top, lasts);
  for (std::size_t i = 0; i < lanes.size(); ++i) runs[i].last = lasts[i].last;
}

}  // namespace

void BisectArray(const RowTuples& rows, const LookupKeys& keys, const MatchRules& rules, std::int32_t position,
                 FoundRows& found) {
  const RunEnds ends = NeededEnds(rules.order, position);
  std::optional<BisectionTop> top;
  if (keys.Parts() == 1 && BisectionTop::Pays(rows.Count(), keys.Count())) top.emplace(rows, rules.order);
  const BisectionTop* const held = top ? &*top : nullptr;
  std::array<Lane, kLanes> lanes;
  Runs runs;
  std::array<KeyRoom, kLanes> rooms;
  for (std::int32_t first = 0; first < keys.Count(); first += kLanes) {
    const std::int32_t count = std::min(kLanes, keys.Count() - first);
    const Lanes busy(lanes.data(), static_cast<std::size_t>(count));
    const LaneKind kind = FillLanes(busy, rooms, keys, first);
    rules.order == SortOrder::kAscending ? FindRuns<SortOrder::kAscending>(rows, busy, kind, held, ends, runs)
                                         : FindRuns<SortOrder::kDescending>(rows, busy, kind, held, ends, runs);
    for (int i = 0; i < count; ++i) RecordRun(runs[i], position, rules.exact, found);
  }
}

}  // namespace quillmere::lookup
