// Tables with a line of totals.
//
// Serves TOTALS, HTOTALS.
#include <algorithm>
#include <optional>

#include "frame/convert/argument.h"
#include "frame/convert/single_value.h"
#include "implementations/shape.h"
#include "shape/aggregate_lines.h"
#include "shape/slice_selector.h"
#include "table/array_painter.h"

namespace quillmere::shape {
namespace {

Slice AllOf(std::int32_t count) {
  Slice all(count);
  all.Append({0, count});
  return all;
}

/// A table, and the totals below it, or (`across`) to its right.
CXlOper WithTotals(const CXlCells& table, const ScratchArray<XLOPER12>& totals, bool across) {
  const auto count = static_cast<std::int32_t>(totals.size());
  const CXlCells line{totals.data(), across ? count : 1, across ? 1 : count};
  const ArrayPiece pieces[] = {{table, AxisMap::Run(0, table.rows), AxisMap::Run(0, table.columns)},
                               {line, AxisMap::Run(0, line.rows), AxisMap::Run(0, line.columns)}};
  return PaintStack(pieces, across, EmptyCell());
}

}  // namespace

void Functions::Totals(CXlOper& result, const CXlArgument& rangeArray,
                       const CXlScalarArgument<ElementKind::kInteger>& function, const CXlArgument& label) {
  result.SetError(xlerrValue);
  const TableView range = TableView::OfUsedRows(rangeArray.Value());
  const AggregateFunction functions[] = {AggregateFunction{function.Read()}};
  const XLOPER12* const labelCell = OnlyCell(label.Value());
  if (!labelCell) return;
  CheckArraySize(std::int64_t{range.Rows()} + 1, range.Columns());

  const CXlOper cells = range.ReadAll();
  const TableView table(cells);
  const CXlOper none = CXlOper::Text({});
  ScratchArray<XLOPER12> totals(static_cast<std::size_t>(table.Columns()));
  AggregateLines({table, AllOf(table.Rows()), AllOf(table.Columns())}, AggregateBy::kColumns, functions,
                 {totals.data(), 1, 1, &none.Raw()});
  // Totals are numbers and errors: the texts stand where there are none.
  const auto first = std::ranges::find_if(totals, IsTextCell);
  if (first != totals.end()) *first = *labelCell;
  result = WithTotals(cells.Cells(), totals, false);
}

void Functions::RowTotals(CXlOper& result, XStringView ownName, const CXlArgument& rangeArray,
                          const CXlScalarArgument<ElementKind::kInteger>& function, const CXlArgument& label,
                          const CXlArgument& sliceColumns) {
  result.SetError(xlerrValue);
  const TableView range = TableView::OfUsedRows(rangeArray.Value());
  const AggregateFunction functions[] = {AggregateFunction{function.Read()}};
  const XLOPER12* const labelCell = OnlyCell(label.Value());
  if (!labelCell) return;
  const std::optional<Slice> columns = SelectSlice(result, range, SliceAxis::kColumns, sliceColumns, ownName);
  if (!columns) return;
  CheckArraySize(range.Rows(), std::int64_t{range.Columns()} + 1);

  const CXlOper cells = range.ReadAll();
  const TableView table(cells);
  ScratchArray<XLOPER12> totals(static_cast<std::size_t>(table.Rows()));
  AggregateLines({table, AllOf(table.Rows()), *columns}, AggregateBy::kRows, functions,
                 {totals.data(), 1, 1, labelCell});
  result = WithTotals(cells.Cells(), totals, true);
}

}  // namespace quillmere::shape
