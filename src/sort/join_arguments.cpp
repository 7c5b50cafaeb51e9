#include "sort/join_arguments.h"

#include <utility>

#include "table/column_selector.h"
#include "table/fill_argument.h"
#include "table/table_view.h"

namespace quillmere::sort {
namespace {

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
  const SelectedColumns leftKeys = RequireColumns(leftSelector, left);
  const SelectedColumns rightKeys = RequireColumns(rightSelector, right);
  if (leftKeys.columns.size() != rightKeys.columns.size()) throw CXlErrorException(xlerrValue);

  const TextCase textCase = arguments.caseSense.Read() ? TextCase::kCounts : TextCase::kIgnored;
  const XLOPER12* const fill = ReadFill(result, arguments.fill);
  if (!fill) return std::nullopt;
  const std::int32_t headerRows = leftKeys.headerUsed || rightKeys.headerUsed ? 1 : 0;
  return JoinPlan{ReadTable(left, leftKeys, headerRows), ReadTable(right, rightKeys, headerRows), matchType, textCase,
                  fill};
}

}  // namespace quillmere::sort
