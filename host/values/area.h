// Where cells are: rectangles of a sheet, and references.
#pragma once

#include <algorithm>
#include <cstdint>
#include <vector>

#include "xlcall/xlcall.h"

namespace qcalc {

/// A rectangle of cells, zero-based and inclusive at both ends.
struct Area {
  std::int32_t firstRow = 0;
  std::int32_t lastRow = 0;
  std::int32_t firstColumn = 0;
  std::int32_t lastColumn = 0;

  static Area OfCell(std::int32_t row, std::int32_t column) { return {row, row, column, column}; }
  /// The area of that size whose first cell is that one.
  static Area OfSize(std::int32_t row, std::int32_t column, std::int32_t rows, std::int32_t columns) {
    return {row, row + rows - 1, column, column + columns - 1};
  }

  std::int32_t Rows() const { return lastRow - firstRow + 1; }
  std::int32_t Columns() const { return lastColumn - firstColumn + 1; }
  bool IsOneCell() const { return firstRow == lastRow && firstColumn == lastColumn; }
  /// Within the sheet and its ends in order.
  bool IsOnSheet() const {
    return firstRow >= 0 && firstRow <= lastRow && lastRow < kXlMaxRows && firstColumn >= 0 &&
           firstColumn <= lastColumn && lastColumn < kXlMaxColumns;
  }
  bool Contains(std::int32_t row, std::int32_t column) const {
    return row >= firstRow && row <= lastRow && column >= firstColumn && column <= lastColumn;
  }
  bool Intersects(const Area& other) const {
    return firstRow <= other.lastRow && other.firstRow <= lastRow && firstColumn <= other.lastColumn &&
           other.firstColumn <= lastColumn;
  }
  /// The smallest area that holds both.
  Area Around(const Area& other) const {
    return {std::min(firstRow, other.firstRow), std::max(lastRow, other.lastRow),
            std::min(firstColumn, other.firstColumn), std::max(lastColumn, other.lastColumn)};
  }
  bool operator==(const Area&) const = default;
};

/// An area of the sheet with that id.
struct SheetArea {
  IDSHEET sheet = 0;
  Area area;
};

/// Cells of one sheet: one area, or several (a union).
struct Reference {
  IDSHEET sheet = 0;
  std::vector<Area> areas;

  bool IsOneCell() const { return areas.size() == 1 && areas[0].IsOneCell(); }
  bool operator==(const Reference&) const = default;
};

}  // namespace qcalc
