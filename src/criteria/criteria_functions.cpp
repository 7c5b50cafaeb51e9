// The criteria functions: rows that meet criteria, or their runs, their sums and counts.
//
// Serves FILTER.IFS, FILTER.SORTED, FILTER.MATCH, ASUMIFS, ACOUNTIFS.
#include <optional>
#include <utility>
#include <vector>

#include "criteria/filter_arguments.h"
#include "criteria/return_cells.h"
#include "criteria/row_scan.h"
#include "criteria/sorted_narrowing.h"
#include "frame/callbacks/callbacks.h"
#include "frame/errors/attempt.h"
#include "implementations/criteria.h"

namespace quillmere::criteria {
namespace {

/// The rows that meet all criteria of any group.
RowIntervals FindRows(FilterPlan& plan) {
  std::vector<RowIntervals> selected;
  std::vector<NarrowedGroup> scanned;
  for (CriteriaGroup& group : plan.groups) {
    NarrowedGroup narrowed = NarrowGroup(std::move(group), plan.columns, plan.table.Rows());
    if (narrowed.tests.empty()) {
      selected.push_back(std::move(narrowed.runs));
    } else {
      scanned.push_back(std::move(narrowed));
    }
  }
  if (!scanned.empty()) selected.push_back(ScanRows(plan.columns, scanned));
  return selected.size() == 1 ? std::move(selected.front()) : MergeIntervals(selected);
}

CXlOper ShapeRows(FilterMode mode, const FilterPlan& plan, const RowIntervals& selected) {
  switch (mode) {
    case FilterMode::kRows:
      return GatherRows(plan.table, plan.returnColumns, selected);
    case FilterMode::kSum:
      return TotalRows(plan.table, plan.returnColumns, selected, xlfSum);
    case FilterMode::kCount:
      return TotalRows(plan.table, plan.returnColumns, selected, xlfCounta);
    case FilterMode::kRuns:
      break;
  }
  return ListRuns(selected);
}

void FindCriteriaRows(CXlOper& result, FilterMode mode, const FilterArguments& arguments) {
  text::RegexBudget budget;
  std::optional<FilterPlan> plan = ReadFilter(arguments, budget, result);
  if (!plan) return;
  const RowIntervals selected = FindRows(*plan);
  if (selected.empty()) {
    result.SetNumber(0);
    return;
  }
  const bool areValues = RunsWithout<CXlBadOperTypeException>([&] { result = ShapeRows(mode, *plan, selected); });
  if (!areValues) result.SetText(XTEXT("Runtime error - target must contain a value type"));
}

}  // namespace

void Functions::FilterRows(CXlOper& result, FilterMode mode, const CXlArgument& nSorted, const CXlArgument& range,
                           const CXlArgument& returnColumn, const CriteriaPairs& pairs) {
  FindCriteriaRows(result, mode, {nSorted.Value(), range, returnColumn, pairs});
}

void Functions::FilterSorted(CXlOper& result, const CXlArgument& range, const CXlArgument& returnColumn,
                             const CriteriaPairs& pairs) {
  FindCriteriaRows(result, FilterMode::kRows, {CXlOper::Number(1), range, returnColumn, pairs});
}

}  // namespace quillmere::criteria
