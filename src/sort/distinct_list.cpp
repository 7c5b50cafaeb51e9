#include "sort/distinct_list.h"

#include <algorithm>
#include <cstddef>
#include <span>
#include <utility>
#include <vector>

#include "frame/values/array_builder.h"
#include "sort/sort_rows.h"
#include "table/array_painter.h"

namespace quillmere::sort {
namespace {

/// What stands beside a distinct item.
double FigureOf(const DistinctItems& found, std::size_t number, ItemFigure figure) {
  if (figure == ItemFigure::kCount) return found.counts[number];
  return figure == ItemFigure::kSum ? found.sums[number] : found.sums[number] / found.counts[number];
}

RowOrder SortByItem(const CXlCells& items, const DistinctItems& found, bool isDescending) {
  std::vector<SortKey> keys;
  for (std::int32_t column = 0; column < items.columns; ++column)
    keys.push_back({ColumnLine(items, column), isDescending});
  return SortRows(keys, found.firstPlaces.Values(), SortMode::kCollatedByCase);
}

RowOrder SortByFigure(const DistinctItems& found, ItemFigure figure, bool isDescending) {
  ScratchArray<XLOPER12> figures(found.firstPlaces.size());
  for (std::size_t number = 0; number < figures.size(); ++number)
    figures[number] = NumberCell(FigureOf(found, number, figure));
  const SortKey key{{figures.data(), static_cast<std::int32_t>(figures.size()), 1}, isDescending};
  return SortRows({&key, 1}, {}, SortMode::kCollatedByCase);
}

template <class T>
void Reorder(ScratchList<T>& values, std::span<const std::int32_t> order) {
  if (values.empty()) return;
  ScratchList<T> ordered;
  for (const std::int32_t place : order) ordered.Append(values[static_cast<std::size_t>(place)]);
  values = std::move(ordered);
}

void SortItems(const CXlCells& items, DistinctItems& found, const ListForm& form) {
  const ListOrder order = form.order;
  if (order.by == ListOrder::By::kFirstOccurrence || found.firstPlaces.empty()) return;
  const RowOrder sorted = order.by == ListOrder::By::kItem ? SortByItem(items, found, order.isDescending)
                                                           : SortByFigure(found, form.figure, order.isDescending);
  Reorder(found.firstPlaces, sorted);
  Reorder(found.counts, sorted);
  Reorder(found.sums, sorted);
}

/// Cells that nothing supplies.
ArrayPiece Nothing(std::int32_t rows, std::int32_t columns) {
  return {{}, AxisMap::Run(0, 0).PaddedTo(rows), AxisMap::Run(0, 0).PaddedTo(columns)};
}

CXlOper PaintList(const CXlCells& items, const DistinctItems& found, const ListForm& form, const CellsSize& size) {
  CXlArrayBuilder builder(size.rows, size.columns);
  ArrayPainter painter(builder, form.fill.Raw());
  const std::span<const std::int32_t> places = found.firstPlaces.Values();
  const std::int32_t rows = std::min(static_cast<std::int32_t>(places.size()), size.rows);
  std::int32_t columns = std::min(items.columns, size.columns);
  const ArrayPiece listed{items, AxisMap::By(places.first(static_cast<std::size_t>(rows))), AxisMap::Run(0, columns)};
  painter.PaintBand(0, {&listed, 1});
  if (form.figure != ItemFigure::kNone && columns < size.columns) {
    for (std::int32_t row = 0; row < rows; ++row)
      builder.PutNumber(row, columns, FigureOf(found, static_cast<std::size_t>(row), form.figure));
    ++columns;
  }
  const ArrayPiece beside = Nothing(rows, size.columns - columns);
  if (columns < size.columns) painter.PaintBand(0, {&beside, 1}, columns);
  const ArrayPiece below = Nothing(size.rows - rows, size.columns);
  painter.PaintBand(rows, {&below, 1});
  return builder.FinishCollapsed();
}

}  // namespace

CXlOper ListItems(const CXlCells& items, DistinctItems&& found, const ListForm& form) {
  CellsSize size = form.caller;
  if (size.rows == 1 && size.columns == 1 && !found.firstPlaces.empty()) {
    size.rows = static_cast<std::int32_t>(found.firstPlaces.size());
    size.columns = items.columns + (form.figure == ItemFigure::kNone ? 0 : 1);
  }
  CheckArraySize(size.rows, size.columns);
  SortItems(items, found, form);
  return PaintList(items, found, form, size);
}

}  // namespace quillmere::sort
