#include "lookup/bisection_top.h"

#include <limits>

namespace quillmere::lookup {
namespace {

double NumberFor(const XLOPER12& cell, SortOrder order) {
  constexpr double kInfinity = std::numeric_limits<double>::infinity();
  if (IsNumberCell(cell)) return cell.val.num;
  return CellType(cell) == xltypeNil && order == SortOrder::kDescending ? -kInfinity : kInfinity;
}

}  // namespace

BisectionTop::BisectionTop(const RowTuples& rows, SortOrder order) {
  numbers_.reserve((std::size_t{1} << kLevels) - 1);
  below_ = {Bisection(rows.Count())};
  std::vector<Bisection> next;
  for (int level = 0; level < kLevels; ++level) {
    next.clear();
    for (const Bisection& bisection : below_) {
      const std::int32_t middle = bisection.Middle();
      numbers_.push_back(NumberFor(rows.At(middle, 0), order));
      next.push_back(bisection);
      next.back().high = middle;
      next.push_back(bisection);
      next.back().low = middle;
    }
    below_.swap(next);
  }
}

}  // namespace quillmere::lookup
