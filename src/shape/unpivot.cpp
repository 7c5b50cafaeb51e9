// The values of a table, each in a row of its own beside its labels.
//
// Serves UNPIVOT.
#include <algorithm>

#include "frame/convert/argument.h"
#include "frame/values/array_builder.h"
#include "frame/values/scratch_array.h"
#include "implementations/shape.h"
#include "table/ignored_items.h"
#include "table/table_view.h"

namespace quillmere::shape {
namespace {

/// A table whose first columns and rows are labels; behind them there is a value at least.
struct LabelledTable {
  CXlCells cells;
  std::int32_t labelColumns;
  std::int32_t labelRows;

  std::int32_t ValueColumns() const noexcept { return cells.columns - labelColumns; }
  const XLOPER12* Values(std::int32_t row) const noexcept { return cells.Row(row) + labelColumns; }
};

bool IsIgnoredValue(const XLOPER12& value, const IgnoredItems& ignored) { return IsIgnored({&value, 1}, ignored); }

/// How many values are not ignored. It stops counting when they are more than a sheet has rows.
std::int64_t CountValues(const LabelledTable& table, const IgnoredItems& ignored) {
  std::int64_t count = 0;
  for (std::int32_t row = table.labelRows; row < table.cells.rows && count <= kXlMaxRows; ++row) {
    const XLOPER12* const values = table.Values(row);
    count += std::count_if(values, values + table.ValueColumns(),
                           [&](const XLOPER12& value) { return !IsIgnoredValue(value, ignored); });
  }
  return count;
}

/// The labels of each column of values, one column's behind another's, their texts stored in the result.
ScratchArray<XLOPER12> StoreColumnLabels(CXlArrayBuilder& builder, const LabelledTable& table) {
  ScratchArray<XLOPER12> labels(static_cast<std::size_t>(table.ValueColumns()) * table.labelRows);
  XLOPER12* to = labels.data();
  for (std::int32_t column = 0; column < table.ValueColumns(); ++column)
    for (std::int32_t row = 0; row < table.labelRows; ++row) *to++ = builder.Store(table.Values(row)[column]);
  return labels;
}

/// Writes the rows of the result.
class ValueWriter {
 public:
  ValueWriter(CXlArrayBuilder& builder, const LabelledTable& table)
      : builder_(builder), table_(table), columnLabels_(StoreColumnLabels(builder, table)), to_(builder.Row(0)) {}

  /// Writes `count` neighbouring values of a row of the table, from a column of values on.
  void Write(std::int32_t row, std::int32_t column, std::int32_t count) {
    const std::int32_t labels = table_.labelColumns + table_.labelRows;
    const auto values = static_cast<std::size_t>(count);
    builder_.CopyCells(to_ + labels, table_.Values(row) + column, values, builder_.Columns());
    if (row != labelledRow_) {
      builder_.CopyCells(to_, table_.cells.Row(row), static_cast<std::size_t>(table_.labelColumns));
      rowLabels_ = to_;
      labelledRow_ = row;
    }
    const XLOPER12* columnLabels = columnLabels_.data() + std::size_t{1} * column * table_.labelRows;
    for (std::size_t at = 0; at < values; ++at) {
      if (to_ != rowLabels_) std::copy_n(rowLabels_, table_.labelColumns, to_);
      std::copy_n(columnLabels, table_.labelRows, to_ + table_.labelColumns);
      columnLabels += table_.labelRows;
      to_ += builder_.Columns();
    }
  }

 private:
  CXlArrayBuilder& builder_;
  const LabelledTable& table_;
  ScratchArray<XLOPER12> columnLabels_;
  XLOPER12* to_;
  const XLOPER12* rowLabels_ = nullptr;  ///< where the labels of a row stand first in the result
  std::int32_t labelledRow_ = -1;        ///< the row that they are of
};

}  // namespace

void Functions::Unpivot(CXlOper& result, const CXlArgument& array,
                        const CXlScalarArgument<ElementKind::kInteger>& labelColumns,
                        const CXlScalarArgument<ElementKind::kInteger>& labelRows,
                        const CXlScalarArgument<ElementKind::kInteger>& ignore) {
  result.SetError(xlerrValue);
  const TableView view = TableView::OfUsedRows(array.Value());
  LabelledTable table{{}, labelColumns.Read(), labelRows.Read()};
  const IgnoredItems ignored = ReadIgnored(ignore);
  const bool hasLabels = table.labelColumns >= 0 && table.labelRows >= 0;
  if (!hasLabels || table.labelColumns >= view.Columns() || table.labelRows >= view.Rows()) return;
  const CXlOper values = view.ReadAll();
  table.cells = values.Cells();

  const std::int64_t count = CountValues(table, ignored);
  if (count == 0) {
    result.SetError(xlerrNA);
    return;
  }
  CXlArrayBuilder builder(count, std::int64_t{table.labelColumns} + table.labelRows + 1);
  ValueWriter writer(builder, table);
  for (std::int32_t row = table.labelRows; row < table.cells.rows; ++row) {
    const XLOPER12* const rowValues = table.Values(row);
    for (std::int32_t column = 0; column < table.ValueColumns();) {
      const std::int32_t first = column;
      while (column < table.ValueColumns() && !IsIgnoredValue(rowValues[column], ignored)) ++column;
      if (column > first)
        writer.Write(row, first, column - first);
      else
        ++column;
    }
  }
  result = builder.FinishCollapsed();
}

}  // namespace quillmere::shape
