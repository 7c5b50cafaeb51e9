#include "criteria/sorted_narrowing.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>
#include <variant>
#include <vector>

#include "criteria/compare_cell.h"
#include "criteria/parse_criterion.h"

namespace quillmere::criteria {
namespace {

constexpr std::int32_t kNoRow = -1;

/// A search by cells pays as long as it looks at no more than one of so many rows; a scan reads them faster.
constexpr std::int64_t kRowsPerProbe = 64;

/// The ends of a run of rows that meet a value; empty where `lower` is `upper`.
struct EqualRun {
  std::int32_t lower;  ///< the first row that is not before the value
  std::int32_t upper;  ///< the first row behind it
  bool isOneKey;       ///< its rows are equal to each other, too
};

/// Which ends of a run are wanted.
struct WantedEnds {
  bool lower;
  bool upper;
};

/// The search of one sorted column for a value.
class ColumnSearch {
 public:
  ColumnSearch(const CriteriaColumns& columns, std::size_t column, const Criterion& criterion, int direction)
      : columns_(columns), column_(column), criterion_(criterion), direction_(direction) {}

  /// The rows of an interval that meet the value; an end that is not wanted is anywhere among them. Both ends of the
  /// interval are looked at first, since whole runs are often equal; then two searches go on side by side, so that the
  /// memory of both is waited for at once.
  EqualRun Find(const RowInterval& rows, const WantedEnds& wanted) {
    before_ = rows.first - 1;
    behind_ = rows.last + 1;
    lowest_ = highest_ = kNoRow;
    Look(rows.first);
    if (rows.Rows() > 1) Look(rows.last);
    while (lowest_ == kNoRow && behind_ - before_ > 1) Look(before_ + (behind_ - before_) / 2);
    if (lowest_ == kNoRow) return {behind_, behind_, true};
    for (bool isDone = false; !isDone;) {
      isDone = true;
      if (wanted.lower && lowest_ - before_ > 1) {
        LookForLowest(before_ + (lowest_ - before_) / 2);
        isDone = false;
      }
      if (wanted.upper && behind_ - highest_ > 1) {
        LookForHighest(highest_ + (behind_ - highest_) / 2);
        isDone = false;
      }
    }
    return {lowest_, highest_ + 1, lowest_ == highest_ || lowestType_ == highestType_};
  }

  /// The first row behind those of an interval that meet the value as its first row does: found in steps that grow, so
  /// that a short run is cheap.
  std::int32_t EndOfRun(const RowInterval& rows) {
    std::int32_t meets = rows.first;
    std::int32_t step = 1;
    std::int32_t end = rows.last + 1;
    while (meets + step < end) {
      if (ProbeAt(meets + step).order != 0) {
        end = meets + step;
        break;
      }
      meets += step;
      step *= 2;
    }
    while (end - meets > 1) {
      const std::int32_t middle = meets + (end - meets) / 2;
      (ProbeAt(middle).order == 0 ? meets : end) = middle;
    }
    return end;
  }

  std::int64_t Probes() const noexcept { return probes_; }

 private:
  struct Probe {
    int order;
    std::uint32_t type;
  };

  Probe ProbeAt(std::int32_t row) {
    ++probes_;
    return columns_.UseCell(column_, row, [this](const XLOPER12& cell) {
      return Probe{CompareCell(criterion_, cell, direction_), CellTypeOf(cell)};
    });
  }

  /// Before any row is known that meets the value, or at an end.
  void Look(std::int32_t row) {
    const Probe probe = ProbeAt(row);
    if (probe.order < 0) {
      before_ = std::max(before_, row);
    } else if (probe.order > 0) {
      behind_ = std::min(behind_, row);
    } else {
      if (lowest_ == kNoRow) {
        lowest_ = row;
        lowestType_ = probe.type;
      }
      highest_ = row;
      highestType_ = probe.type;
    }
  }
  void LookForLowest(std::int32_t row) {
    const Probe probe = ProbeAt(row);
    if (probe.order < 0) {
      before_ = row;
    } else {
      lowest_ = row;
      lowestType_ = probe.type;
    }
  }
  void LookForHighest(std::int32_t row) {
    const Probe probe = ProbeAt(row);
    if (probe.order > 0) {
      behind_ = row;
    } else {
      highest_ = row;
      highestType_ = probe.type;
    }
  }

