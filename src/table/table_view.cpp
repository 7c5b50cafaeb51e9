#include "table/table_view.h"

#include <utility>

#include "frame/callbacks/callbacks.h"
#include "frame/callbacks/used_range.h"

namespace quillmere {

TableView::TableView(const CXlOper& table) {
  if (table.IsAbsent()) throw CXlErrorException(xlerrValue);
  if (!table.IsReference()) {
    const CXlCells cells = table.Cells();
    first_ = cells.first;
    rows_ = cells.rows;
    columns_ = cells.columns;
    return;
  }
  const std::span<const XLREF12> areas = table.Areas();
  if (areas.size() != 1) throw CXlErrorException(xlerrValue);
  area_ = areas.front();
  const auto isRun = [](std::int32_t first, std::int32_t last) { return first >= 0 && first <= last; };
  if (!isRun(area_.rwFirst, area_.rwLast) || !isRun(area_.colFirst, area_.colLast)) throw CXlErrorException(xlerrValue);
  rows_ = area_.rwLast - area_.rwFirst + 1;
  columns_ = area_.colLast - area_.colFirst + 1;
  isReference_ = true;
  isOnCurrentSheet_ = table.Type() == xltypeSRef;
  sheet_ = table.Sheet();
}

TableView TableView::OfUsedRows(const CXlOper& table) {
  if (!table.IsReference()) return TableView(table);
  const CXlOper used = CutToUsedRows(table);
  return TableView(used);
}

TableView TableView::SomeRows(std::int32_t first, std::int32_t count) const noexcept {
  TableView some = *this;
  some.rows_ = count;
  if (isReference_) {
    some.area_.rwFirst += first;
    some.area_.rwLast = some.area_.rwFirst + count - 1;
  } else {
    some.first_ += std::int64_t{first} * columns_;
  }
  return some;
}

XLREF12 TableView::AreaOf(std::int32_t firstRow, std::int32_t firstColumn, std::int32_t rows,
                          std::int32_t columns) const noexcept {
  const RW row = area_.rwFirst + firstRow;
  const COL column = area_.colFirst + firstColumn;
  return {row, row + rows - 1, column, column + columns - 1};
}

CXlOper TableView::CoercePart(std::int32_t firstRow, std::int32_t firstColumn, std::int32_t rows,
                              std::int32_t columns) const {
  // Put together here, since an area of a CXlOper is allocated.
  XLMREF12 areas{1, {AreaOf(firstRow, firstColumn, rows, columns)}};
  XLOPER12 reference{};
  reference.xltype = isOnCurrentSheet_ ? xltypeSRef : xltypeRef;
  if (isOnCurrentSheet_) {
    reference.val.sref = {1, areas.reftbl[0]};
  } else {
    reference.val.mref = {&areas, sheet_};
  }
  CXlOper values = CallExcelOrValueError(xlCoerce, reference);
  if (values.IsReference()) throw CXlErrorException(xlerrValue);
  const CXlCells cells = values.Cells();
  if (cells.rows != rows || cells.columns != columns) throw CXlErrorException(xlerrValue);
  return values;
}

CXlOper TableView::CoerceCell(std::int32_t row, std::int32_t column) const {
  CXlOper value = CoercePart(row, column, 1, 1);
  return value.IsArray() ? CXlOper::FromCell(*value.Cells().first) : std::move(value);
}

CXlOper TableView::ReadCell(std::int32_t row, std::int32_t column) const {
  return isReference_ ? CoerceCell(row, column) : CXlOper::BorrowCell(Cells().At(row, column));
}

CXlOper TableView::ReadAll() const {
  if (isReference_) return CoercePart(0, 0, rows_, columns_);
  XLOPER12 cells{};
  cells.xltype = xltypeMulti;
  cells.val.array = {const_cast<XLOPER12*>(first_), rows_, columns_};
  return CXlOper::Borrow(&cells);
}

CXlOper TableView::Part(std::int32_t firstRow, std::int32_t firstColumn, std::int32_t rows,
                        std::int32_t columns) const {
  const XLREF12 area = AreaOf(firstRow, firstColumn, rows, columns);
  return isOnCurrentSheet_ ? CXlOper::Reference(area) : CXlOper::Reference(sheet_, {&area, 1});
}

}  // namespace quillmere
