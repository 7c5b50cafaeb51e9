#include "lookup/lookup_result.h"

#include <algorithm>

#include "frame/values/array_builder.h"

namespace quillmere {
namespace {

/// How many rows ahead the copy asks for a row of the table, since rows found lie anywhere.
constexpr std::size_t kAhead = 48;

void PutPositions(CXlArrayBuilder& builder, const FoundRows& found, const XLOPER12& notFound) {
  for (std::size_t i = 0; i < found.size(); ++i) {
    XLOPER12* const to = builder.Row(static_cast<std::int64_t>(i));
    *to = found[i] == kNoRow ? notFound : NumberCell(found[i] + 1.0);
  }
}

/// A run of answer columns that lie side by side in the table.
struct ColumnRun {
  std::int32_t answer;  ///< the first of them in the result
  std::int32_t column;  ///< the first of them in the table
  std::size_t count;
};

std::vector<ColumnRun> RunsOf(const std::vector<std::int32_t>& columns) {
  std::vector<ColumnRun> runs;
  for (std::size_t i = 0; i < columns.size(); ++i) {
    if (i != 0 && columns[i] == columns[i - 1] + 1)
      ++runs.back().count;
    else
      runs.push_back({static_cast<std::int32_t>(i), columns[i], 1});
  }
  return runs;
}

void PutArrayRows(CXlArrayBuilder& builder, const LookupPlan& plan, const FoundRows& found, const XLOPER12& notFound) {
  const std::vector<ColumnRun> runs = RunsOf(plan.answerColumns);
  const CXlCells cells = plan.data.Cells();
  for (std::size_t i = 0; i < found.size(); ++i) {
    if (i + kAhead < found.size() && found[i + kAhead] != kNoRow)
      PrefetchCell(cells.Row(found[i + kAhead]) + runs.front().column);
    XLOPER12* const to = builder.Row(static_cast<std::int64_t>(i));
    if (found[i] == kNoRow) {
      builder.Repeat(to, plan.answerColumns.size(), 1, notFound);
      continue;
    }
    const XLOPER12* const from = cells.Row(found[i]);
    for (const ColumnRun& run : runs) builder.CopyCells(to + run.answer, from + run.column, run.count);
  }
}

void PutReferenceRows(CXlArrayBuilder& builder, const LookupPlan& plan, const FoundRows& found,
                      const XLOPER12& notFound) {
  for (std::size_t i = 0; i < found.size(); ++i) {
    const auto row = static_cast<std::int64_t>(i);
    for (std::size_t j = 0; j < plan.answerColumns.size(); ++j) {
      const auto column = static_cast<std::int64_t>(j);
      if (found[i] == kNoRow)
        *builder.At(row, column) = notFound;
      else
        builder.Put(row, column, plan.data.CoerceCell(found[i], plan.answerColumns[j]));
    }
  }
}

}  // namespace

CXlOper BuildLookupResult(const LookupPlan& plan, const FoundRows& found, const XLOPER12& notFound) {
  const std::size_t columns = plan.WantsPositions() ? 1 : plan.answerColumns.size();
  CXlArrayBuilder builder(static_cast<std::int64_t>(found.size()), static_cast<std::int64_t>(columns));
  // Stored once, when it is needed: a text is shared by all cells that show it.
  XLOPER12 missing = notFound;
  if (std::find(found.begin(), found.end(), kNoRow) != found.end()) missing = builder.Store(notFound);
  if (plan.WantsPositions())
    PutPositions(builder, found, missing);
  else if (plan.data.IsReference())
    PutReferenceRows(builder, plan, found, missing);
  else
    PutArrayRows(builder, plan, found, missing);
  return builder.FinishCollapsed();
}

}  // namespace quillmere
