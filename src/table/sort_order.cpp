#include "table/sort_order.h"

#include <algorithm>

#include "frame/convert/convert_cell.h"
#include "frame/convert/single_value.h"
#include "frame/text/upper_case.h"

namespace quillmere {
namespace {

SortOrder OrderOfNumber(double number) {
  std::int32_t whole = 0;
  if (!TruncateToInteger(number, whole) || whole == 0) return SortOrder::kUnsorted;
  return whole < 0 ? SortOrder::kDescending : SortOrder::kAscending;
}

SortOrder OrderOfText(XStringView text) {
  constexpr std::size_t kUnits = 3;
  if (text.size() < kUnits) return SortOrder::kUnsorted;
  XCHAR units[kUnits];
  std::transform(text.begin(), text.begin() + kUnits, units, UpperCase);
  const XStringView word(units, kUnits);
  if (word == XTEXT("ASC") || word == XTEXT("TRU") || word == XTEXT("YES")) return SortOrder::kAscending;
  return word == XTEXT("DES") ? SortOrder::kDescending : SortOrder::kUnsorted;
}

}  // namespace

SortOrder ParseSortOrder(const CXlOper& sorted) {
  const XLOPER12* const only = OnlyCell(sorted);
  if (!only) return SortOrder::kUnsorted;
  const XLOPER12& cell = *only;
  switch (CellType(cell)) {
    case xltypeNum:
    case xltypeInt:
      return OrderOfNumber(CellNumber(cell));
    case xltypeStr:
      return OrderOfText(TextOf(cell));
    case xltypeBool:
      return CellBoolean(cell) ? SortOrder::kAscending : SortOrder::kUnsorted;
    default:
      return SortOrder::kUnsorted;
  }
}

}  // namespace quillmere
