#include "criteria/return_cells.h"

#include <algorithm>
#include <cstddef>
#include <vector>

#include "criteria/criterion.h"
#include "frame/callbacks/callbacks.h"
#include "frame/values/array_builder.h"
#include "table/row_blocks.h"

namespace quillmere::criteria {
namespace {

/// Calls `use` with each interval, or part of one: a block that holds it, its first row there, and its rows.
template <class Use>
void ReadSelected(const TableView& table, std::span<const std::int32_t> columns, std::span<const RowInterval> selected,
                  const Use& use) {
  const bool isReference = table.IsReference();
  const auto width = static_cast<std::int32_t>(columns.size());
  const std::int32_t mostRows = isReference ? std::max(1, RowBlocks::kBlockCells / width) : kXlMaxRows;
  for (IntervalGroups groups(selected, mostRows, isReference ? kRowsReadAlong : kXlMaxRows); groups.Next();) {
    const RowInterval& rows = groups.Current().rows;
    RowBlocks block(table.SomeRows(rows.first, rows.Rows()), columns);
    block.Next();
    for (const RowInterval& interval : groups.Current().intervals) {
      const std::int32_t first = std::max(interval.first, rows.first);
      use(block, first - rows.first, std::min(interval.last, rows.last) - first + 1);
    }
  }
}

/// What SUM and COUNTA make of a cell they make of this one, too.
XLOPER12 CountableCell(const XLOPER12& cell, const XLOPER12& anyText) {
  switch (CellTypeOf(cell)) {
    case cell_type::kNumber:
      return NumberCell(CellNumber(cell));
    case cell_type::kText:
      return anyText;
    case cell_type::kBoolean:
      return BooleanCell(cell.val.xbool != 0);
    case cell_type::kError:
      return ErrorCell(cell.val.err);
    default:
      return EmptyCell();
  }
}

/// The selected cells of a column as an array to be summed or counted: what texts say is left out.
CXlOper CollectColumn(const TableView& table, std::int32_t column, std::span<const RowInterval> selected) {
  CXlArrayBuilder cells(CountRows(selected), 1);
  const XLOPER12 anyText = cells.Store(CXlOper::Text({}).Raw());
  XLOPER12* to = cells.Row(0);
  ReadSelected(table, {&column, 1}, selected, [&](const RowBlocks& block, std::int32_t first, std::int32_t rows) {
    for (std::int32_t row = first; row < first + rows; ++row) *to++ = CountableCell(block.At(row, 0), anyText);
  });
  return cells.Finish();
}

CXlOper TotalColumn(const TableView& table, std::int32_t column, std::span<const RowInterval> selected, int xlfn) {
  const RowInterval& first = selected.front();
  const bool isOneRun = selected.size() == 1;
  if (isOneRun && table.IsReference())
    return CallExcelOrValueError(xlfn, table.Part(first.first, column, first.Rows(), 1));
  if (isOneRun && table.Columns() == 1)
    return CallExcelOrValueError(xlfn, CXlLentCells(table.Cells(), first.first, 0, first.Rows(), 1));
  return CallExcelOrValueError(xlfn, CollectColumn(table, column, selected));
}

bool AreAllColumns(const TableView& table, std::span<const std::int32_t> columns) {
  for (std::size_t place = 0; place < columns.size(); ++place)
    if (columns[place] != static_cast<std::int32_t>(place)) return false;
  return columns.size() == static_cast<std::size_t>(table.Columns());
}

}  // namespace

CXlOper GatherRows(const TableView& table, std::span<const std::int32_t> columns,
                   std::span<const RowInterval> selected) {
  const auto width = static_cast<std::int32_t>(columns.size());
  CXlArrayBuilder result(CountRows(selected), width);
  const bool takesAll = AreAllColumns(table, columns);
  std::int64_t done = 0;
  ReadSelected(table, columns, selected, [&](const RowBlocks& block, std::int32_t first, std::int32_t rows) {
    const auto count = static_cast<std::size_t>(rows);
    XLOPER12* const to = result.Row(done);
    if (takesAll) result.CopyCells(to, &block.At(first, 0), count * columns.size());
    for (std::size_t column = 0; !takesAll && column < columns.size(); ++column)
      result.CopyCells(to + column, &block.At(first, column), count, width, block.Column(column).stride);
    done += rows;
  });
  return result.FinishCollapsed();
}

CXlOper TotalRows(const TableView& table, std::span<const std::int32_t> columns, std::span<const RowInterval> selected,
                  int xlfn) {
  CXlArrayBuilder result(1, static_cast<std::int64_t>(columns.size()));
  for (std::size_t column = 0; column < columns.size(); ++column)
    result.Put(0, static_cast<std::int64_t>(column), TotalColumn(table, columns[column], selected, xlfn));
  return result.FinishCollapsed();
}

CXlOper ListRuns(std::span<const RowInterval> selected) {
  CXlArrayBuilder result(static_cast<std::int64_t>(selected.size()), 2);
  for (std::size_t run = 0; run < selected.size(); ++run) {
    result.PutNumber(static_cast<std::int64_t>(run), 0, selected[run].first + 1.0);
    result.PutNumber(static_cast<std::int64_t>(run), 1, selected[run].Rows());
  }
  return result.Finish();
}

}  // namespace quillmere::criteria
