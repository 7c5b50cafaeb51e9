// Counting the values that match a regular expression, and adding up what stands beside them.
//
// Serves Rgx.COUNTIF, Rgx.SUMIF.
#include <algorithm>
#include <array>
#include <cstdint>
#include <span>

#include "frame/values/array_builder.h"
#include "implementations/text.h"
#include "text/regex_pairs.h"

namespace quillmere::text {
namespace {

/// Calls take(first, places) with the places of the cells that match, counted from the `first` cell of a batch, batch
/// after batch.
template <class Take>
void ForMatching(const CXlCells& cells, const RegexPattern& pattern, const Take& take) {
  constexpr std::int64_t kBatch = 1'024;
  std::array<std::int32_t, kBatch> places;
  const auto otherMatches = [&](const XLOPER12& cell) {
    NumberTextBuffer number;
    return !IsErrorCell(cell) && pattern.Matches(TextForm(cell, number));
  };
  for (std::int64_t first = 0; first < cells.Count(); first += kBatch) {
    const auto count = static_cast<std::size_t>(std::min(kBatch, cells.Count() - first));
    const std::size_t matching = pattern.Keep(cells.first + first, 1, EveryPlace(), count, places.data(), otherMatches);
    take(first, std::span(places.data(), matching));
  }
}

/// The answer for each expression: count(pattern) makes the number.
template <class Count>
CXlOper CountBy(const CXlCells& expressions, LetterCase letterCase, const Count& count) {
  RegexBudget budget;
  PatternCache patterns(budget, letterCase);
  CXlArrayBuilder counts(expressions.rows, expressions.columns);
  const bool isDone = RunsWithout<CXlRegexLimitException>([&] {
    XLOPER12* to = counts.Row(0);
    for (const XLOPER12& cell : std::span(expressions.first, static_cast<std::size_t>(expressions.Count()))) {
      const RegexPattern* const pattern = IsErrorCell(cell) ? nullptr : patterns.Find(cell);
      const std::int32_t error = IsErrorCell(cell) ? KnownErrorCode(cell.val.err) : xlerrValue;
      *to++ = pattern ? NumberCell(count(*pattern)) : ErrorCell(error);
    }
  });
  return isDone ? counts.FinishCollapsed() : CXlOper::Error(xlerrValue);
}

}  // namespace

void Functions::RegexCountIf(CXlOper& result, const CXlArgument& searchThis, const CXlArgument& regExp,
                             const CXlScalarArgument<ElementKind::kBoolean>& caseSensitive) {
  result.SetError(xlerrValue);
  const CXlCells searched = searchThis.Value().Cells();
  const CXlCells expressions = regExp.Value().Cells();
  const std::optional<LetterCase> letterCase = ReadLetterCase(caseSensitive);
  if (!letterCase) return;
  result = CountBy(expressions, *letterCase, [&](const RegexPattern& pattern) {
    double count = 0;
    ForMatching(searched, pattern, [&](std::int64_t, auto places) { count += static_cast<double>(places.size()); });
    return count;
  });
}

void Functions::RegexSumIf(CXlOper& result, const CXlArgument& searchThis, const CXlArgument& regExp,
                           const CXlArgument& sumThis, const CXlScalarArgument<ElementKind::kBoolean>& caseSensitive) {
  result.SetError(xlerrValue);
  const CXlCells searched = searchThis.Value().Cells();
  const CXlCells expressions = regExp.Value().Cells();
  const CXlCells summed = sumThis.Value().Cells();
  const std::optional<LetterCase> letterCase = ReadLetterCase(caseSensitive);
  if (!letterCase) return;
  // The number at the same row and column, wherever that is in arrays of different widths.
  const auto numberAt = [&](std::int64_t place) {
    const std::int64_t row = place / searched.columns;
    const std::int64_t column = place % searched.columns;
    if (row >= summed.rows || column >= summed.columns) return 0.0;
    const XLOPER12& cell = summed.first[row * summed.columns + column];
    return CellType(cell) == xltypeNum || CellType(cell) == xltypeInt ? CellNumber(cell) : 0.0;
  };
  result = CountBy(expressions, *letterCase, [&](const RegexPattern& pattern) {
    double sum = 0;
    ForMatching(searched, pattern, [&](std::int64_t first, auto places) {
      for (const std::int32_t place : places) sum += numberAt(first + place);
    });
    return sum;
  });
}

}  // namespace quillmere::text
