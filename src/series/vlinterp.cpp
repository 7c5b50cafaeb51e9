// Interpolation between the rows of a table.
//
// Serves VLINTERP2.
#include <cstdint>
#include <span>
#include <utility>
#include <vector>

#include "frame/convert/argument.h"
#include "frame/values/array_builder.h"
#include "implementations/series.h"
#include "series/coordinates.h"
#include "series/table_numbers.h"
#include "table/column_selector.h"

namespace quillmere::series {
namespace {

/// Rows of the table are asked for so many values before they are read.
constexpr std::size_t kValuesAhead = 16;

void PutNumbers(CXlArrayBuilder& builder, TableNumbers& answers, std::span<const Bracket> brackets) {
  const PlaceRange all{0, answers.Columns() - 1};
  for (std::size_t at = 0; at < brackets.size(); ++at) {
    if (const std::size_t next = at + kValuesAhead; next < brackets.size() && !brackets[next].IsNowhere()) {
      answers.Prefetch(brackets[next].low, 0);
      answers.Prefetch(brackets[next].high, 0);
    }
    const Bracket& bracket = brackets[at];
    const auto row = static_cast<std::int64_t>(at);
    if (!bracket.IsNowhere()) answers.Want(bracket.Range(), all);
    for (std::int32_t column = 0; column < answers.Columns(); ++column) {
      if (bracket.IsNowhere())
        builder.PutError(row, column, xlerrNA);
      else
        builder.PutNumber(row, column,
                          Interpolate(bracket, [&](std::int32_t place) { return answers.At(place, column); }));
    }
  }
}

}  // namespace

void Functions::Vlinterp(CXlOper& result, const CXlArgument& lookupValues, const CXlArgument& lookupTable,
                         const CXlArgument& answerColumns, const CXlArgument& lookupColumn,
                         const CXlScalarArgument<ElementKind::kInteger>& outside) {
  result.SetError(xlerrValue);
  const CElementArray<ElementKind::kNumber> values = lookupValues.AsMatrix<ElementKind::kNumber>();
  const TableView table = TableView::OfUsedRows(lookupTable.Value());
  SelectedColumns answers = RequireColumns(answerColumns.Value(), table);
  const SelectedColumns lookup = RequireColumns(lookupColumn.Value(), table);
  if (lookup.columns.size() != 1) return;
  const Outside beyond{outside.Read()};
  CXlArrayBuilder builder(values.Count(), static_cast<std::int64_t>(answers.columns.size()));

  const TableView data = answers.headerUsed || lookup.headerUsed ? table.WithoutFirstRow() : table;
  const CoordinateLine line{data, 0, lookup.columns.front() - 1, data.Rows(), true, lookupTable.Name()};
  const ScratchArray<Bracket> found = FindBrackets(line, values.Values(), Order::kEither, beyond);
  const std::span<const Bracket> brackets(found.data(), found.size());

  for (std::int32_t& column : answers.columns) --column;
  TableNumbers numbers(data, std::move(answers.columns), lookupTable.Name());
  numbers.Expect(RangeOf(brackets), {0, numbers.Columns() - 1}, values.Count());
  PutNumbers(builder, numbers, brackets);
  result = builder.FinishCollapsed();
}

}  // namespace quillmere::series
