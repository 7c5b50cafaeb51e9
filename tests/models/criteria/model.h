// A slow and plain model of the criteria functions: what a call must give, worked out row by row from the rules that
// the help pages state, without a thought for speed or sorted data. It shares nothing with the add-in.
#pragma once

#include <cstdint>
#include <optional>
#include <vector>

#include "host/values/value.h"
#include "tests/models/criteria/model_criterion.h"

namespace qcalc::criteria {

enum class Mode { kRows, kSum, kCount, kRuns };

struct FilterFunction {
  XStringView name;
  Mode mode;
  bool isSorted;  ///< by its first criterion, without being told
};
inline constexpr FilterFunction kFilterFunctions[] = {{XTEXT("FILTER.IFS"), Mode::kRows, false},
                                                      {XTEXT("FILTER.SORTED"), Mode::kRows, true},
                                                      {XTEXT("FILTER.MATCH"), Mode::kRuns, false},
                                                      {XTEXT("ASUMIFS"), Mode::kSum, false},
                                                      {XTEXT("ACOUNTIFS"), Mode::kCount, false}};

/// Cells beside the data, of one column of the drawn cells. Zero-based.
struct Beside {
  std::int32_t row = 0;
  std::int32_t rows = 1;
  std::int32_t column = 0;
};

struct Pair {
  Value column = Value::Missing();  ///< ColN
  std::optional<Beside> beside;     ///< ColN instead: a reference
  Value criterion = Value::Missing();
};

/// One call with all its arguments; those that are left out are missing values.
struct FilterCall {
  const FilterFunction* function = nullptr;
  ArrayPtr cells;            ///< the data range, a header row included, and columns beside it
  std::int32_t columns = 1;  ///< of the data range, the first ones
  bool isReference = false;  ///< the cells stand in a sheet
  bool hasRange = true;
  Value sortedCount = Value::Missing();
  Value returned = Value::Missing();
  std::vector<Pair> pairs;
};

/// A pair that is read, or a mark between groups.
struct Condition {
  bool isMark = false;
  std::int32_t sorted = 0;  ///< of a mark: how many criteria of its group are sorted
  bool isCalculated = false;
  std::vector<CellView> cells;  ///< of its column, one a data row
  Criteria criteria;
};

/// What a call asks, or what it gives when it asks wrongly.
struct Question {
  std::optional<Value> failure;
  bool hasHeader = false;
  std::int32_t sorted = 0;            ///< criteria of the first group
  std::vector<Condition> conditions;  ///< one a pair that has a column
};
Question ReadQuestion(const FilterCall& call);

Value Expected(const FilterCall& call);

}  // namespace qcalc::criteria
