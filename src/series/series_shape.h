// How a table holds its series.
#pragma once

#include <algorithm>
#include <cstdint>

namespace quillmere::series {

/// Which way the series of a table run, and how many they are: each column is one, or each row.
struct SeriesShape {
  std::int32_t rows;
  std::int32_t columns;
  bool isDown;  ///< each column is a series

  /// Of a table of that size. A single row is a series, and so is a single column, whatever the caller says; `isDown`
  /// decides of all others, and of a single cell.
  static SeriesShape Of(std::int32_t rows, std::int32_t columns, bool isDown) noexcept {
    const bool isRow = rows == 1 && columns > 1;
    const bool isColumn = columns == 1 && rows > 1;
    return {rows, columns, isColumn || (isDown && !isRow)};
  }

  /// How many series there are, and how many numbers each has.
  std::int32_t Count() const noexcept { return isDown ? columns : rows; }
  std::int32_t Length() const noexcept { return isDown ? rows : columns; }

  /// How many numbers of a series are gone over together, read, worked on and written. They are few enough for the
  /// processor to fetch the next while it works on them, and those of all series side by side stay in its cache.
  std::int32_t TileLength() const noexcept {
    constexpr std::int32_t kTileCells = 256;
    constexpr std::int32_t kLeastTileRows = 64;
    return isDown ? std::max(kTileCells / columns, kLeastTileRows) : kTileCells;
  }
};

}  // namespace quillmere::series
