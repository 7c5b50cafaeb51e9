#include "host/api/coercion.h"

#include <cmath>
#include <limits>

#include "host/values/conversion.h"

namespace qcalc {
namespace {

std::uint32_t TypeOf(const ApiValue& value) {
  if (std::holds_alternative<ApiInteger>(value)) return xltypeInt;
  if (std::holds_alternative<ApiHandle>(value)) return xltypeBigData;
  const auto* plain = std::get_if<Value>(&value);
  if (!plain) return xltypeRef;
  switch (plain->Kind()) {
    case ValueKind::kEmpty:
      return xltypeNil;
    case ValueKind::kMissing:
      return xltypeMissing;
    case ValueKind::kNumber:
      return xltypeNum;
    case ValueKind::kText:
      return xltypeStr;
    case ValueKind::kBoolean:
      return xltypeBool;
    case ValueKind::kError:
      return xltypeErr;
    case ValueKind::kArray:
      return xltypeMulti;
    case ValueKind::kReference:
      return xltypeRef;
  }
  return 0;
}

/// One value as the first type of the mask that it converts to: number, integer, text, boolean.
std::optional<ApiValue> ConvertCell(const CellView& cell, std::uint32_t mask, NumberMarks marks) {
  if (cell.IsError()) return std::nullopt;
  if (mask & (xltypeNum | xltypeInt)) {
    const Value number = ToNumber(cell, marks);
    if (number.IsNumber() && (mask & xltypeNum)) return number;
    const double whole = number.IsNumber() ? std::trunc(number.AsNumber()) : std::nan("");
    if (whole >= std::numeric_limits<std::int32_t>::min() && whole <= std::numeric_limits<std::int32_t>::max())
      return ApiInteger{static_cast<std::int32_t>(whole)};
  }
  if (mask & xltypeStr)
    if (Value text = ToText(cell, marks); text.IsText()) return text;
  if (mask & xltypeBool)
    if (Value truth = ToBoolean(cell); truth.IsBoolean()) return truth;
  return std::nullopt;
}

ApiValue AsOneByOne(const CellView& cell) {
  ArrayBuilder builder(1, 1);
  builder.Set(0, 0, cell);
  return Value::OfArray(builder.Finish());
}

}  // namespace

std::optional<ApiValue> CoerceValue(const ApiValue& source, std::uint32_t mask, NumberMarks marks) {
  const std::uint32_t type = TypeOf(source);
  if (type == xltypeBigData) return std::nullopt;
  if (mask == 0 || (type & mask)) return source;
  if (const auto* integer = std::get_if<ApiInteger>(&source))
    return ConvertCell(CellView::Number(integer->number), mask, marks);
  const auto* value = std::get_if<Value>(&source);
  if (!value || value->IsMissing() || value->IsReference()) return std::nullopt;
  const CellView cell = value->IsArray() ? value->AsArray()->At(0, 0) : value->AsCell();
  if (value->IsArray()) {
    const ApiValue single = Value::OfCell(cell);
    if (TypeOf(single) & mask) return single;
  }
  if (auto converted = ConvertCell(cell, mask, marks)) return converted;
  return mask & xltypeMulti ? std::optional(AsOneByOne(cell)) : std::nullopt;
}

}  // namespace qcalc
