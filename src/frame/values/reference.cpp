#include "frame/values/reference.h"

#include <utility>

namespace quillmere {
namespace {

/// Replaces the rectangle by one whose corners are given, if all of it lies on the sheet.
bool Replace(XLREF12& area, std::int64_t firstRow, std::int64_t lastRow, std::int64_t firstColumn,
             std::int64_t lastColumn, const SheetLimits& limits) noexcept {
  const auto isRow = [&limits](std::int64_t row) { return row >= 0 && row <= limits.lastRow; };
  const auto isColumn = [&limits](std::int64_t column) { return column >= 0 && column <= limits.lastColumn; };
  if (!isRow(firstRow) || !isRow(lastRow) || !isColumn(firstColumn) || !isColumn(lastColumn)) return false;
  area = {static_cast<RW>(firstRow), static_cast<RW>(lastRow), static_cast<COL>(firstColumn),
          static_cast<COL>(lastColumn)};
  NormaliseArea(area);
  return true;
}

/// Whether a count is one that a sheet could have, in either direction: keeps the sums below from overflowing.
bool IsSheetCount(std::int64_t count) noexcept { return count >= -kXlMaxRows && count <= kXlMaxRows; }

/// The other end of a run of `count` cells that starts at `first`.
std::int64_t EndOf(std::int64_t first, std::int64_t count) noexcept {
  return count > 0 ? first + count - 1 : first + count + 1;
}

}  // namespace

void NormaliseArea(XLREF12& area) noexcept {
  if (area.rwFirst > area.rwLast) std::swap(area.rwFirst, area.rwLast);
  if (area.colFirst > area.colLast) std::swap(area.colFirst, area.colLast);
}

bool OffsetArea(XLREF12& area, std::int64_t rows, std::int64_t columns, const SheetLimits& limits) noexcept {
  if (!IsSheetCount(rows) || !IsSheetCount(columns)) return false;
  return Replace(area, area.rwFirst + rows, area.rwLast + rows, area.colFirst + columns, area.colLast + columns,
                 limits);
}

bool ResizeArea(XLREF12& area, std::int64_t rows, std::int64_t columns, const SheetLimits& limits) noexcept {
  if (!IsSheetCount(rows) || !IsSheetCount(columns) || rows == 0 || columns == 0) return false;
  return Replace(area, area.rwFirst, EndOf(area.rwFirst, rows), area.colFirst, EndOf(area.colFirst, columns), limits);
}

CXlOper ReferenceOnSheetOf(const CXlOper& reference, const XLREF12& area) {
  return reference.Type() == xltypeSRef ? CXlOper::Reference(area) : CXlOper::Reference(reference.Sheet(), {&area, 1});
}

}  // namespace quillmere
