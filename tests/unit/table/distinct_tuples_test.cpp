// What of the numbering of distinct tuples no result shows: that it holds whenever the index has grown.
#include "table/distinct_tuples.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>

namespace quillmere::testing {
namespace {

using Tuples = DistinctTuples<TextCase::kIgnored, RowTuples>;

TEST(DistinctTuples, NumbersStayWhileTheIndexGrows) {
  // Ever more distinct rows, all of which come again and again.
  constexpr std::int32_t kRows = 60'000;
  std::vector<XLOPER12> cells;
  for (std::int32_t row = 0; row < kRows; ++row) {
    cells.push_back(NumberCell(row / 3 * (row % 3) / 2));
    cells.push_back(row % 7 == 0 ? EmptyCell() : NumberCell(row % 2));
  }
  const std::int32_t columns[] = {0, 1};
  const RowTuples rows({cells.data(), kRows, 2}, columns);
  std::map<std::pair<double, int>, std::int32_t> plain;
  std::vector<std::int32_t> firstPlaces;
  Tuples distinct(rows);
  const auto isWanted = [](std::int32_t place) { return place % 5 != 1; };
  distinct.AddAll(isWanted, [&](std::int32_t place, std::int32_t number) {
    const XLOPER12& second = rows.At(place, 1);
    const std::pair key(rows.At(place, 0).val.num, IsEmptyCell(second) ? -1 : static_cast<int>(second.val.num));
    const auto [entry, isNew] = plain.try_emplace(key, static_cast<std::int32_t>(plain.size()));
    if (isNew) firstPlaces.push_back(place);
    ASSERT_EQ(number, entry->second) << place;
  });
  EXPECT_EQ(std::vector(distinct.FirstPlaces().begin(), distinct.FirstPlaces().end()), firstPlaces);
  EXPECT_GT(distinct.Count(), 20'000);
}

TEST(DistinctTuples, ANumberThatIsNoneEqualsNothing) {
  std::vector<XLOPER12> cells(100'000, NumberCell(1));
  for (XLOPER12& cell : cells) cell.val.num = std::numeric_limits<double>::quiet_NaN();
  const std::int32_t columns[] = {0};
  const RowTuples rows({cells.data(), 100'000, 1}, columns);
  Tuples distinct(rows);
  distinct.AddAll([](std::int32_t) { return true; },
                  [](std::int32_t place, std::int32_t number) { EXPECT_EQ(number, place); });
}

}  // namespace
}  // namespace quillmere::testing
