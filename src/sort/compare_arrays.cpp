// Two arrays compared cell by cell.
//
// Serves COMPARE.
#include <algorithm>
#include <cmath>

#include "frame/convert/argument.h"
#include "frame/values/array_builder.h"
#include "frame/values/scratch_list.h"
#include "implementations/sort.h"
#include "table/table_view.h"
#include "table/tuple_compare.h"

namespace quillmere::sort {
namespace {

/// The codes of Output.
namespace output_form {
constexpr std::int32_t kCells = 0;
constexpr std::int32_t kCount = 1;
}  // namespace output_form

struct CellPlace {
  std::int32_t row;
  std::int32_t column;
};

/// Two arrays whose first cells are laid upon one another.
template <TextCase textCase>
struct ArrayPair {
  const CXlCells a;
  const CXlCells b;
  const double tolerance;  ///< between numbers; not negative

  std::int32_t Rows() const noexcept { return std::max(a.rows, b.rows); }
  std::int32_t Columns() const noexcept { return std::max(a.columns, b.columns); }

  /// How many columns both have in a row, and how many one of them has.
  std::int32_t Common(std::int32_t row) const noexcept { return std::min(ColumnsOf(a, row), ColumnsOf(b, row)); }
  std::int32_t Width(std::int32_t row) const noexcept { return std::max(ColumnsOf(a, row), ColumnsOf(b, row)); }

  /// For cells that both have.
  bool AreEqual(const XLOPER12& x, const XLOPER12& y) const {
    if (IsNumberCell(x) && IsNumberCell(y)) return !(std::fabs(x.val.num - y.val.num) > tolerance);
    return CellsEqual<textCase>(x, y);
  }

  /// Calls `take(place)` for the cells that differ, row by row, until it returns false.
  template <class Take>
  void ForEachDifference(const Take& take) const {
    for (std::int32_t row = 0; row < Rows(); ++row) {
      const std::int32_t common = Common(row);
      const std::int32_t width = Width(row);
      for (std::int32_t column = 0; column < width; ++column)
        if ((column >= common || !AreEqual(a.At(row, column), b.At(row, column))) && !take(CellPlace{row, column}))
          return;
    }
  }

  static std::int32_t ColumnsOf(const CXlCells& cells, std::int32_t row) noexcept {
    return row < cells.rows ? cells.columns : 0;
  }
};

template <TextCase textCase>
CXlOper TellCells(const ArrayPair<textCase>& arrays) {
  CXlArrayBuilder builder(arrays.Rows(), arrays.Columns());
  // Copied whole: a cell that is put together takes longer than the comparison.
  const XLOPER12 answers[] = {BooleanCell(false), BooleanCell(true)};
  XLOPER12* to = builder.Row(0);
  for (std::int32_t row = 0; row < arrays.Rows(); ++row) {
    const std::int32_t common = arrays.Common(row);
    for (std::int32_t column = 0; column < common; ++column)
      *to++ = answers[arrays.AreEqual(arrays.a.At(row, column), arrays.b.At(row, column))];
    to = std::fill_n(to, arrays.Columns() - common, answers[0]);
  }
  return builder.FinishCollapsed();
}

template <TextCase textCase>
CXlOper CountDifferences(const ArrayPair<textCase>& arrays) {
  std::int64_t count = 0;
  arrays.ForEachDifference([&](const CellPlace&) {
    ++count;
    return true;
  });
  return CXlOper::Number(static_cast<double>(count));
}

template <TextCase textCase>
CXlOper ListDifferences(const ArrayPair<textCase>& arrays) {
  ScratchList<CellPlace> places;
  arrays.ForEachDifference([&](const CellPlace& place) {
    places.Append(place);
    return places.size() <= kXlMaxRows;  // the builder refuses more
  });
  if (places.empty()) return CXlOper::Number(0);

  CXlArrayBuilder builder(static_cast<std::int64_t>(places.size()), 4);
  const auto put = [&](XLOPER12* to, const CXlCells& cells, const CellPlace& place) {
    if (place.row < cells.rows && place.column < cells.columns)
      builder.CopyCells(to, &cells.At(place.row, place.column), 1);
    else
      *to = ErrorCell(xlerrNA);
  };
  XLOPER12* to = builder.Row(0);
  for (const CellPlace& place : places) {
    *to++ = NumberCell(place.row + 1.0);
    *to++ = NumberCell(place.column + 1.0);
    put(to++, arrays.a, place);
    put(to++, arrays.b, place);
  }
  return builder.Finish();
}

template <TextCase textCase>
CXlOper CompareCells(const CXlOper& first, const CXlOper& second, std::int32_t output, double tolerance) {
  const ArrayPair<textCase> arrays{first.Cells(), second.Cells(), std::max(tolerance, 0.0)};
  if (output == output_form::kCells) return TellCells(arrays);
  if (output == output_form::kCount) return CountDifferences(arrays);
  return ListDifferences(arrays);
}

}  // namespace

void Functions::Compare(CXlOper& result, const CXlArgument& array1, const CXlArgument& array2,
                        const CXlScalarArgument<ElementKind::kInteger>& output,
                        const CXlScalarArgument<ElementKind::kNumber>& tolerance,
                        const CXlScalarArgument<ElementKind::kBoolean>& caseSense) {
  result.SetError(xlerrValue);
  const TableView first = TableView::OfUsedRows(array1.Value());
  const TableView second = TableView::OfUsedRows(array2.Value());
  const std::int32_t wanted = output.Read();
  const double between = tolerance.Read();
  const auto compare = caseSense.Read() ? CompareCells<TextCase::kCounts> : CompareCells<TextCase::kIgnored>;
  result = compare(first.ReadAll(), second.ReadAll(), wanted, between);
}

}  // namespace quillmere::sort
