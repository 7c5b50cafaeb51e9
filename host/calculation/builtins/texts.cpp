// CHAR, LEN, REPT, T, TEXT, UNICHAR, VALUE.
#include <string>

#include "host/calculation/broadcast.h"
#include "host/calculation/builtins/builtin.h"
#include "host/formats/number_format.h"
#include "host/text/ansi_text.h"
#include "host/text/utf8.h"
#include "host/values/conversion.h"

namespace qcalc {

namespace {

Value CallChar(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    std::int32_t code = 0;
    if (Value fault = ToWholeNumber(cells[0], call.context.marks, code); fault.IsError()) return fault;
    if (code < 1 || code > 255) return Value::Error(xlerrValue);
    return Value::Text(FromAnsi(std::string(1, static_cast<char>(code))));
  });
}

Value CallLen(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    const Value text = ToText(cells[0], call.context.marks);
    return text.IsError() ? text : Value::Number(static_cast<double>(text.AsText().size()));
  });
}

Value CallRept(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    const Value text = ToText(cells[0], call.context.marks);
    if (text.IsError()) return text;
    std::int32_t times = 0;
    if (Value fault = ToWholeNumber(cells[1], call.context.marks, times); fault.IsError()) return fault;
    const auto length = static_cast<std::int64_t>(text.AsText().size()) * times;
    if (times < 0 || length > kXlMaxText) return Value::Error(xlerrValue);
    XString result;
    result.reserve(static_cast<std::size_t>(length));
    if (length > 0)
      for (std::int32_t i = 0; i < times; ++i) result += text.AsText();
    return Value::Text(std::move(result));
  });
}

Value TextOrNothing(const CellView& cell) {
  return cell.IsText() || cell.IsError() ? Value::OfCell(cell) : Value::Text({});
}

// Of a reference T sees the first cell alone.
Value CallT(const BuiltinCall& call) {
  const Value operands[] = {FirstCell(call.operands[0], *call.context.workbooks)};
  return Broadcast(operands, [](std::span<const CellView> cells) { return TextOrNothing(cells[0]); });
}

Value CallText(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    if (cells[0].IsError()) return Value::OfCell(cells[0]);
    const Value format = ToText(cells[1], call.context.marks);
    return format.IsError() ? format : FormatCell(cells[0], format.AsText(), call.context.marks);
  });
}

Value CallUnichar(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    std::int32_t point = 0;
    if (Value fault = ToWholeNumber(cells[0], call.context.marks, point); fault.IsError()) return fault;
    if (point < 1 || point > 0x10FFFF) return Value::Error(xlerrValue);
    if (const auto unit = static_cast<char32_t>(point); IsHighSurrogate(unit) || IsLowSurrogate(unit))
      return Value::Error(xlerrNA);
    XCHAR units[2];
    return Value::Text(XString(units, WriteCharacter(static_cast<char32_t>(point), units)));
  });
}

// A boolean is no number here.
Value CallValue(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    return cells[0].IsBoolean() ? Value::Error(xlerrValue) : ToNumber(cells[0], call.context.marks);
  });
}

constexpr Builtin kBuiltins[] = {{XTEXT("CHAR"), 1, 1, CallChar},  {XTEXT("LEN"), 1, 1, CallLen},
                                 {XTEXT("REPT"), 2, 2, CallRept},  {XTEXT("T"), 1, 1, CallT, "r"},
                                 {XTEXT("TEXT"), 2, 2, CallText},  {XTEXT("UNICHAR"), 1, 1, CallUnichar},
                                 {XTEXT("VALUE"), 1, 1, CallValue}};

}  // namespace

std::span<const Builtin> TextBuiltins() { return kBuiltins; }

}  // namespace qcalc
