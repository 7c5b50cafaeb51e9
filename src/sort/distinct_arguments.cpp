#include "sort/distinct_arguments.h"

#include "frame/errors/exceptions.h"

namespace quillmere::sort {

DistinctInput::DistinctInput(const CXlArgument& argument)
    : passedRows_(TableView(argument.Value()).Rows()), table_(TableView::OfUsedRows(argument.Value())) {}

CXlCells DistinctInput::ReadItems(bool byRows) {
  const std::int64_t count = std::int64_t{table_.Rows()} * table_.Columns();
  if (!byRows && count > kMostItems) throw CXlArrayTooLargeException();
  itemCells_ = table_.ReadAll();
  const CXlCells cells = itemCells_.Cells();
  return byRows ? cells : CXlCells{cells.first, static_cast<std::int32_t>(count), 1};
}

CellLine DistinctInput::ReadValues(const CXlArgument& argument) {
  const TableView values(argument.Value());
  const bool isColumn = values.Columns() == 1;
  if (isColumn ? values.Rows() != passedRows_ : values.Rows() != 1 || values.Columns() != passedRows_)
    throw CXlErrorException(xlerrValue);
  valueCells_ = values.SomeRows(0, isColumn ? table_.Rows() : 1).ReadAll();
  return isColumn ? ColumnLine(valueCells_.Cells(), 0) : RowLine(valueCells_.Cells(), 0);
}

ListOrder ReadOrder(const CXlScalarArgument<ElementKind::kInteger>& sort) {
  const std::int32_t order = sort.Read();
  if (order == 1 || order == -1) return {ListOrder::By::kItem, order < 0};
  if (order == 2 || order == -2) return {ListOrder::By::kFigure, order < 0};
  return {};
}

TextCase ReadTextCase(const CXlScalarArgument<ElementKind::kBoolean>& caseSense) {
  return caseSense.Read() ? TextCase::kCounts : TextCase::kIgnored;
}

}  // namespace quillmere::sort
