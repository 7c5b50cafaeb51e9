// Reading the arguments of the criteria functions.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "criteria/criteria_columns.h"
#include "criteria/criteria_group.h"
#include "frame/convert/argument.h"
#include "table/table_view.h"
#include "text/regex/regex_budget.h"

namespace quillmere::criteria {

/// Col1, Crit1 ... Col18, Crit18.
using CriteriaPairs = CXlArgumentRun<36>;

/// What all criteria functions take, as it was passed.
struct FilterArguments {
  const CXlOper& sortedCount;
  const CXlArgument& range;
  const CXlArgument& returnColumn;
  const CriteriaPairs& pairs;
};

/// What a call asks for. It views the arguments.
struct FilterPlan {
  TableView table;  ///< the data, without a header
  CriteriaColumns columns;
  std::vector<CriteriaGroup> groups;
  std::vector<std::int32_t> returnColumns;  ///< of the table, 0-based
};

/// Reads the arguments. Nothing when one cannot be used: `result` then says so. A list without elements, a column of
/// another height, or a callback that fails raise CXlErrorException with #VALUE!. Expressions share `budget`, which
/// must outlive the plan.
std::optional<FilterPlan> ReadFilter(const FilterArguments& arguments, text::RegexBudget& budget, CXlOper& result);

}  // namespace quillmere::criteria
