// Copies of an array below one another and side by side.
//
// Serves REPEAT.
#include <algorithm>

#include "frame/convert/argument.h"
#include "frame/values/array_builder.h"
#include "implementations/shape.h"

namespace quillmere::shape {
namespace {

/// Cells that stay in the processor's cache while they are copied over and over.
constexpr std::int64_t kCachedCells = 1024;

/// Repeats the first `period` of `count` cells in those behind them. The texts of the copies are the same ones.
void RepeatCells(XLOPER12* cells, std::int64_t period, std::int64_t count) {
  std::int64_t copied = period;
  for (std::int64_t done = period; done < count; done += copied) {
    if (done <= kCachedCells) copied = done;
    std::copy_n(cells, std::min(copied, count - done), cells + done);
  }
}

}  // namespace

void Functions::Repeat(CXlOper& result, const CXlArgument& array,
                       const CXlScalarArgument<ElementKind::kInteger>& verticalRepeats,
                       const CXlScalarArgument<ElementKind::kInteger>& horizontalRepeats) {
  result.SetError(xlerrValue);
  const CXlCells cells = array.Value().Cells();
  const std::int64_t down = verticalRepeats.Read();
  const std::int64_t across = horizontalRepeats.Read();
  if (down < 1 || across < 1) return;

  CXlArrayBuilder builder(cells.rows * down, cells.columns * across);
  if (across == 1) {
    builder.CopyCells(builder.Row(0), cells.first, static_cast<std::size_t>(cells.Count()));
  } else {
    for (std::int32_t row = 0; row < cells.rows; ++row) {
      XLOPER12* const to = builder.Row(row);
      builder.CopyCells(to, cells.Row(row), static_cast<std::size_t>(cells.columns));
      RepeatCells(to, cells.columns, builder.Columns());
    }
  }
  const std::int64_t band = std::int64_t{cells.rows} * builder.Columns();
  RepeatCells(builder.Row(0), band, band * down);
  result = builder.FinishCollapsed();
}

}  // namespace quillmere::shape
