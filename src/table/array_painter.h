// Painting an array from pieces of others: whole blocks, cuts of them, their rows and columns in any order, repeated,
// left out or filled.
//
//   one below another, side by side    several pieces, each with all its rows and columns
//   resized, padded                    one piece, PaddedTo the size; from a later row or column on, where it is cut
//   spliced                            pieces below one another: the rows before, the new ones, the rows behind
//   sliced, sorted, filtered, found    one piece, its rows (and columns) By their places
//   joined                             two pieces side by side, the rows of each By their places, none for no partner
//   repeated, reversed                 By places, or a step of 0 or -1
//   with a line of totals              the table and the new line, a piece each
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "frame/values/array_builder.h"
#include "frame/values/xl_oper.h"

namespace quillmere {

/// Which row (or column) of a piece's cells stands at each position of its share of the result. Places count from 0.
struct AxisMap {
  std::int32_t length = 0;    ///< positions in the result
  std::int32_t supplied = 0;  ///< how many of them, from the first on, the cells supply; the others are filled
  std::int32_t first = 0;     ///< the place that supplies the first
  std::int32_t step = 1;      ///< from each place to the next: 0 repeats the first, -1 goes backwards
  /// When not empty: the place for each position, in any order, some perhaps twice, -1 for one that is filled. It must
  /// outlive the map.
  std::span<const std::int32_t> places;

  /// `count` places that follow each other, from `first` on.
  static AxisMap Run(std::int32_t first, std::int32_t count) noexcept { return {count, count, first, 1, {}}; }
  /// The first place alone, `count` times.
  static AxisMap Repeated(std::int32_t count) noexcept { return {count, count, 0, 0, {}}; }
  static AxisMap By(std::span<const std::int32_t> places) noexcept {
    return {static_cast<std::int32_t>(places.size()), 0, 0, 0, places};
  }
  /// The same in at least as many positions, those behind it filled.
  AxisMap PaddedTo(std::int32_t positions) const noexcept {
    AxisMap padded = *this;
    padded.length = positions;
    return padded;
  }

  /// The place that supplies a position, or -1.
  std::int32_t At(std::int32_t position) const noexcept {
    if (!places.empty()) return places[position];
    return position < supplied ? first + position * step : -1;
  }
};

/// A rectangle of the result, and the cells that supply it.
struct ArrayPiece {
  CXlCells cells;
  AxisMap rows;
  AxisMap columns;
};

/// Paints pieces into an array under construction. Each of its rows is to be painted once.
class ArrayPainter {
 public:
  /// `fill` goes where no piece supplies a cell; it must outlive the painter.
  ArrayPainter(CXlArrayBuilder& builder, const XLOPER12& fill) : builder_(&builder), fill_(&fill) {}

  /// Paints pieces of equal height side by side, from a row and a column of the array on. What would reach beyond the
  /// array is CXlOutOfRangeException.
  void PaintBand(std::int64_t firstRow, std::span<const ArrayPiece> pieces, std::int32_t firstColumn = 0);

 private:
  struct ColumnRun;

  static void AddRuns(const AxisMap& columns, std::vector<ColumnRun>& runs);
  void PaintTile(const ArrayPiece& piece, std::span<const ColumnRun> runs, std::int32_t row, std::int32_t end,
                 XLOPER12* to);
  void PaintRow(std::span<const ColumnRun> runs, const XLOPER12* from, XLOPER12* to);
  void Fill(XLOPER12* to, std::int32_t count);

  CXlArrayBuilder* builder_;
  const XLOPER12* fill_;
  XLOPER12 storedFill_;
  bool isFillStored_ = false;  ///< its text is stored once, when it is needed
};

/// The pieces below one another, or (`across`) next to each other from left to right. They are equally wide, or equally
/// high. Positions that no piece supplies hold `fill`. A result of one cell is that cell's value.
CXlOper PaintStack(std::span<const ArrayPiece> pieces, bool across, const XLOPER12& fill);

}  // namespace quillmere
