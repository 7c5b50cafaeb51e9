// The rows of a range that can be seen.
//
// Serves FILTER.VISIBLE.
#include <algorithm>
#include <span>

#include "frame/callbacks/callbacks.h"
#include "frame/callbacks/caller.h"
#include "frame/convert/argument.h"
#include "frame/values/array_builder.h"
#include "frame/values/scratch_list.h"
#include "implementations/workbook.h"
#include "table/array_painter.h"
#include "table/row_blocks.h"
#include "table/table_view.h"

namespace quillmere::workbook {
namespace {

/// How many lines of the range the result has: as many as the calling cells, where these are several and fewer.
std::int32_t ResultLines(std::int32_t ofCaller, std::int32_t ofRange) {
  return ofCaller < 2 || ofCaller >= ofRange ? ofRange : ofCaller;
}

/// Whether a row of the range is neither hidden nor filtered out: such rows have no height.
bool IsVisible(const TableView& range, std::int32_t row) {
  constexpr std::int32_t kRowHeight = 17;  // in points, of the cell's row
  const CXlOper height = CallExcelOrValueError(xlfGetCell, CXlOper::Integer(kRowHeight), range.Part(row, 0, 1, 1));
  if (!height.IsNumber()) throw CXlErrorException(xlerrValue);
  return height.AsNumber() > 0;
}

/// The visible ones of `count` rows from `first` on, counted from the first that is visible, which is `*start`.
void FindVisible(const TableView& range, std::int32_t first, std::int32_t count, std::int32_t& start,
                 ScratchList<std::int32_t>& places) {
  places.SetSize(0);
  for (std::int32_t row = first; row < first + count; ++row) {
    if (!IsVisible(range, row)) continue;
    if (places.empty()) start = row;
    places.Append(row - start);
  }
}

}  // namespace

void Functions::FilterVisible(CXlOper& result, const CXlArgument& theRange, const CXlArgument& pad) {
  result.SetError(xlerrValue);
  const CXlOper caller = CallingCells();
  const XLOPER12* const padCell = OnlyCell(pad.Value());
  if (!caller.IsSet() || !theRange.Value().IsReference() || !padCell) return;
  const TableView range = TableView::OfUsedRows(theRange.Value());
  const XLREF12& calling = caller.Areas().front();
  const std::int32_t rows = ResultLines(calling.rwLast - calling.rwFirst + 1, range.Rows());
  const std::int32_t columns = ResultLines(calling.colLast - calling.colFirst + 1, range.Columns());

  CXlArrayBuilder builder(rows, columns);
  ArrayPainter painter(builder, *padCell);
  const std::int32_t rowsAtOnce = std::max(1, RowBlocks::kBlockCells / columns);
  ScratchList<std::int32_t> places;
  std::int32_t painted = 0;
  for (std::int32_t row = 0; row < rows; row += rowsAtOnce) {
    std::int32_t start = 0;
    FindVisible(range, row, std::min(rowsAtOnce, rows - row), start, places);
    if (places.empty()) continue;
    const std::span<const std::int32_t> visible = places.Values();
    const CXlOper cells = range.CoercePart(start, 0, visible.back() + 1, columns);
    const ArrayPiece piece{cells.Cells(), AxisMap::By(visible), AxisMap::Run(0, columns)};
    painter.PaintBand(painted, {&piece, 1});
    painted += static_cast<std::int32_t>(visible.size());
  }
  const ArrayPiece padded{{}, AxisMap::Run(0, 0).PaddedTo(rows - painted), AxisMap::Run(0, 0).PaddedTo(columns)};
  painter.PaintBand(painted, {&padded, 1});
  result = builder.FinishCollapsed();
}

}  // namespace quillmere::workbook
