// Tables read by blocks of rows.
#include "table/row_blocks.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include "tests/unit/fixtures/fake_excel.h"
#include "tests/unit/fixtures/raw_values.h"

namespace quillmere::testing {
namespace {

using ::testing::ElementsAre;

constexpr XLREF12 kArea{10, 10 + 2 * RowBlocks::kBlockCells, 3, 7};  // one row more than two blocks of one column

double NumberAt(std::int32_t row, std::int32_t column) { return row * 100.0 + column; }

/// A sheet whose cells hold their own places.
class RowBlocksOfAReference : public ::testing::Test {
 protected:
  RowBlocksOfAReference() {
    excel.On(xlCoerce, [this](std::span<XLOPER12* const> arguments, XLOPER12& result) -> int {
      const CXlOper part = CXlOper::Borrow(arguments[0]);
      asked.push_back(part.Areas().front());
      const XLREF12& area = asked.back();
      std::vector<XLOPER12> cells;
      for (RW row = area.rwFirst; row <= area.rwLast; ++row)
        for (COL column = area.colFirst; column <= area.colLast; ++column)
          cells.push_back(NumberCell(NumberAt(row - kArea.rwFirst, column - kArea.colFirst)));
      const bool isOneCell = cells.size() == 1;
      result = isOneCell ? cells[0]
                         : excel.LendArray(area.rwLast - area.rwFirst + 1 - lostRows, area.colLast - area.colFirst + 1,
                                           cells);
      return xlretSuccess;
    });
  }

  FakeExcel excel;
  std::vector<XLREF12> asked;
  int lostRows = 0;
  CXlOper reference = CXlOper::Reference(kArea);
  TableView table{reference};
};

TEST_F(RowBlocksOfAReference, GiveEveryRowOnceAndHoldOneBlock) {
  const std::vector<std::int32_t> columns = {4, 1, 2, 4};
  std::int32_t next = 0;
  RowBlocks blocks(table, columns);
  while (blocks.Next()) {
    ASSERT_EQ(blocks.FirstRow(), next);
    EXPECT_EQ(excel.Lent(), 2u) << "columns 1 and 2 together, 4 alone";
    for (std::int32_t row = 0; row < blocks.Rows(); ++row, ++next)
      for (std::size_t i = 0; i < columns.size(); ++i)
        ASSERT_EQ(blocks.At(row, i).val.num, NumberAt(next, columns[i])) << next << ' ' << i;
  }
  EXPECT_EQ(next, table.Rows());
  EXPECT_EQ(excel.Lent(), 0u);
  EXPECT_FALSE(blocks.Next());

  asked.clear();
  for (RowBlocks one(table, std::vector<std::int32_t>{0}); one.Next();)
    EXPECT_EQ(one.Column(0).At(one.Rows() - 1).val.num, NumberAt(one.FirstRow() + one.Rows() - 1, 0));
  EXPECT_EQ(asked.size(), 3u) << "the last of them a single cell";
}

TEST_F(RowBlocksOfAReference, ReadNoFurtherThanAsked) {
  const TableView some = table.SomeRows(5, 2);
  RowBlocks blocks(some);
  EXPECT_EQ(excel.AllCalls(), 0);
  ASSERT_TRUE(blocks.Next());
  EXPECT_EQ(blocks.At(1, 4).val.num, NumberAt(6, 4));
  EXPECT_FALSE(blocks.Next());
  EXPECT_THAT(asked, ElementsAre(::testing::FieldsAre(15, 16, 3, 7)));
  EXPECT_FALSE(RowBlocks(table.SomeRows(3, 0)).Next());
}

TEST_F(RowBlocksOfAReference, FailWithTheCallback) {
  const std::vector<std::int32_t> columns = {0, 2};
  RowBlocks blocks(table, columns);
  ASSERT_TRUE(blocks.Next());
  excel.FailCall(excel.AllCalls() + 2);
  EXPECT_THROW(blocks.Next(), CXlErrorException);
  lostRows = 1;
  EXPECT_THROW(RowBlocks(table).Next(), CXlErrorException) << "an answer of another size";
}

TEST(RowBlocks, OfAnArrayAreOneBlockInPlace) {
  std::vector<XLOPER12> cells;
  for (int at = 0; at < 6; ++at) cells.push_back(NumberCell(at));
  const XLOPER12 value = RawArray(cells.data(), 3, 2);
  const CXlOper array = CXlOper::Borrow(&value);
  const TableView table(array);
  RowBlocks blocks(table, std::vector<std::int32_t>{1, 0});
  ASSERT_TRUE(blocks.Next());
  EXPECT_EQ(blocks.Rows(), 3);
  EXPECT_EQ(&blocks.At(2, 0), &cells[5]);
  EXPECT_EQ(&blocks.At(1, 1), &cells[2]);
  EXPECT_FALSE(blocks.Next());
}

}  // namespace
}  // namespace quillmere::testing
