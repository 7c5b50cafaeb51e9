#include "host/output/changed_cells.h"

namespace qcalc {
namespace {

/// Whether what is left of `inner` lies in `outer`, both having begun.
bool Covers(const Area& outer, const Area& inner) {
  return outer.firstColumn <= inner.firstColumn && inner.lastColumn <= outer.lastColumn &&
         inner.lastRow <= outer.lastRow;
}

}  // namespace

ChangedCells::ChangedCells(const SheetResults& results) {
  areas_.reserve(results.formulas.size());
  for (const FormulaResult& formula : results.formulas) {
    if (!formula.isCalculated) continue;
    areas_.push_back(formula.fillsNow);
    if (formula.filledBefore != formula.fillsNow) areas_.push_back(formula.filledBefore);
  }
  std::stable_sort(areas_.begin(), areas_.end(),
                   [](const Area& left, const Area& right) { return left.firstRow < right.firstRow; });
}

std::optional<std::int32_t> ChangedCells::NextRow(std::int32_t row) {
  MoveTo(row);
  if (!active_.empty()) return row;
  return next_ < areas_.size() ? std::optional(areas_[next_].firstRow) : std::nullopt;
}

std::span<const ColumnRange> ChangedCells::OfRow(std::int32_t row) {
  MoveTo(row);
  return columns_;
}

void ChangedCells::MoveTo(std::int32_t row) {
  const bool isAnyNew = next_ < areas_.size() && areas_[next_].firstRow <= row;
  if (!isAnyNew && row <= firstEnd_) return;
  std::erase_if(active_, [row](const Area& area) { return area.lastRow < row; });
  for (; next_ < areas_.size() && areas_[next_].firstRow <= row; ++next_)
    if (areas_[next_].lastRow >= row) Activate(areas_[next_]);
  std::sort(active_.begin(), active_.end(),
            [](const Area& left, const Area& right) { return left.firstColumn < right.firstColumn; });
  columns_.clear();
  firstEnd_ = std::numeric_limits<std::int32_t>::max();
  for (const Area& area : active_) {
    firstEnd_ = std::min(firstEnd_, area.lastRow);
    if (columns_.empty() || columns_.back().last + 1 < area.firstColumn)
      columns_.push_back({area.firstColumn, area.lastColumn});
    else
      columns_.back().last = std::max(columns_.back().last, area.lastColumn);
  }
}

// Files may say that each of a million formulas fills the same cells: of such one is enough.
void ChangedCells::Activate(const Area& area) {
  if (!active_.empty() && Covers(active_.back(), area)) return;
  active_.push_back(area);
}

}  // namespace qcalc
