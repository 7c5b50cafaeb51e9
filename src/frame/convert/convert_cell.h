// Converting one cell. Elements of arrays are converted without a call; for a scalar Excel is asked to read texts.
#pragma once

#include <cmath>
#include <concepts>
#include <cstdint>

#include "frame/convert/element_kind.h"
#include "frame/values/cell.h"

namespace quillmere {

/// Who reads a text as a number or a boolean.
enum class TextReading {
  kPlain,     ///< plain decimal and scientific notation, TRUE and FALSE; no call
  kAskExcel,  ///< xlCoerce: everything that Excel reads, dates and the like included
};

// Each returns false, with `result` untouched, when the cell's kind or content does not allow the target. An empty cell
// is zero of every kind but an error; a left-out one converts to nothing. A malformed cell is "Bad XLOPER type".

/// Booleans, numbers (non-zero is true), and texts that name a boolean.
bool ConvertCell(const XLOPER12& cell, TextReading reading, bool& result);
/// Finite numbers, booleans (1 or 0), and texts that read as a number.
bool ConvertCell(const XLOPER12& cell, TextReading reading, double& result);
/// Anything that has a text form, except an error.
bool ConvertCell(const XLOPER12& cell, TextReading reading, XString& result);
/// Error values, and texts that name one.
bool ConvertErrorCell(const XLOPER12& cell, std::int32_t& code);

/// A number cut towards zero; false when that is beyond the integer's range.
template <std::integral Integer>
bool TruncateToInteger(double number, Integer& result) noexcept;

extern template bool TruncateToInteger(double, std::int32_t&) noexcept;
extern template bool TruncateToInteger(double, std::int16_t&) noexcept;
extern template bool TruncateToInteger(double, std::uint16_t&) noexcept;

/// Converts one cell to any kind.
template <ElementKind kind>
bool ConvertCellTo(const XLOPER12& cell, TextReading reading, ElementOf<kind>& result) {
  if constexpr (kind == ElementKind::kError) {
    return ConvertErrorCell(cell, result);
  } else if constexpr (kind == ElementKind::kNumber) {
    // Most cells of a large matrix are numbers and need no call.
    if (!IsNumberCell(cell) || !std::isfinite(cell.val.num)) return ConvertCell(cell, reading, result);
    result = cell.val.num;
    return true;
  } else if constexpr (kind == ElementKind::kBoolean || kind == ElementKind::kString) {
    return ConvertCell(cell, reading, result);
  } else {
    double number = 0;
    return ConvertCell(cell, reading, number) && TruncateToInteger(number, result);
  }
}

}  // namespace quillmere
