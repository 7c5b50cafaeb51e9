// The sorts: rows in the order of some of their columns, or the numbers of the rows in that order.
//
// Serves VSORTB, VSORTB.INDEX, VSORTC, VSORTC.INDEX, Case.VSORTC, Case.VSORTC.INDEX.
#include <algorithm>
#include <cstdlib>
#include <deque>
#include <span>
#include <vector>

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

CXlOper ListRows(const RowOrder& order) {
  CXlArrayBuilder result(static_cast<std::int64_t>(order.size()), 1);
  XLOPER12* to = result.Row(0);
  for (const std::int32_t row : order) *to++ = NumberCell(row + 1.0);
  return result.FinishCollapsed();
}

/// The cells of a column, texts once each, and which of them stands in each row of the result.
struct DistinctColumn {
  std::vector<XLOPER12> cells;
  RowOrder rows;
};

DistinctColumn DistinctTexts(const CellLine& line, const LineRanks& ranks, const RowOrder& order) {
  DistinctColumn column;
  for (const std::int32_t place : ranks.FirstPlaces()) column.cells.push_back(line.At(place));
  column.rows = RowOrder(order.size());
  std::int32_t* to = column.rows.data();
  for (const std::int32_t row : order) {
    std::uint32_t number = ranks.Number(static_cast<std::size_t>(row));
    if (number == LineRanks::kNoText) {
      number = static_cast<std::uint32_t>(column.cells.size());
      column.cells.push_back(line.At(row));
    }
    *to++ = static_cast<std::int32_t>(number);
  }
  return column;
}

/// Whether most cells of a column are texts, and few of those distinct.
bool RanksFewTexts(const LineRanks& ranks, std::int32_t rows) {
  constexpr std::int32_t kRowsOfText = 8;
  return ranks.Texts() > rows / 2 && static_cast<std::int32_t>(ranks.FirstPlaces().size()) <= rows / kRowsOfText;
}

/// The rows in their order. Columns of few texts are painted from those alone: to read a text for each row would take
/// longest.
CXlOper PaintRows(const CXlCells& cells, const SortedRows& sorted) {
  std::vector<ArrayPiece> pieces;
  std::deque<DistinctColumn> distinct;
  std::int32_t painted = 0;  // columns
  const auto paintTo = [&](std::int32_t column) {
    if (column > painted) pieces.push_back({cells, AxisMap::By(sorted.order), AxisMap::Run(painted, column - painted)});
    painted = column;
  };
  for (std::int32_t column = 0; column < cells.columns; ++column) {
    const auto isOfColumn = [&](const SortKey& key) { return key.cells.first == cells.first + column; };
    const auto key = std::ranges::find_if(sorted.keys, isOfColumn);
    if (key == sorted.keys.end()) continue;
    const LineRanks& ranks = sorted.ranks[static_cast<std::size_t>(key - sorted.keys.begin())];
    if (!ranks.AreKnown() || !RanksFewTexts(ranks, cells.rows)) continue;
    paintTo(column);
    const DistinctColumn& texts = distinct.emplace_back(DistinctTexts(key->cells, ranks, sorted.order));
    const CXlCells once{texts.cells.data(), static_cast<std::int32_t>(texts.cells.size()), 1};
    pieces.push_back({once, AxisMap::By(texts.rows), AxisMap::Run(0, 1)});
    ++painted;
  }
  paintTo(cells.columns);
  return PaintStack(pieces, true, ErrorCell(xlerrNA));
}

}  // namespace

void Functions::SortTable(CXlOper& result, SortMode mode, SortOutput output, const CXlArgument& theInputData,
                          const SortColumns& sortColumns) {
  const CXlOper values = TableView::OfUsedRows(theInputData.Value()).ReadAll();
  const CXlCells cells = values.Cells();
  const SortedRows sorted = SortRanked(ReadKeys(sortColumns, cells), mode);
  result = output == SortOutput::kRowNumbers ? ListRows(sorted.order) : PaintRows(cells, sorted);
}

}  // namespace quillmere::sort
