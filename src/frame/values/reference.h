// Sheet limits by Excel version, and arithmetic on reference rectangles.
#pragma once

#include <cstdint>

#include "frame/values/xl_oper.h"

namespace quillmere {

/// The last zero-based row and column of a sheet.
struct SheetLimits {
  std::int32_t lastRow;
  std::int32_t lastColumn;
};

/// The limits of an Excel of that main version number (12 is Excel 2007).
constexpr SheetLimits SheetLimitsOf(int version) {
  if (version >= 12) return {kXlMaxRows - 1, kXlMaxColumns - 1};
  return {version >= 8 ? 65'535 : 16'383, 255};
}

/// Swaps rows and columns where needed, so that first is not greater than last.
void NormaliseArea(XLREF12& area) noexcept;

/// Moves the rectangle. False, and the rectangle as it was, when it would leave the sheet.
bool OffsetArea(XLREF12& area, std::int64_t rows, std::int64_t columns, const SheetLimits& limits) noexcept;

/// Makes the rectangle that many rows and columns large, from its top-left cell; a negative count extends it upwards or
/// to the left. False, and the rectangle as it was, when it would leave the sheet, or when a count is 0.
bool ResizeArea(XLREF12& area, std::int64_t rows, std::int64_t columns, const SheetLimits& limits) noexcept;

/// A reference to an area on the sheet of another reference, in the form in which that names its sheet.
CXlOper ReferenceOnSheetOf(const CXlOper& reference, const XLREF12& area);

}  // namespace quillmere
