// What of the numbering of distinct tuples no result shows: that it holds however tuples are kept, and when that
// changes.
#include "table/distinct_tuples.h"

#include <gtest/gtest.h>

#include <limits>
#include <map>
#include <numeric>
#include <random>

namespace quillmere::testing {
namespace {

using Tuples = DistinctTuples<TextCase::kIgnored, RowTuples>;

/// Distinct values: numbers, and texts of up to 50 units, in either case.
CXlOper MakeValue(std::int32_t value, bool capital) {
  if (value % 2 == 0) return CXlOper::Number(value);
  return CXlOper::Text(XString(static_cast<std::size_t>(value % 50), capital ? XTEXT('X') : XTEXT('x')) +
                       static_cast<XCHAR>(0x100 + value));
}

/// Numbers random rows whose columns have so many values, and holds the numbers against those of a map.
void ExpectPlainNumbers(const std::vector<std::int32_t>& values) {
  constexpr std::int32_t kRows = 60'000;
  std::mt19937 random(1);
  std::vector<CXlOper> owners;
  for (std::int32_t value = 0; value < std::ranges::max(values); ++value)
    for (const bool capital : {false, true}) owners.push_back(MakeValue(value, capital));
  std::vector<std::vector<std::int32_t>> keys(kRows);
  std::vector<XLOPER12> cells;
  for (std::vector<std::int32_t>& key : keys) {
    for (const std::int32_t count : values) {
      key.push_back(static_cast<std::int32_t>(random() % static_cast<std::uint32_t>(count)));
      cells.push_back(owners[static_cast<std::size_t>(key.back()) * 2 + random() % 2].Raw());
    }
  }
  std::vector<std::int32_t> columns(values.size());
  std::iota(columns.begin(), columns.end(), 0);
  const RowTuples rows({cells.data(), kRows, static_cast<std::int32_t>(values.size())}, columns);
  std::map<std::vector<std::int32_t>, std::int32_t> plain;
  std::vector<std::int32_t> firstPlaces;
  Tuples distinct(rows);
  distinct.AddAll([](std::int32_t place) { return place % 5 != 1; },
                  [&](std::int32_t place, std::int32_t number) {
                    const auto size = static_cast<std::int32_t>(plain.size());
                    const auto [entry, isNew] = plain.try_emplace(keys[static_cast<std::size_t>(place)], size);
                    if (isNew) firstPlaces.push_back(place);
                    ASSERT_EQ(number, entry->second) << place;
                  });
  EXPECT_EQ(std::vector(distinct.FirstPlaces().begin(), distinct.FirstPlaces().end()), firstPlaces);
}

TEST(DistinctTuples, NumbersAreThoseOfAMap) {
  ExpectPlainNumbers({1000});
  ExpectPlainNumbers({30'000});
  ExpectPlainNumbers({40, 30, 2});
  ExpectPlainNumbers({700, 700, 3});
  ExpectPlainNumbers({3, 30'000});
  ExpectPlainNumbers({4, 3, 2, 5, 4, 3, 2, 9});
  ExpectPlainNumbers({4, 3, 2, 5, 4, 3, 2, 9, 2});
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
