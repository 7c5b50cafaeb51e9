// A range or an array at another size, or a cut of it.
//
// Serves RESIZE.
#include <algorithm>
#include <cstdint>

#include "frame/callbacks/caller.h"
#include "frame/values/array_builder.h"
#include "frame/values/reference.h"
#include "implementations/shape.h"
#include "table/array_painter.h"
#include "table/fill_argument.h"
#include "table/table_view.h"

namespace quillmere::shape {
namespace {

using IntegerArgument = CXlScalarArgument<ElementKind::kInteger>;

/// The rows, or columns, that are asked for of a table, and those of the result.
struct Cut {
  std::int32_t first;      ///< from 0
  std::int64_t requested;  ///< perhaps beyond the table; below 1 where it ends before the first
  std::int64_t output;     ///< the calling cells have no more

  /// How many of so many places from the first on there are among `length`.
  std::int32_t Among(std::int32_t length, std::int64_t count) const noexcept {
    return static_cast<std::int32_t>(std::clamp<std::int64_t>(count, 0, std::max(length - first, 0)));
  }
};

Cut MakeCut(std::int32_t length, std::int32_t count, std::int32_t first, std::int32_t caller) {
  const std::int64_t requested = count >= 1 ? count : std::int64_t{length} - first + 1;
  return {first - 1, requested, std::max<std::int64_t>(requested, caller)};
}

/// The cut of a reference as a reference, which may run past the end of it, but not off the sheet: that is #REF!.
CXlOper Reference(const CXlOper& range, const Cut& rows, const Cut& columns) {
  // Who can hand over such a reference has the large sheets of Excel 2007.
  constexpr SheetLimits kLimits = SheetLimitsOf(12);
  XLREF12 area = range.Areas().front();
  if (!ResizeArea(area, rows.requested, columns.requested, kLimits) ||
      !OffsetArea(area, rows.first, columns.first, kLimits))
    return CXlOper::Error(xlerrRef);
  return ReferenceOnSheetOf(range, area);
}

}  // namespace

void Functions::Resize(CXlOper& result, const CXlArgument& rangeArray, const IntegerArgument& numRows,
                       const IntegerArgument& numCols, const IntegerArgument& firstRow,
                       const IntegerArgument& firstColumn, const CXlArgument& fill) {
  const CellsSize caller = CallingCellsSize();
  const CXlOper& range = rangeArray.Value();
  const TableView table(range);
  const std::int32_t firstOfRows = firstRow.Read();
  const std::int32_t firstOfColumns = firstColumn.Read();
  if (firstOfRows < 1 || firstOfColumns < 1) throw CXlErrorException(xlerrValue);
  const XLOPER12* const fillCell = ReadFill(result, fill);
  if (!fillCell) return;
  const Cut rows = MakeCut(table.Rows(), numRows.Read(), firstOfRows, caller.rows);
  const Cut columns = MakeCut(table.Columns(), numCols.Read(), firstOfColumns, caller.columns);

  // Whether the request fits is asked of the whole range, not of what is left of it behind the first row and column.
  if (table.IsReference() && rows.requested == rows.output && columns.requested == columns.output &&
      rows.requested <= table.Rows() && columns.requested <= table.Columns()) {
    result = Reference(range, rows, columns);
    return;
  }
  CheckArraySize(rows.output, columns.output);
  // An array gives all that the result has room for, a reference what was asked for; a single value gives nothing.
  const bool gives = table.IsReference() || range.IsArray();
  const auto supplied = [&](const Cut& cut, std::int32_t length) {
    return gives ? cut.Among(length, table.IsReference() ? cut.requested : cut.output) : 0;
  };
  const std::int32_t height = supplied(rows, table.Rows());
  const std::int32_t width = supplied(columns, table.Columns());
  const bool isReadHere = table.IsReference() && height > 0 && width > 0;
  const CXlOper values = isReadHere ? table.CoercePart(rows.first, columns.first, height, width) : CXlOper();
  const auto map = [&](const Cut& cut, std::int32_t count) {
    return AxisMap::Run(table.IsReference() ? 0 : cut.first, count).PaddedTo(static_cast<std::int32_t>(cut.output));
  };
  const ArrayPiece piece{isReadHere ? values.Cells() : table.Cells(), map(rows, height), map(columns, width)};
  result = PaintStack({&piece, 1}, false, *fillCell);
}

}  // namespace quillmere::shape
