// Arrays as they follow each other, whichever way: `along` is the axis they follow each other on (rows when they stand
// below one another), a lane is a row or column of the result that runs that way.
#pragma once

#include <cstdint>
#include <utility>

#include "implementations/shape.h"
#include "table/array_painter.h"

namespace quillmere::shape {

inline bool IsAcross(StackDirection direction) { return direction == StackDirection::kAcross; }

inline std::int32_t Along(const CXlCells& cells, StackDirection direction) {
  return IsAcross(direction) ? cells.columns : cells.rows;
}

inline std::int32_t Lanes(const CXlCells& cells, StackDirection direction) {
  return IsAcross(direction) ? cells.rows : cells.columns;
}

inline ArrayPiece PieceOf(const CXlCells& cells, const AxisMap& along, const AxisMap& lanes, StackDirection direction) {
  ArrayPiece piece{cells, along, lanes};
  if (IsAcross(direction)) std::swap(piece.rows, piece.columns);
  return piece;
}

}  // namespace quillmere::shape
