#include "frame/values/array_builder.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <memory>
#include <tuple>
#include <utility>
#include <vector>

#include "tests/unit/fixtures/raw_values.h"

namespace quillmere {
namespace {

/// A text whose last unit is the last of its block, so that reading past it is seen.
struct CountedText {
  explicit CountedText(std::size_t length) : units(new XCHAR[length + 1]), cell(testing::RawText(units.get())) {
    units[0] = static_cast<XCHAR>(length);
    for (std::size_t at = 1; at <= length; ++at) units[at] = static_cast<XCHAR>(at * 257);
  }

  std::unique_ptr<XCHAR[]> units;
  XLOPER12 cell;
};

TEST(ArrayBuilder, RefusesImpossibleSizes) {
  EXPECT_THROW(CheckArraySize(0, 1), CXlEmptyArrayException);
  EXPECT_THROW(CheckArraySize(1, -5), CXlEmptyArrayException);
  EXPECT_THROW(CXlArrayBuilder(1'048'577, 1), CXlArrayTooLargeException);
  EXPECT_THROW(CXlArrayBuilder(std::int64_t{1} << 40, std::int64_t{1} << 40), CXlArrayTooLargeException);
  EXPECT_THROW(CheckArraySize(1'048'576, 2'049), CXlArrayTooLargeException) << "64 GB and more";
  EXPECT_NO_THROW(CheckArraySize(1'048'576, 2'048));
}

TEST(ArrayBuilder, CopiesTextsOfEveryLengthWithinTheirBounds) {
  std::vector<CountedText> texts;
  std::vector<XLOPER12> cells;
  for (std::size_t length = 0; length <= 80; ++length) texts.emplace_back(length);
  for (const std::size_t length : {239u, 240u, 241u, 5'000u, 32'767u}) texts.emplace_back(length);
  for (const CountedText& text : texts) cells.push_back(text.cell);

  CXlArrayBuilder builder(static_cast<std::int64_t>(cells.size()), 1);
  builder.CopyCells(builder.Row(0), cells.data(), cells.size());
  const CXlOper array = builder.Finish();
  for (std::size_t at = 0; at < cells.size(); ++at) {
    const XLOPER12& copy = array.Cells().At(static_cast<int>(at), 0);
    EXPECT_NE(copy.val.str, cells[at].val.str);
    EXPECT_EQ(CellText(copy), CellText(cells[at]));
  }
}

TEST(ArrayBuilder, CopiesEveryKindAsExcelTakesIt) {
  XLOPER12 marked = BooleanCell(true);
  marked.xltype |= xlbitDLLFree;
  const XLOPER12 cells[] = {NumberCell(1), testing::RawNumber(std::nan("")), marked, ErrorCell(45), MissingCell()};
  CXlArrayBuilder builder(5, 1);
  builder.CopyCells(builder.Row(4), cells, 5, -1);
  const CXlOper array = builder.Finish();
  EXPECT_EQ(CellNumber(array.CellAt(4, 0)), 1);
  EXPECT_EQ(CellErrorCode(array.CellAt(3, 0)), xlerrNum);
  EXPECT_EQ(array.CellAt(2, 0).xltype, xltypeBool);
  EXPECT_EQ(CellErrorCode(array.CellAt(1, 0)), 45);
  EXPECT_TRUE(IsEmptyCell(array.CellAt(0, 0)));
}

TEST(ArrayBuilder, RefusesWhatIsNoSingleCell) {
  CXlArrayBuilder builder(1, 2);
  const CXlOper reference = CXlOper::Reference(XLREF12{0, 0, 0, 0});
  try {
    builder.Put(0, 0, reference);
    ADD_FAILURE();
  } catch (const CXlIllegalArgumentException& refusal) {
    EXPECT_EQ(refusal.Message(), XTEXT("Right-hand side of cell assignment must be a scalar value"));
  }
  EXPECT_THROW(builder.Fill(builder.Row(0), 2, 1, reference.Raw()), CXlIllegalArgumentException);
  EXPECT_THROW(builder.Put(0, 0, CXlOper()), CXlUninitializedOperException);
  EXPECT_THROW(builder.PutText(0, 0, XString(32'768, XTEXT('x'))), CXlStringTooLongException);
  CountedText tooLong(0);
  tooLong.units[0] = 32'768;
  for (const XLOPER12& bad :
       {reference.Raw(), testing::RawText(nullptr), testing::RawValue(xltypeNum | 0x200), tooLong.cell})
    EXPECT_THROW(builder.CopyCells(builder.Row(0), &bad, 1), CXlBadOperTypeException);
}

TEST(ArrayBuilder, RefusesPlacesOutsideTheArray) {
  const CountedText text(3);
  CXlArrayBuilder builder(3, 4);
  builder.Fill(builder.Row(0), 12, 1, NumberCell(7));
  const std::pair<std::int64_t, std::int64_t> places[] = {{-1, 0}, {0, -1}, {3, 0}, {1, 4}, {std::int64_t{1} << 62, 0}};
  for (const auto& [row, column] : places)
    EXPECT_THROW(builder.PutText(row, column, XTEXT("x")), CXlOutOfRangeException);
  // Runs of cells: where they begin, how many, how far apart.
  constexpr std::ptrdiff_t kFarthest = std::numeric_limits<std::ptrdiff_t>::max();
  constexpr std::size_t kMost = std::numeric_limits<std::size_t>::max();
  XLOPER12* const first = builder.Row(0);
  XLOPER12* const between = reinterpret_cast<XLOPER12*>(reinterpret_cast<char*>(first) + 8);
  XLOPER12 elsewhere{};
  const std::tuple<XLOPER12*, std::size_t, std::ptrdiff_t> runs[] = {
      {first, 13, 1},        {first + 12, 1, 1}, {first + 5, 8, 1},
      {first + 5, 2, 7},     {first + 5, 2, -6}, {first + 11, 4, -4},
      {first, 2, kFarthest}, {first, kMost, 1},  {first + 1, 2, -kFarthest - 1},
      {nullptr, 1, 1},       {between, 1, 1},    {first + 1, kMost / 4 + 2, 4},
      {&elsewhere, 1, 1},
  };
  const std::vector<XLOPER12> source(13, text.cell);
  for (const auto& [to, count, stride] : runs) {
    EXPECT_THROW(builder.Fill(to, count, stride, text.cell), CXlOutOfRangeException) << count << " by " << stride;
    EXPECT_THROW(builder.CopyCells(to, source.data(), count, stride), CXlOutOfRangeException);
    EXPECT_THROW(builder.Repeat(to, count, stride, NumberCell(8)), CXlOutOfRangeException);
  }
  builder.Fill(first + 12, 0, 1, text.cell);
  builder.CopyCells(nullptr, nullptr, 0);
  builder.Repeat(first + 11, 3, -4, NumberCell(9));

  const CXlOper array = builder.Finish();
  for (int row = 0; row < 3; ++row)
    for (int column = 0; column < 4; ++column) EXPECT_EQ(CellNumber(array.CellAt(row, column)), column == 3 ? 9 : 7);
  EXPECT_THROW(builder.Row(0), CXlOutOfRangeException) << "nothing is left to write to";
  EXPECT_THROW(builder.Fill(first, 1, 1, text.cell), CXlOutOfRangeException);
  EXPECT_THROW(builder.Store(text.cell), CXlOutOfRangeException);
}

}  // namespace
}  // namespace quillmere
