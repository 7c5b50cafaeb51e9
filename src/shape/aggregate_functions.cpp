// Sums, averages, counts and more of the picked rows and columns of a table.
//
// Serves SUMCOLS, SUMROWS, AVERAGECOLS, AVERAGEROWS, COUNTCOLS, COUNTROWS, AGGREGATES.
#include <algorithm>
#include <optional>
#include <span>

#include "frame/convert/argument.h"
#include "implementations/shape.h"
#include "shape/aggregate_lines.h"
#include "shape/slice_selector.h"

namespace quillmere::shape {
namespace {

/// The aggregates of what the selectors pick, or the text that tells why they pick nothing.
CXlOper AggregatesOf(const TableView& table, AggregateBy by, std::span<const AggregateFunction> functions,
                     const CXlArgument& sliceRows, const CXlArgument& sliceColumns, XStringView functionName) {
  CXlOper result;
  const std::optional<Slice> rows = SelectSlice(result, table, SliceAxis::kRows, sliceRows, functionName);
  if (!rows) return result;
  const std::optional<Slice> columns = SelectSlice(result, table, SliceAxis::kColumns, sliceColumns, functionName);
  if (!columns) return result;
  return AggregateArray({table, *rows, *columns}, by, functions);
}

}  // namespace

void Functions::LineAggregates(CXlOper& result, std::int32_t function, bool byRows, XStringView ownName,
                               const CXlArgument& rangeArray, const CXlArgument& sliceRows,
                               const CXlArgument& sliceColumns) {
  result.SetError(xlerrValue);
  const TableView table = TableView::OfUsedRows(rangeArray.Value());
  const AggregateFunction functions[] = {AggregateFunction{function}};
  const AggregateBy by = byRows ? AggregateBy::kRows : AggregateBy::kColumns;
  result = AggregatesOf(table, by, functions, sliceRows, sliceColumns, ownName);
}

void Functions::Aggregates(CXlOper& result, XStringView ownName, const CXlArgument& rangeArray,
                           const CXlArgument& function, const CXlScalarArgument<ElementKind::kInteger>& by,
                           const CXlArgument& sliceRows, const CXlArgument& sliceColumns) {
  result.SetError(xlerrValue);
  const TableView table = TableView::OfUsedRows(rangeArray.Value());
  const CElementArray<ElementKind::kInteger> codes = function.AsList<ElementKind::kInteger>();
  const AggregateBy wanted{by.Read()};
  ScratchArray<AggregateFunction> functions(static_cast<std::size_t>(codes.Count()));
  std::ranges::transform(codes.Values(), functions.begin(), [](std::int32_t code) { return AggregateFunction{code}; });
  result = AggregatesOf(table, wanted, {functions.data(), functions.size()}, sliceRows, sliceColumns, ownName);
}

}  // namespace quillmere::shape
