// The bisection of many keys side by side, held against one key at a time.
#include "lookup/array_bisection.h"

#include <gtest/gtest.h>

#include <random>
#include <vector>

#include "tests/unit/fixtures/raw_values.h"

namespace quillmere::lookup {
namespace {

constexpr std::int32_t kRows = 150'000;
constexpr std::int32_t kKeys = 40'000;  // enough for the top of all bisections to be read beforehand

/// A cell of a column that is mostly numbers; texts are shared.
XLOPER12 DrawCell(std::mt19937& random, double number) {
  static XCHAR text[] = {1, XTEXT('m')};
  static const XLOPER12 kOthers[] = {EmptyCell(), BooleanCell(true), ErrorCell(xlerrNA), testing::RawText(text)};
  const std::size_t kind = random() % 50;
  return kind < std::size(kOthers) ? kOthers[kind] : NumberCell(number);
}

/// One bisection after the other, each step as the rule has it.
std::int32_t PlainRow(const std::vector<XLOPER12>& column, double key, SortOrder order, bool wantsFirst, bool& equal) {
  std::int32_t low = -1, high = static_cast<std::int32_t>(column.size());
  equal = false;
  while (high - low > 1) {
    const std::int32_t middle = (low + high) / 2;
    const XLOPER12& cell = column[static_cast<std::size_t>(middle)];
    int place = 1;
    if (IsNumberCell(cell)) place = cell.val.num < key ? -1 : cell.val.num > key;
    if (place == 0) equal = true;
    if (order == SortOrder::kDescending) place = -place;
    const bool goesOn = !IsEmptyCell(cell) && (wantsFirst ? place < 0 : place <= 0);
    (goesOn ? low : high) = middle;
  }
  return wantsFirst && equal ? high : low;
}

TEST(ArrayBisection, ManyNumbersGoTheWayOfOne) {
  const unsigned seed = std::random_device{}();
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  for (const SortOrder order : {SortOrder::kAscending, SortOrder::kDescending}) {
    for (const bool isSorted : {true, false}) {
      std::vector<XLOPER12> column, keys;
      for (std::int32_t row = 0; row < kRows; ++row) {
        const std::int32_t place = isSorted ? row : static_cast<std::int32_t>(random() % kRows);
        column.push_back(DrawCell(random, (order == SortOrder::kAscending ? place : kRows - place) / 3));
      }
      for (std::int32_t key = 0; key < kKeys; ++key)
        keys.push_back(NumberCell(static_cast<double>(random() % (kRows + 100)) / 3 - 10));
      const std::int32_t columns[] = {0};
      const RowTuples rows({column.data(), kRows, 1}, columns);
      const LookupKeys lookupKeys({keys.data(), kKeys, 1}, false);
      for (const std::int32_t position : {wanted_match::kFirst, wanted_match::kLast}) {
        MatchRules rules{.order = order, .exact = false};
        FoundRows found;
        BisectArray(rows, lookupKeys, rules, position, found);
        ASSERT_EQ(found.size(), keys.size());
        for (std::size_t i = 0; i < keys.size(); ++i) {
          bool equal = false;
          const std::int32_t row = PlainRow(column, keys[i].val.num, order, position == wanted_match::kFirst, equal);
          ASSERT_EQ(found[i], row) << "key " << keys[i].val.num << ", position " << position;
        }
      }
    }
  }
}

}  // namespace
}  // namespace quillmere::lookup
