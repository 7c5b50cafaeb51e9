// Single cells of an array replaced.
//
// Serves SPLICECELLS.
#include <cmath>
#include <optional>

#include "frame/convert/argument.h"
#include "frame/values/array_builder.h"
#include "implementations/shape.h"
#include "table/table_view.h"

namespace quillmere::shape {
namespace {

/// One of `count` rows, or columns, from 0: the last when the argument is left out, from the end on when its number is
/// negative. Nothing where it is not just one number that names one.
std::optional<std::int32_t> ReadPlace(const CXlArgument& argument, std::int32_t count) {
  if (!argument.IsGiven()) return count - 1;
  const TableView place(argument.Value());
  if (place.Rows() != 1 || place.Columns() != 1) return std::nullopt;
  const CXlOper value = place.ReadCell(0, 0);
  if (!value.IsNumber() && !value.IsInteger()) return std::nullopt;
  const double number = std::trunc(value.AsNumber());
  if (number == 0 || !(std::abs(number) <= count)) return std::nullopt;
  const auto counted = static_cast<std::int32_t>(number);
  return counted > 0 ? counted - 1 : count + counted;
}

/// The arguments of one replacement, the last of which says whether there is one.
struct Replacement {
  const CXlArgument& row;
  const CXlArgument& column;
  const CXlArgument& splice;
};

}  // namespace

void Functions::SpliceCells(CXlOper& result, const CXlArgument& array, const CXlArgument& rows, const CXlArgument& cols,
                            const CXlArgument& splice, const CXlArgument& rows2, const CXlArgument& cols2,
                            const CXlArgument& splice2, const CXlArgument& rows3, const CXlArgument& cols3,
                            const CXlArgument& splice3, const CXlArgument& rows4, const CXlArgument& cols4,
                            const CXlArgument& splice4, const CXlArgument& rows5, const CXlArgument& cols5,
                            const CXlArgument& splice5) {
  result.SetError(xlerrValue);
  const CXlCells cells = array.Value().Cells();
  if (cells.Count() == 1) return;
  struct {
    std::int32_t row;
    std::int32_t column;
    const XLOPER12* value;
  } replaced[5];
  std::size_t count = 0;
  for (const Replacement& each :
       {Replacement{rows, cols, splice}, Replacement{rows2, cols2, splice2}, Replacement{rows3, cols3, splice3},
        Replacement{rows4, cols4, splice4}, Replacement{rows5, cols5, splice5}}) {
    if (!each.splice.IsGiven()) continue;
    const std::optional<std::int32_t> row = ReadPlace(each.row, cells.rows);
    const std::optional<std::int32_t> column = row ? ReadPlace(each.column, cells.columns) : std::nullopt;
    if (!column) return;
    replaced[count++] = {*row, *column, each.splice.Value().Cells().first};
  }

  CXlArrayBuilder builder(cells.rows, cells.columns);
  builder.CopyCells(builder.Row(0), cells.first, static_cast<std::size_t>(cells.Count()));
  for (const auto& [row, column, value] : std::span(replaced, count)) builder.Put(row, column, *value);
  result = builder.Finish();
}

}  // namespace quillmere::shape
