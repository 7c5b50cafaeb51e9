#include "frame/convert/convert_array.h"

#include "frame/callbacks/callbacks.h"
#include "frame/convert/convert_cell.h"

namespace quillmere {
namespace {

/// The cells of an argument, fetched from Excel when it is a reference.
CXlOper FetchCells(const CXlOper& argument, const CConvertParamsBase& params, ElementKind kind) {
  if (!argument.IsReference()) return CXlOper::Borrow(&argument.Raw());
  CXlOper fetched;
  if (TryCallExcel(fetched, xlCoerce, argument) != xlretSuccess)
    params.ThrowFailedToConvert(argument.Raw(), TypeName(kind));
  return fetched;
}

/// How many cells of a run come before the empty ones at its end.
std::int64_t FilledLength(const XLOPER12* first, std::int64_t count, std::int64_t stride) {
  while (count > 0 && IsEmptyCell(first[(count - 1) * stride])) --count;
  return count;
}

void CheckLengths(const CXlCells& cells, const CVectorConvertParamsBase& params) {
  if (params.RefusesShortRows())
    for (std::int32_t row = 0; row < cells.rows; ++row)
      params.CheckRowLength(row + 1, FilledLength(cells.Row(row), cells.columns, 1), cells.columns);
  if (params.RefusesShortColumns())
    for (std::int32_t column = 0; column < cells.columns; ++column)
      params.CheckColumnLength(column + 1, FilledLength(cells.first + column, cells.rows, cells.columns), cells.rows);
}

/// Converts `count` cells, or those that are not empty, into `values`; returns how many.
template <ElementKind kind>
std::int64_t ConvertRun(const XLOPER12* cells, std::int64_t count, bool skipEmpty, ElementOf<kind>* values,
                        const CConvertParamsBase& params) {
  std::int64_t converted = 0;
  for (std::int64_t at = 0; at < count; ++at) {
    if (skipEmpty && IsEmptyCell(cells[at])) continue;
    if (!ConvertCellTo<kind>(cells[at], TextReading::kPlain, values[converted])) [[unlikely]]
      params.ThrowExpected(TypeName(kind));
    ++converted;
  }
  return converted;
}

}  // namespace

template <ElementKind kind>
CElementArray<kind> ConvertArgument(const CXlOper& argument, const CVectorConvertParams<kind>& params) {
  CElementArray<kind> result;
  const bool isList = params.GetShape() == CVectorConvertParamsBase::Shape::kList;
  if (argument.IsAbsent()) {
    params.CheckPresent(kind);
    return result;
  }
  const CXlOper fetched = FetchCells(argument, params, kind);
  const CXlCells cells = fetched.Cells();
  params.CheckSize(cells.rows, cells.columns);
  CheckLengths(cells, params);
  result.values = std::make_unique_for_overwrite<ElementOf<kind>[]>(static_cast<std::size_t>(cells.Count()));
  const std::int64_t count = ConvertRun<kind>(cells.first, cells.Count(), isList, result.values.get(), params);
  if (isList) params.CheckListCount(count);
  result.rows = isList ? count : cells.rows;
  result.columns = isList ? 1 : cells.columns;
  return result;
}

#define INSTANTIATE(kind) \
  template CElementArray<kind> ConvertArgument<kind>(const CXlOper&, const CVectorConvertParams<kind>&);
FOR_EACH_ELEMENT_KIND(INSTANTIATE)
#undef INSTANTIATE

}  // namespace quillmere
