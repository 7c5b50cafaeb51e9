#include "criteria/compare_cell.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "frame/text/fold_case.h"

namespace quillmere::criteria {
namespace {

int Order(bool before, bool behind) { return before ? -1 : behind ? 1 : 0; }

int CompareNumbers(double cell, double value) {
  if (NumbersMeet(cell, value)) return 0;
  return cell < value ? -1 : 1;
}

/// The one type that stands for the criterion among those of cells that it is not compared with. (Of a number and a
/// text either would do: what is left comes behind both.)
std::uint32_t TypeInOrder(const Criterion& criterion, std::uint32_t mask) {
  if (criterion.kind == CriterionKind::kPlain || criterion.joined) return mask;
  const std::uint32_t types = mask & ~cell_type::kEmpty;
  return types == 0 ? mask : types & -types;
}

}  // namespace

bool NumbersMeet(double a, double b) noexcept {
  constexpr double kPrecision = std::numeric_limits<double>::epsilon();
  constexpr double kUnits = 5;
  if (a == b) return true;
  if (!std::isfinite(a) || !std::isfinite(b)) return false;
  if (a != 0 && b != 0 && std::signbit(a) != std::signbit(b)) return false;
  // The farther of the two quotients is the one by the smaller number.
  const double smaller = std::max(std::min(std::abs(a), std::abs(b)), std::numeric_limits<double>::min());
  const double larger = std::max(std::max(std::abs(a), std::abs(b)), std::numeric_limits<double>::min());
  return (larger - smaller) / smaller < kUnits * kPrecision;
}

int CompareCell(const Criterion& criterion, const XLOPER12& cell, int direction) {
  const std::uint32_t type = CellTypeOf(cell);
  const std::uint32_t mask = criterion.Mask();
  int order = 0;
  if ((type & mask) == 0) {
    order = type < TypeInOrder(criterion, mask) ? -1 : 1;
  } else if (type == cell_type::kNumber) {
    order = CompareNumbers(CellNumber(cell), criterion.number);
  } else if (type == cell_type::kText) {
    order = CompareFolded(TextOf(cell), criterion.text);
  } else if (type == cell_type::kBoolean) {
    order = Order(!cell.val.xbool && criterion.code, cell.val.xbool && !criterion.code);
  } else if (type == cell_type::kError) {
    order = Order(cell.val.err<criterion.code, cell.val.err> criterion.code);
  }
  return direction < 0 ? -order : order;
}

}  // namespace quillmere::criteria
