#include "sort/join_arguments.h"

#include <utility>

#include "table/column_selector.h"
#include "table/fill_argument.h"
#include "table/table_view.h"

namespace quillmere::sort {
namespace {

/// The key columns, 1-based. All cells of a selector count, row by row, whatever its shape.
SelectedColumns FindKeyColumns(const CXlOper& selector, const TableView& table) {
  const CXlCells cells = selector.Cells();
  if (cells.Count() > kXlMaxColumns) throw CXlErrorException(xlerrValue);
  SelectedColumns selected = SelectColumns({cells.first, 1, static_cast<std::int32_t>(cells.Count())}, table);
  if (selected.failed) throw CXlErrorException(xlerrValue);
  return selected;
}

JoinTable ReadTable(const TableView& table, const SelectedColumns& keys, std::int32_t headerRows) {
  JoinTable read{table.ReadAll(), keys.columns, headerRows};
  for (std::int32_t& column : read.keyColumns) --column;
  return read;
}

}  // namespace

CXlCells JoinTable::Data() const {
  const CXlCells cells = values.Cells();
  return {cells.Row(headerRows), cells.rows - headerRows, cells.columns};
}

std::optional<JoinPlan> ReadJoin(const JoinArguments& arguments, CXlOper& result) {
  const TableView left = TableView::OfUsedRows(arguments.leftData.Value());
  const TableView right = TableView::OfUsedRows(arguments.rightData.Value());
  const std::int32_t matchType = arguments.matchType.Read();

  const CXlOper& leftSelector = arguments.leftColumns.Value();
  const CXlOper& rightSelector = arguments.rightColumns.IsGiven() ? arguments.rightColumns.Value() : leftSelector;
  const SelectedColumns leftKeys = FindKeyColumns(leftSelector, left);
  const SelectedColumns rightKeys = FindKeyColumns(rightSelector, right);
  if (leftKeys.columns.size() != rightKeys.columns.size()) throw CXlErrorException(xlerrValue);

  const TextCase textCase = arguments.caseSense.Read() ? TextCase::kCounts : TextCase::kIgnored;
  const XLOPER12* const fill = ReadFill(result, arguments.fill);
  if (!fill) return std::nullopt;
  const std::int32_t headerRows = leftKeys.headerUsed || rightKeys.headerUsed ? 1 : 0;
  return JoinPlan{ReadTable(left, leftKeys, headerRows), ReadTable(right, rightKeys, headerRows), matchType, textCase,
                  fill};
}

}  // namespace quillmere::sort
