// Marks of cells, held against a plain set.
#include "host/workbook/cell_marks.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <set>

namespace qcalc {
namespace {

TEST(CellMarks, FindsWhatAPlainSetHolds) {
  std::mt19937 random(7);
  CellMarks marks;
  std::set<CellPosition> plain;
  const auto area = [&](int rows) {
    const auto first = static_cast<std::int32_t>(random() % 9000), column = static_cast<std::int32_t>(random() % 4);
    return Area{first, first + static_cast<std::int32_t>(random() % rows), column,
                column + static_cast<std::int32_t>(random() % 3)};
  };
  for (int step = 0; step < 3000; ++step) {
    const Area written = area(step % 3 == 0 ? 200 : 3);
    const bool isMarked = random() % 5 < 2;
    marks.Set(written, isMarked);
    for (std::int32_t row = written.firstRow; row <= written.lastRow; ++row)
      for (std::int32_t column = written.firstColumn; column <= written.lastColumn; ++column)
        isMarked ? static_cast<void>(plain.insert({row, column})) : static_cast<void>(plain.erase({row, column}));
    const Area asked = area(9000);
    const auto isInside = [&](const CellPosition& cell) { return asked.Contains(cell.row, cell.column); };
    const auto first = std::find_if(plain.begin(), plain.end(), isInside);
    const auto last = std::find_if(plain.rbegin(), plain.rend(), isInside);
    ASSERT_EQ(marks.FindFirst(asked), first == plain.end() ? std::nullopt : std::optional(*first)) << step;
    ASSERT_EQ(marks.FindLast(asked), last == plain.rend() ? std::nullopt : std::optional(*last)) << step;
    ASSERT_EQ(marks.IsEmpty(), plain.empty());
  }
}

}  // namespace
}  // namespace qcalc
