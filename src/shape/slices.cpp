// Rows and columns of a range or an array, picked by slice selectors.
//
// Serves SLICES.
#include <optional>

#include "frame/values/array_builder.h"
#include "implementations/shape.h"
#include "shape/slice_selector.h"
#include "shape/sliced_cells.h"

namespace quillmere::shape {

void Functions::Slices(CXlOper& result, const CXlArgument& rangeArray, const CXlArgument& sliceRows,
                       const CXlArgument& sliceColumns) {
  const TableView table(rangeArray.Value());
  constexpr XStringView kPrefix = XTEXT("Slices");
  const std::optional<Slice> rows = SelectSlice(result, table, SliceAxis::kRows, sliceRows, kPrefix);
  if (!rows) return;
  const std::optional<Slice> columns = SelectSlice(result, table, SliceAxis::kColumns, sliceColumns, kPrefix);
  if (!columns) return;

  if (table.IsReference() && rows->IsContiguous() && columns->IsContiguous()) {
    result = table.Part(rows->Runs()[0].first, columns->Runs()[0].first, rows->Count(), columns->Count());
    return;
  }
  CheckArraySize(rows->Count(), columns->Count());
  const SlicedCells cells(table, *rows, *columns);
  const ArrayPiece piece = cells.Piece();
  result = PaintStack({&piece, 1}, false, EmptyCell());
}

}  // namespace quillmere::shape
