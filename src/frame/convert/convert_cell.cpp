#include "frame/convert/convert_cell.h"

#include <cmath>
#include <limits>
#include <optional>

#include "frame/callbacks/callbacks.h"
#include "frame/callbacks/excel_settings.h"
#include "frame/convert/cell_text.h"
#include "frame/text/error_text.h"
#include "frame/text/fold_case.h"
#include "frame/text/number_reading.h"
#include "frame/values/cell_copy.h"

namespace quillmere {
namespace {

/// What Excel makes of a text when asked for that type; never set when Excel refuses.
CXlOper CoerceText(const XLOPER12& text, std::uint32_t type) {
  CXlOper result;
  TryCallExcel(result, xlCoerce, text, IntegerCell(static_cast<std::int32_t>(type)));
  return result;
}

std::optional<double> ReadNumber(const XLOPER12& text, TextReading reading) {
  const XStringView units = TextOf(text);
  if (reading == TextReading::kPlain) return ReadPlainNumber(units, DecimalSeparator());
  const CXlOper number = CoerceText(text, xltypeNum);
  return number.IsNumber() ? std::optional(number.AsNumber()) : std::nullopt;
}

std::optional<bool> ReadBoolean(const XLOPER12& text, TextReading reading) {
  const XStringView units = TextOf(text);
  if (reading == TextReading::kPlain) {
    if (EqualFolded(units, XTEXT("TRUE"))) return true;
    if (EqualFolded(units, XTEXT("FALSE"))) return false;
    return std::nullopt;
  }
  const CXlOper value = CoerceText(text, xltypeBool);
  return value.IsBoolean() ? std::optional(value.AsBoolean()) : std::nullopt;
}

/// Stores what was read, if anything.
template <class Value>
bool Store(const std::optional<Value>& read, Value& result) {
  if (read) result = *read;
  return read.has_value();
}

}  // namespace

bool ConvertCell(const XLOPER12& cell, TextReading reading, bool& result) {
  switch (CellType(cell)) {
    case xltypeBool:
      result = cell.val.xbool != 0;
      return true;
    case xltypeNum:
    case xltypeInt: {
      const double number = CellNumber(cell);
      if (std::isnan(number)) return false;
      result = number != 0;
      return true;
    }
    case xltypeNil:
      result = false;
      return true;
    case xltypeStr:
      return Store(ReadBoolean(cell, reading), result);
    default:
      return false;
  }
}

bool ConvertCell(const XLOPER12& cell, TextReading reading, double& result) {
  switch (CellType(cell)) {
    case xltypeNum:
      if (!std::isfinite(cell.val.num)) return false;
      result = cell.val.num;
      return true;
    case xltypeInt:
      result = cell.val.w;
      return true;
    case xltypeBool:
      result = cell.val.xbool != 0 ? 1 : 0;
      return true;
    case xltypeNil:
      result = 0;
      return true;
    case xltypeStr:
      return Store(ReadNumber(cell, reading), result);
    default:
      return false;
  }
}

bool ConvertCell(const XLOPER12& cell, TextReading, XString& result) {
  const std::uint32_t type = CellType(cell);
  if (type == xltypeErr || type == xltypeMissing || (type == xltypeNum && !std::isfinite(cell.val.num))) return false;
  NumberTextBuffer buffer;
  AssignText(result, TextForm(cell, buffer));
  return true;
}

bool ConvertErrorCell(const XLOPER12& cell, std::int32_t& code) {
  switch (CellType(cell)) {
    case xltypeErr:
      code = cell.val.err;
      return true;
    case xltypeStr:
      return Store(ErrorCodeOf(TextOf(cell)), code);
    default:
      return false;
  }
}

template <std::integral Integer>
bool TruncateToInteger(double number, Integer& result) noexcept {
  const double whole = std::trunc(number);
  if (!(whole >= std::numeric_limits<Integer>::min() && whole <= std::numeric_limits<Integer>::max())) return false;
  result = static_cast<Integer>(whole);
  return true;
}

template bool TruncateToInteger(double, std::int32_t&) noexcept;
template bool TruncateToInteger(double, std::int16_t&) noexcept;
template bool TruncateToInteger(double, std::uint16_t&) noexcept;

}  // namespace quillmere
