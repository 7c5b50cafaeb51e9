// Interpolation in a table of two dimensions.
//
// Serves LINTERP2D.
#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include "frame/convert/argument.h"
#include "frame/values/array_builder.h"
#include "implementations/series.h"
#include "series/coordinates.h"
#include "series/table_numbers.h"
#include "table/paired_cells.h"

namespace quillmere::series {
namespace {

using Numbers = CElementArray<ElementKind::kNumber>;
using PairedBrackets = Paired<Bracket>;

PairedBrackets Spread(const ScratchArray<Bracket>& brackets, const Numbers& values) {
  return {brackets.data(), static_cast<std::int32_t>(values.rows), static_cast<std::int32_t>(values.columns)};
}

/// Bilinear: within the rows first, as in Press et al., "Numerical Recipes" (1992), 3.6.
double NumberAt(TableNumbers& numbers, const Bracket& row, const Bracket& column) {
  numbers.Want(row.Range(), column.Range());
  return Interpolate(row, [&](std::int32_t rowPlace) {
    return Interpolate(column, [&](std::int32_t place) { return numbers.At(rowPlace, place); });
  });
}

/// The places of a result, row by row.
class Walk {
 public:
  explicit Walk(std::int32_t columns) noexcept : columns_(columns) {}

  const ResultPlace& Place() const noexcept { return place_; }
  void Step() noexcept {
    if (++place_.column < columns_) return;
    place_.column = 0;
    ++place_.row;
  }

 private:
  ResultPlace place_{0, 0};
  std::int32_t columns_;
};

void PutNumbers(CXlArrayBuilder& builder, TableNumbers& numbers, const PairedBrackets& rows,
                const PairedBrackets& columns) {
  constexpr int kAhead = 16;  // so many results before they are needed cells are asked for
  Walk ahead(builder.Columns());
  const auto prefetchNext = [&] {
    if (ahead.Place().row == builder.Rows()) return;
    const Bracket* const row = rows.At(ahead.Place());
    const Bracket* const column = columns.At(ahead.Place());
    if (row && column && !row->IsNowhere() && !column->IsNowhere()) {
      numbers.Prefetch(row->low, column->low);
      numbers.Prefetch(row->high, column->low);
    }
    ahead.Step();
  };
  for (int i = 0; i < kAhead; ++i) prefetchNext();
  for (Walk walk(builder.Columns()); walk.Place().row < builder.Rows(); walk.Step()) {
    prefetchNext();
    const ResultPlace& place = walk.Place();
    const Bracket* const row = rows.At(place);
    const Bracket* const column = columns.At(place);
    if (!row || !column || row->IsNowhere() || column->IsNowhere())
      builder.PutError(place.row, place.column, xlerrNA);
    else
      builder.PutNumber(place.row, place.column, NumberAt(numbers, *row, *column));
  }
}

}  // namespace

void Functions::Linterp2d(CXlOper& result, const CXlArgument& rowValue, const CXlArgument& columnValue,
                          const CXlArgument& table, const CXlScalarArgument<ElementKind::kInteger>& outside) {
  result.SetError(xlerrValue);
  const Numbers rowValues = rowValue.AsMatrix<ElementKind::kNumber>();
  const Numbers columnValues = columnValue.AsMatrix<ElementKind::kNumber>();
  const TableView view = TableView::OfUsedRows(table.Value());
  const Outside beyond{outside.Read()};
  CXlArrayBuilder builder(std::max(rowValues.rows, columnValues.rows),
                          std::max(rowValues.columns, columnValues.columns));

  const CoordinateLine down{view, 1, 0, view.Rows() - 1, true, table.Name()};
  const CoordinateLine across{view, 0, 1, view.Columns() - 1, false, table.Name()};
  const ScratchArray<Bracket> rows = FindBrackets(down, rowValues.Values(), Order::kAscending, beyond);
  const ScratchArray<Bracket> columns = FindBrackets(across, columnValues.Values(), Order::kAscending, beyond);

  std::vector<std::int32_t> behindFirst(static_cast<std::size_t>(across.count));
  std::iota(behindFirst.begin(), behindFirst.end(), 1);
  TableNumbers numbers(view.WithoutFirstRow(), std::move(behindFirst), table.Name());
  numbers.Expect(RangeOf({rows.data(), rows.size()}), RangeOf({columns.data(), columns.size()}),
                 std::int64_t{builder.Rows()} * builder.Columns());
  PutNumbers(builder, numbers, Spread(rows, rowValues), Spread(columns, columnValues));
  result = builder.FinishCollapsed();
}

}  // namespace quillmere::series
