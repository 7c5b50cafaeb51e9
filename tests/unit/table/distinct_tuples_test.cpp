// What of the numbering of distinct tuples no result shows.
#include "table/distinct_tuples.h"

#include <gtest/gtest.h>

#include <limits>

namespace quillmere::testing {
namespace {

TEST(DistinctTuples, ANumberThatIsNoneEqualsNothing) {
  std::vector<XLOPER12> cells(100'000, NumberCell(1));
  for (XLOPER12& cell : cells) cell.val.num = std::numeric_limits<double>::quiet_NaN();
  const std::int32_t columns[] = {0};
  const RowTuples rows({cells.data(), 100'000, 1}, columns);
  DistinctTuples<TextCase::kIgnored, RowTuples> distinct(rows);
  distinct.AddAll([](std::int32_t) { return true; },
                  [](std::int32_t place, std::int32_t number) { EXPECT_EQ(number, place); });
}

}  // namespace
}  // namespace quillmere::testing
