#include "table/column_selector.h"

#include "frame/convert/convert_cell.h"
#include "table/labels.h"

namespace quillmere {
namespace {

/// Resolves entries against `count` columns, or rows, whose labels are `labels`.
template <class Labels>
SelectedColumns Select(const CXlCells& selector, std::int32_t count, const Labels& labels) {
  SelectedColumns selected;
  selected.columns.reserve(selector.columns);
  for (std::int32_t entry = 0; entry < selector.columns; ++entry) {
    const XLOPER12& cell = selector.At(0, entry);
    const std::uint32_t type = CellType(cell);
    std::int32_t column = 0;
    if (type == xltypeStr) {
      selected.headerUsed = true;
      column = labels.Find(cell) + 1;
    } else if (type == xltypeNum || type == xltypeInt) {
      TruncateToInteger(CellNumber(cell), column);
    }
    if (column < 1 || column > count) selected.failed = true;
    if (!selected.failed) selected.columns.push_back(column);
  }
  return selected;
}

}  // namespace

SelectedColumns SelectColumns(const CXlCells& selector, const TableView& table) {
  const std::int32_t count = table.Columns();
  if (table.IsReference()) return Select(selector, count, ExcelLabels(table.Part(0, 0, 1, count)));
  return Select(selector, count, FoldedLabels(RowLine(table.Cells(), 0), selector.columns));
}

SelectedColumns RequireColumns(const CXlOper& selector, const TableView& table) {
  const CXlCells cells = selector.Cells();
  if (cells.Count() > kXlMaxColumns) throw CXlErrorException(xlerrValue);
  SelectedColumns selected = SelectColumns({cells.first, 1, static_cast<std::int32_t>(cells.Count())}, table);
  if (selected.failed) throw CXlErrorException(xlerrValue);
  return selected;
}

SelectedColumns SelectRows(const CXlCells& selector, const TableView& table) {
  const std::int32_t count = table.Rows();
  if (table.IsReference()) return Select(selector, count, ExcelLabels(table.Part(0, 0, count, 1)));
  return Select(selector, count, FoldedLabels(ColumnLine(table.Cells(), 0), selector.columns));
}

}  // namespace quillmere
