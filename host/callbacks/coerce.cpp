#include <cmath>
#include <limits>

#include "host/callbacks/handlers.h"
#include "host/values/conversion.h"

namespace qcalc {
namespace {

constexpr std::int64_t kMaxCells = std::int64_t{1} << 26;  ///< of one array: 2 GB

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

/// A text as a number, where the decimal separator may be another than the point.
Value NumberOf(const CellView& cell, XCHAR decimalSeparator) {
  if (!cell.IsText() || decimalSeparator == '.') return ToNumber(cell);
  XString text(cell.AsText());
  if (text.find('.') != XString::npos) return Value::Error(xlerrValue);
  for (XCHAR& unit : text)
    if (unit == decimalSeparator) unit = '.';
  return ToNumber(CellView::Text(text));
}

/// One value as the first type of the mask that it converts to: number, integer, text, boolean.
std::optional<ApiValue> ConvertCell(const CellView& cell, std::uint32_t mask, XCHAR decimalSeparator) {
  if (cell.IsError()) return std::nullopt;
  if (mask & (xltypeNum | xltypeInt)) {
    const Value number = NumberOf(cell, decimalSeparator);
    if (number.IsNumber() && (mask & xltypeNum)) return number;
    const double whole = number.IsNumber() ? std::trunc(number.AsNumber()) : std::nan("");
    if (whole >= std::numeric_limits<std::int32_t>::min() && whole <= std::numeric_limits<std::int32_t>::max())
      return ApiInteger{static_cast<std::int32_t>(whole)};
  }
  if (mask & xltypeStr)
    if (Value text = ToText(cell, decimalSeparator); text.IsText()) return text;
  if (mask & xltypeBool)
    if (Value truth = ToBoolean(cell); truth.IsBoolean()) return truth;
  return std::nullopt;
}

ApiValue AsOneByOne(const CellView& cell) {
  ArrayBuilder builder(1, 1);
  builder.Set(0, 0, cell);
  return Value::OfArray(builder.Finish());
}

/// The cells of a reference, or the code with which they cannot be read.
CallbackAnswer ReadCells(CallbackRequest& request, const Reference& reference) {
  const Sheet* sheet = request.Evaluation().workbooks->FindSheet(reference.sheet);
  if (!sheet || reference.areas.size() != 1) return CallbackAnswer::Failure(xlretFailed);
  const Area& area = reference.areas[0];
  if (static_cast<std::int64_t>(area.Rows()) * area.Columns() > kMaxCells) return CallbackAnswer::Failure(xlretFailed);
  request.CheckCalculated(reference);
  return sheet->Read(area);
}

CallbackAnswer CoerceReference(CallbackRequest& request, const Reference& reference, std::uint32_t mask) {
  const bool isShortForm = request.context.IsCurrentSheet(reference.sheet) && reference.areas.size() == 1;
  if (mask & xltypeRef) return ApiValue(ApiSheetReference{reference});
  if ((mask & xltypeSRef) && isShortForm) return request.ValueAt(0);
  CallbackAnswer cells = ReadCells(request, reference);
  if (cells.code != xlretSuccess || mask == 0) return cells;
  const XCHAR separator = request.isInternational ? XCHAR{'.'} : request.ItsAddin().settings.decimalSeparator;
  if (auto coerced = CoerceValue(cells.value, mask, separator)) return std::move(*coerced);
  return CallbackAnswer::Failure(xlretFailed);
}

}  // namespace

std::optional<ApiValue> CoerceValue(const ApiValue& source, std::uint32_t mask, XCHAR decimalSeparator) {
  const std::uint32_t type = TypeOf(source);
  if (type == xltypeBigData) return std::nullopt;
  if (mask == 0 || (type & mask)) return source;
  if (const auto* integer = std::get_if<ApiInteger>(&source))
    return ConvertCell(CellView::Number(integer->number), mask, decimalSeparator);
  const auto* value = std::get_if<Value>(&source);
  if (!value || value->IsMissing() || value->IsReference()) return std::nullopt;
  const CellView cell = value->IsArray() ? value->AsArray()->At(0, 0) : value->AsCell();
  if (value->IsArray()) {
    const ApiValue single = Value::OfCell(cell);
    if (TypeOf(single) & mask) return single;
  }
  if (auto converted = ConvertCell(cell, mask, decimalSeparator)) return converted;
  return mask & xltypeMulti ? std::optional(AsOneByOne(cell)) : std::nullopt;
}

CallbackAnswer HandleCoerce(CallbackRequest& request) {
  std::uint32_t mask = 0;
  if (!request.IsOmitted(1)) {
    const auto number = request.NumberAt(1);
    if (!number || *number < 0 || *number > 0xFFFF) return request.WrongArgument(2, "a mask of types");
    mask = static_cast<std::uint32_t>(*number);
  }
  if (const Reference* reference = request.ReferenceAt(0)) return CoerceReference(request, *reference, mask);
  const XCHAR separator = request.isInternational ? XCHAR{'.'} : request.ItsAddin().settings.decimalSeparator;
  if (auto coerced = CoerceValue(request.arguments[0], mask, separator)) return std::move(*coerced);
  return CallbackAnswer::Failure(xlretFailed);
}

}  // namespace qcalc
