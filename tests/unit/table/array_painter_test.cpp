// Painting held against what an axis map says, position by position.
#include "table/array_painter.h"

#include <gtest/gtest.h>

#include <deque>
#include <random>

namespace quillmere::testing {
namespace {

constexpr std::int32_t kRows = 4;
constexpr std::int32_t kColumns = 5;

class ArrayPainting : public ::testing::Test {
 protected:
  ArrayPainting() {
    for (int at = 0; at < kRows * kColumns; ++at) {
      texts_.push_back(
          CXlOper::Text(XString(static_cast<std::size_t>(at % 3 + 1), static_cast<XCHAR>(XTEXT('a') + at))));
      cells_.push_back(at % 2 == 0 ? NumberCell(at) : texts_.back().Raw());
    }
  }

  std::int32_t Draw(std::int32_t below) { return static_cast<std::int32_t>(random_() % below); }

  AxisMap DrawMap(std::int32_t length, std::int32_t places) {
    const std::int32_t kind = Draw(4);
    if (kind == 0) return AxisMap::Repeated(Draw(length + 1)).PaddedTo(length);
    if (kind == 1) return AxisMap::Run(0, std::min(length, places)).PaddedTo(length);
    if (kind == 2) return {length, std::min(length, places), places - 1, -1, {}};
    std::vector<std::int32_t>& drawn = drawn_.emplace_back(static_cast<std::size_t>(length));
    // Neighbours that follow each other, go backwards, repeat or jump.
    for (std::int32_t at = 0; at < length; ++at)
      drawn[at] =
          at == 0 || Draw(3) == 0 ? Draw(places + 1) - 1 : std::clamp(drawn[at - 1] + Draw(3) - 1, -1, places - 1);
    return AxisMap::By(drawn);
  }

  ArrayPiece DrawPiece(std::int32_t rows, std::int32_t columns) {
    return {{cells_.data(), kRows, kColumns}, DrawMap(rows, kRows), DrawMap(columns, kColumns)};
  }

  /// Whether the piece stands in the painted array, its top left cell at that place.
  void Check(const ArrayPiece& piece, const CXlOper& painted, std::int32_t top, std::int32_t left,
             const XLOPER12& fill) {
    for (std::int32_t row = 0; row < piece.rows.length; ++row) {
      for (std::int32_t column = 0; column < piece.columns.length; ++column) {
        const std::int32_t fromRow = piece.rows.At(row), fromColumn = piece.columns.At(column);
        const XLOPER12& expected = fromRow < 0 || fromColumn < 0 ? fill : piece.cells.At(fromRow, fromColumn);
        const XLOPER12& cell = painted.CellAt(top + row, left + column);
        ASSERT_EQ(TypeOf(cell), TypeOf(expected)) << row << ' ' << column;
        if (IsTextCell(cell))
          ASSERT_EQ(TextOf(cell), TextOf(expected));
        else
          ASSERT_EQ(CellNumber(cell), CellNumber(expected));
      }
    }
  }

 private:
  std::deque<CXlOper> texts_;
  std::vector<XLOPER12> cells_;
  std::deque<std::vector<std::int32_t>> drawn_;
  std::mt19937 random_{3};
};

TEST_F(ArrayPainting, FollowsTheMapsOfItsPieces) {
  const CXlOper fill = CXlOper::Text(XTEXT("fill"));
  for (int round = 0; round < 500; ++round) {
    const bool across = round % 2 == 0;
    const std::int32_t common = 1 + Draw(round % 10 == 0 ? 150 : 9);
    std::vector<ArrayPiece> pieces;
    for (std::int32_t count = 1 + Draw(3); count > 0; --count) {
      const std::int32_t other = 2 + Draw(9);
      pieces.push_back(across ? DrawPiece(common, other) : DrawPiece(other, common));
    }
    const CXlOper painted = PaintStack(pieces, across, fill.Raw());
    std::int32_t begin = 0;
    for (const ArrayPiece& piece : pieces) {
      Check(piece, painted, across ? 0 : begin, across ? begin : 0, fill.Raw());
      if (HasFatalFailure()) FAIL() << "round " << round;
      begin += across ? piece.columns.length : piece.rows.length;
    }
  }
}

}  // namespace
}  // namespace quillmere::testing
