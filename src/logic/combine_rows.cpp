// Truth values combined cell by cell, or row by row.
//
// Serves AND.CELLS, OR.CELLS, AND.ROWS, OR.ROWS.
//
// All arguments go down together by blocks of rows, so that what is decided of a block's results stays in the cache,
// and what no open result needs of a later argument is not read.
#include <algorithm>

#include "implementations/logic.h"
#include "logic/decisions.h"
#include "logic/logical_arguments.h"
#include "table/row_blocks.h"

namespace quillmere::logic {
namespace {

/// Combines some rows of a table, the block's, into the block's results: `width` results a row, which the first cells
/// of the row go into one by one, or a single one, which all of them go into.
template <bool decider, bool byCell>
void CombineBlock(Decisions<decider>& decisions, const TableView& block, std::int32_t width) {
  const std::int32_t columns = byCell ? width : block.Columns();
  // A wide reference is read by smaller blocks than its results make.
  const std::int32_t rowsAtOnce = block.IsReference() ? RowBlocks::kBlockCells / columns : block.Rows();
  for (std::int32_t first = 0; first < block.Rows(); first += rowsAtOnce) {
    const TableView part = block.SomeRows(first, std::min(rowsAtOnce, block.Rows() - first));
    const std::int64_t place = std::int64_t{first} * width;
    if (!decisions.HasOpen(place, std::int64_t{part.Rows()} * width)) continue;
    const CXlOper values = part.IsReference() ? part.CoercePart(0, 0, part.Rows(), columns) : part.ReadAll();
    const CXlCells cells = values.Cells();
    if ((byCell || columns == 1) && cells.columns == columns) {
      decisions.CombineEach(place, cells.first, cells.Count());
      continue;
    }
    for (std::int32_t row = 0; row < cells.rows; ++row) {
      if constexpr (byCell)
        decisions.CombineEach(place + std::int64_t{row} * width, cells.Row(row), columns);
      else
        decisions.CombineAll(place + row, cells.Row(row), columns);
    }
  }
}

template <bool decider, bool byCell>
CXlOper CombineDown(const MeasuredArguments& arguments) {
  const std::int32_t rows = arguments.shown.rows;
  const std::int32_t width = byCell ? arguments.shown.columns : 1;
  CXlArrayBuilder builder(rows, width);
  const std::int32_t rowsAtOnce = std::min(rows, RowBlocks::kBlockCells / width);
  Decisions<decider> decisions(builder, std::int64_t{rowsAtOnce} * width);
  for (std::int32_t first = 0; first < rows; first += rowsAtOnce) {
    const std::int32_t count = std::min(rowsAtOnce, rows - first);
    decisions.Open(builder.Row(first), std::int64_t{count} * width);
    for (const TableView& table : arguments.tables)
      CombineBlock<decider, byCell>(decisions, table.SomeRows(first, count), width);
    decisions.Settle();
  }
  return builder.FinishCollapsed();
}

}  // namespace

void Functions::CombineCells(CXlOper& result, Junction junction, const LogicalArguments& arguments) {
  const MeasuredArguments measured = MeasureArguments(arguments, Likeness::kRowsAndColumns);
  result = junction == Junction::kAnd ? CombineDown<false, true>(measured) : CombineDown<true, true>(measured);
}

void Functions::CombineRows(CXlOper& result, Junction junction, const LogicalArguments& arguments) {
  const MeasuredArguments measured = MeasureArguments(arguments, Likeness::kRows);
  result = junction == Junction::kAnd ? CombineDown<false, false>(measured) : CombineDown<true, false>(measured);
}

}  // namespace quillmere::logic
