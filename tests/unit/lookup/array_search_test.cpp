// What no script can write down: arrays with numbers that are none. Many keys are looked for by an index, each alone by
// a scan.
#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <vector>

#include "exports.h"
#include "frame/values/value_memory.h"
#include "frame/values/xl_oper.h"
#include "tests/unit/fixtures/raw_values.h"

namespace quillmere::testing {
namespace {

/// The row numbers found, 0 for none.
std::vector<double> Rows(XLOPER12 keys, std::int32_t firstKey, std::int32_t count, XLOPER12 table,
                         std::int32_t position) {
  keys.val.array.lparray += firstKey * keys.val.array.columns;
  keys.val.array.rows = count;
  XLOPER12* const answer = AMATCHNTH_12(&keys, &table, nullptr, nullptr, nullptr, position);
  std::vector<double> rows;
  const CXlOper value = CXlOper::Borrow(answer);
  for (std::int64_t i = 0; i < value.Cells().Count(); ++i) {
    const XLOPER12& cell = value.Cells().first[i];
    rows.push_back(IsNumberCell(cell) ? cell.val.num : 0);
  }
  ReleaseOwned(*answer);
  return rows;
}

XLOPER12 ArrayOf(std::vector<XLOPER12>& cells, int columns) {
  return RawArray(cells.data(), static_cast<int>(cells.size()) / columns, columns);
}

TEST(ArraySearch, ManyKeysFindWhatEachFindsAloneBesideNumbersThatAreNone) {
  constexpr int kSeed = 5;
  std::mt19937 random(kSeed);
  const auto below = [&random](int limit) { return static_cast<int>(random() % static_cast<unsigned>(limit)); };
  for (int round = 0; round < 2000; ++round) {
    const int columns = 1 + round % 2;
    const auto drawn = [&](int rows) {
      std::vector<XLOPER12> cells;
      for (int cell = 0; cell < rows * columns; ++cell)
        cells.push_back(below(12) == 0  ? RawNumber(std::nan(""))
                        : below(5) == 0 ? BooleanCell(true)
                                        : NumberCell(below(4)));
      return cells;
    };
    std::vector<XLOPER12> rows = drawn(3 + below(40));
    std::vector<XLOPER12> parts = drawn(12);
    const XLOPER12 table = ArrayOf(rows, columns);
    const XLOPER12 keys = ArrayOf(parts, columns);
    for (const std::int32_t position : {-3, -2, 0, 2, 5}) {
      std::vector<double> expected;
      for (int key = 0; key < 12; ++key)
        for (const double row : Rows(keys, key, 1, table, position)) expected.push_back(row);
      ASSERT_EQ(Rows(keys, 0, 12, table, position), expected)
          << "seed " << kSeed << ", round " << round << ", position " << position;
    }
  }
}

}  // namespace
}  // namespace quillmere::testing
