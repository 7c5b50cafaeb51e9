// The sorts: rows in the order of some of their columns, or the numbers of the rows in that order.
//
// Serves VSORTB, VSORTB.INDEX, VSORTC, VSORTC.INDEX, Case.VSORTC, Case.VSORTC.INDEX.
#include <cstdlib>
#include <vector>

#include "frame/callbacks/used_range.h"
#include "frame/convert/argument.h"
#include "frame/convert/single_value.h"
#include "frame/values/array_builder.h"
#include "implementations/sort.h"
#include "sort/sort_rows.h"
#include "table/array_painter.h"
#include "table/table_view.h"

namespace quillmere::sort {
namespace {

using SortColumns = CXlArgumentRun<15>;

/// The keys up to the first 0; where there are none, every column, ascending. What is no number of a column is
/// CXlErrorException with #VALUE!.
std::vector<SortKey> ReadKeys(const SortColumns& columns, const CXlCells& cells) {
  std::vector<SortKey> keys;
  for (std::size_t i = 0; i < SortColumns::Count(); ++i) {
    const CXlArgument argument = columns[i];
    const XLOPER12* const cell = OnlyCell(argument.Value());
    std::int32_t column = 0;
    if (!cell || !ConvertCellTo<ElementKind::kInteger>(*cell, TextReading::kAskExcel, column))
      throw CXlErrorException(xlerrValue);
    if (column == 0) break;
    const std::int64_t place = std::abs(std::int64_t{column}) - 1;
    if (place >= cells.columns) throw CXlErrorException(xlerrValue);
    keys.push_back({ColumnLine(cells, static_cast<std::int32_t>(place)), column < 0});
  }
  const bool areAll = keys.empty();
  for (std::int32_t column = 0; areAll && column < cells.columns; ++column)
    keys.push_back({ColumnLine(cells, column), false});
  return keys;
}

CXlOper ListRows(const std::vector<std::int32_t>& order) {
  CXlArrayBuilder result(static_cast<std::int64_t>(order.size()), 1);
  XLOPER12* to = result.Row(0);
  for (const std::int32_t row : order) *to++ = NumberCell(row + 1.0);
  return result.FinishCollapsed();
}

}  // namespace

void Functions::SortTable(CXlOper& result, SortMode mode, SortOutput output, const CXlArgument& theInputData,
                          const SortColumns& sortColumns) {
  const CXlOper used = CutToUsedRows(theInputData.Value());
  const TableView table(used);
  const CXlOper values = table.ReadAll();
  const CXlCells cells = values.Cells();
  const std::vector<std::int32_t> order = SortRows(ReadKeys(sortColumns, cells), {}, mode);
  if (output == SortOutput::kRowNumbers) {
    result = ListRows(order);
  } else {
    const ArrayPiece sorted{cells, AxisMap::By(order), AxisMap::Run(0, cells.columns)};
    result = PaintStack({&sorted, 1}, false, ErrorCell(xlerrNA));
  }
}

}  // namespace quillmere::sort
