// The criteria between two "#OR#" markers: a row is selected when it meets all of them.
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <variant>
#include <vector>

#include "criteria/column_test.h"
#include "criteria/criterion.h"
#include "criteria/criterion_list.h"
#include "criteria/row_interval.h"

namespace quillmere::criteria {

/// A prepared criterion, or a list of them, and the column that it is about.
struct CriteriaTerm {
  std::size_t column;  ///< an index of CriteriaColumns
  std::variant<Criterion, CriterionList> criterion;
};

/// A group as it was written.
struct CriteriaGroup {
  std::size_t sortedCount = 0;  ///< so many of the first terms are about sorted columns
  int direction = 0;            ///< +1 ascending, -1 descending
  std::vector<CriteriaTerm> terms;
};

/// A test of a column.
struct CriteriaTest {
  std::size_t column;  ///< an index of CriteriaColumns
  std::unique_ptr<const ColumnTest> test;
};

/// A group whose sorted columns were searched: the rows that are left, and what they are yet to be tested for.
struct NarrowedGroup {
  RowIntervals runs;
  std::vector<CriteriaTest> tests;
};

}  // namespace quillmere::criteria
