// Putting blocks into one array, whatever way they are stacked.
#pragma once

#include <cstdint>
#include <span>
#include <vector>

#include "frame/values/array_builder.h"
#include "frame/values/xl_oper.h"

namespace quillmere {

/// Where the positions of a block's share of the result, along rows or columns, are supplied from.
struct AxisMap {
  std::int32_t length = 0;           ///< positions in the result
  std::int32_t first = 0;            ///< the block's position that supplies the first of them
  std::int32_t supplied = 0;         ///< positions supplied, from the first on; the others are filled
  std::vector<std::int32_t> places;  ///< when not empty: the block's position for each of the result's, or -1

  /// The block's position that supplies a position, or -1.
  std::int32_t At(std::int32_t position) const noexcept {
    if (!places.empty()) return places[position];
    return position < supplied ? first + position : -1;
  }
};

/// One block's share of the result: a rectangle, and the cells that supply it. A single value stands in every position
/// that both axes supply.
struct StackPiece {
  CXlCells cells;
  bool isSingleValue = false;
  AxisMap rows;
  AxisMap columns;
};

/// The pieces below one another, or (`across`) next to each other from left to right. They are equally wide, or equally
/// high. Positions that no piece supplies hold `fill`. A result of one cell is that cell's value.
CXlOper PaintStack(std::span<const StackPiece> pieces, bool across, const XLOPER12& fill);

}  // namespace quillmere