  const CriteriaColumns& columns_;
  std::size_t column_;
  const Criterion& criterion_;
  int direction_;
  std::int64_t probes_ = 0;
  std::int32_t before_ = 0;  ///< the last row known to be before the value
  std::int32_t behind_ = 0;  ///< the first row known to be behind it
  std::int32_t lowest_ = 0;  ///< the first and last rows known to meet it, or kNoRow
  std::int32_t highest_ = 0;
  std::uint32_t lowestType_ = 0;
  std::uint32_t highestType_ = 0;
};

/// Whether the rows that meet a criterion are one run of a column that is sorted.
bool HasOrder(const Criterion& criterion) {
  return !criterion.negated && (AsksForEqual(criterion.kind) || criterion.kind < CriterionKind::kEqual);
}

/// The rows of an interval that meet a criterion with an order; none where first is behind last.
RowInterval Meeting(const Criterion& criterion, const RowInterval& rows, int direction, ColumnSearch& search,
                    bool& isOneKey) {
  // Of a descending column the lower values stand at the end.
  const bool isUpTo = criterion.kind == CriterionKind::kLess || criterion.kind == CriterionKind::kLessEqual;
  const bool isFromTop = isUpTo == (direction > 0);
  const bool isIncluded = criterion.kind == CriterionKind::kLessEqual || criterion.kind == CriterionKind::kGreaterEqual;
  if (AsksForEqual(criterion.kind)) {
    const EqualRun run = search.Find(rows, {true, true});
    isOneKey &= run.isOneKey;
    return {run.lower, run.upper - 1};
  }
  isOneKey = false;
  if (isFromTop) {
    const EqualRun run = search.Find(rows, {!isIncluded, isIncluded});
    return {rows.first, (isIncluded ? run.upper : run.lower) - 1};
  }
  const EqualRun run = search.Find(rows, {isIncluded, !isIncluded});
  return {isIncluded ? run.lower : run.upper, rows.last};
}

/// A cell as the value that its equals are looked for by. It views the cell.
Criterion KeyOf(const XLOPER12& cell) {
  Criterion key;
  if (IsTextCell(cell)) {
    key.valueType = cell_type::kText;
    key.text = TextOf(cell);
  } else {
    key = ParseCriterion(cell);
  }
  key.ownMask = key.plainMask = key.valueType;
  return key;
}

/// The runs of a group while its sorted columns are searched one after the other.
class Narrowing {
 public:
  Narrowing(const CriteriaColumns& columns, int direction, std::int32_t rows)
      : columns_(columns), direction_(direction) {
    if (rows > 0) runs_.push_back({0, rows - 1});
  }

  /// Narrows the runs by a criterion about the next sorted column. False when it is to be tested instead.
  bool Narrow(const Criterion* criterion, std::size_t column) {
    const auto sameColumn = std::ranges::find(open_, column);
    const std::span<const std::size_t> earlier(open_.begin(), sameColumn);
    std::vector<RowInterval> narrowed;
    bool isOneKey = true;
    const bool isSearchedAgain = sameColumn != open_.end();
    if (criterion == nullptr || !FindIn(*criterion, column, earlier, isSearchedAgain, narrowed, isOneKey)) {
      if (!isSearchedAgain) open_.push_back(column);
      return false;
    }
    runs_.swap(narrowed);
    // Each run lies within one stretch of the earlier columns now.
    open_.erase(open_.begin(), open_.begin() + static_cast<std::ptrdiff_t>(earlier.size()));
    if (isOneKey) std::erase(open_, column);
    if (!isOneKey && open_.empty()) open_.push_back(column);
    return true;
  }

  RowIntervals TakeRuns() { return MergeIntervals(std::span(&runs_, 1)); }

 private:
  bool FindIn(const Criterion& criterion, std::size_t column, std::span<const std::size_t> earlier,
              bool isSearchedAgain, std::vector<RowInterval>& narrowed, bool& isOneKey) {
    ColumnSearch search(columns_, column, criterion, direction_);
    const std::int64_t mostProbes = CountRows(runs_) / kRowsPerProbe;
    std::int64_t probes = 0;
    for (const RowInterval& run : runs_) {
      for (RowInterval stretch = run; stretch.first <= run.last; stretch = {stretch.last + 1, run.last}) {
        for (const std::size_t other : earlier) stretch.last = EndOfStretch(other, stretch, probes) - 1;
        // A column that was searched before is sorted as a whole, where it is of one type.
        if (isSearchedAgain && !IsOfOneType(column, stretch, probes))
          stretch.last = EndOfStretch(column, stretch, probes) - 1;
        const RowInterval found = Meeting(criterion, stretch, direction_, search, isOneKey);
        if (found.first <= found.last) narrowed.push_back(found);
        const bool isWhole = runs_.size() == 1 && stretch.Rows() == run.Rows();
        if (!isWhole && probes + search.Probes() > mostProbes) return false;
      }
    }
    return true;
  }

  /// Whether both ends of an interval have cells of one type.
  bool IsOfOneType(std::size_t column, const RowInterval& rows, std::int64_t& probes) const {
    probes += 2;
    return columns_.UseCell(column, rows.first, CellTypeOf) == columns_.UseCell(column, rows.last, CellTypeOf);
  }

  /// The first row behind those of an interval in which a column is as in its first row.
  std::int32_t EndOfStretch(std::size_t column, const RowInterval& rows, std::int64_t& probes) const {
    ++probes;
    return columns_.UseCell(column, rows.first, [&](const XLOPER12& cell) {
      const Criterion key = KeyOf(cell);
      ColumnSearch search(columns_, column, key, direction_);
      const std::int32_t end = search.EndOfRun(rows);
      probes += search.Probes();
      return end;
    });
  }

  const CriteriaColumns& columns_;
  int direction_;
  std::vector<RowInterval> runs_;  ///< in ascending order; some may touch each other
  std::vector<std::size_t> open_;  ///< sorted columns that may hold several keys within a run
};

}  // namespace

NarrowedGroup NarrowGroup(CriteriaGroup&& group, const CriteriaColumns& columns, std::int32_t rows) {
  NarrowedGroup narrowed;
  Narrowing narrowing(columns, group.direction, rows);
  for (std::size_t place = 0; place < group.terms.size(); ++place) {
    CriteriaTerm& term = group.terms[place];
    const Criterion* const single = std::get_if<Criterion>(&term.criterion);
    const Criterion* const searched = single && HasOrder(*single) ? single : nullptr;
    if (place < group.sortedCount && narrowing.Narrow(searched, term.column)) continue;
    narrowed.tests.push_back(
        {term.column,
         std::visit([](auto&& criterion) { return MakeColumnTest(std::move(criterion)); }, std::move(term.criterion))});
  }
  narrowed.runs = narrowing.TakeRuns();
  return narrowed;
}

}  // namespace quillmere::criteria
