// Truth values combined column by column.
//
// Serves AND.COLS, OR.COLS.
#include <algorithm>
#include <numeric>
#include <span>

#include "implementations/logic.h"
#include "logic/decisions.h"
#include "logic/logical_arguments.h"
#include "table/row_blocks.h"

namespace quillmere::logic {
namespace {

/// Combines the cells of a block into the results of their columns, row by row, until none is open.
template <bool decider>
void CombineBlock(Decisions<decider>& decisions, const RowBlocks& block, std::int32_t columns) {
  // As many rows between looks at what is open as make the looking cheap.
  constexpr std::int32_t kCellsBetweenLooks = 512;
  const std::int32_t stretch = std::max(1, kCellsBetweenLooks / columns);
  for (std::int32_t row = 0; row < block.Rows() && decisions.HasOpen();) {
    const std::int32_t end = std::min(row + stretch, block.Rows());
    // The columns are neighbours, so the cells of a row follow each other.
    for (; row < end; ++row) decisions.CombineEach(0, &block.At(row, 0), columns);
  }
}

template <bool decider>
CXlOper CombineAcross(const MeasuredArguments& arguments) {
  std::vector<std::int32_t> columns(static_cast<std::size_t>(arguments.shown.columns));
  std::iota(columns.begin(), columns.end(), 0);
  CXlArrayBuilder builder(1, arguments.shown.columns);
  Decisions<decider> decisions(builder, arguments.shown.columns);
  decisions.Open(builder.Row(0), arguments.shown.columns);
  for (const TableView& table : arguments.tables) {
    RowBlocks blocks(table, columns);
    while (decisions.HasOpen() && blocks.Next()) CombineBlock(decisions, blocks, arguments.shown.columns);
  }
  decisions.Settle();
  return builder.FinishCollapsed();
}

}  // namespace

void Functions::CombineColumns(CXlOper& result, Junction junction, const LogicalArguments& arguments) {
  const MeasuredArguments measured = MeasureArguments(arguments, Likeness::kColumns);
  result = junction == Junction::kAnd ? CombineAcross<false>(measured) : CombineAcross<true>(measured);
}

}  // namespace quillmere::logic
