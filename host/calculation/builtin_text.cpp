// CHAR, LEN, REPT, T, UNICHAR.
#include <array>

#include "host/calculation/broadcast.h"
#include "host/calculation/builtin.h"
#include "host/values/conversion.h"

namespace qcalc {

namespace {

// Windows code page 1252 from 128 to 159; places without a character keep their number.
constexpr std::array<char16_t, 32> kCodePage1252 = {0x20AC, 0x0081, 0x201A, 0x0192, 0x201E, 0x2026, 0x2020, 0x2021,
                                                    0x02C6, 0x2030, 0x0160, 0x2039, 0x0152, 0x008D, 0x017D, 0x008F,
                                                    0x0090, 0x2018, 0x2019, 0x201C, 0x201D, 0x2022, 0x2013, 0x2014,
                                                    0x02DC, 0x2122, 0x0161, 0x203A, 0x0153, 0x009D, 0x017E, 0x0178};

Value CallChar(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [](std::span<const CellView> cells) {
    std::int32_t code = 0;
    if (Value fault = ToWholeNumber(cells[0], code); fault.IsError()) return fault;
    if (code < 1 || code > 255) return Value::Error(xlerrValue);
    const char16_t unit =
        code >= 128 && code < 160 ? kCodePage1252[static_cast<std::size_t>(code - 128)] : static_cast<char16_t>(code);
    return Value::Text(XString(1, static_cast<XCHAR>(unit)));
  });
}

Value CallLen(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [](std::span<const CellView> cells) {
    const Value text = ToText(cells[0]);
    return text.IsError() ? text : Value::Number(static_cast<double>(text.AsText().size()));
  });
}

Value CallRept(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [](std::span<const CellView> cells) {
    const Value text = ToText(cells[0]);
    if (text.IsError()) return text;
    std::int32_t times = 0;
    if (Value fault = ToWholeNumber(cells[1], times); fault.IsError()) return fault;
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
  const Value& operand = call.operands[0];
  if (operand.IsReference()) {
    const Sheet* sheet = call.context.workbooks->FindSheet(operand.AsReference().sheet);
    if (!sheet) return Value::Error(xlerrRef);
    const Area& area = operand.AsReference().areas[0];
    return TextOrNothing(sheet->Get(area.firstRow, area.firstColumn));
  }
  return Broadcast(call.operands, [](std::span<const CellView> cells) { return TextOrNothing(cells[0]); });
}

Value CallUnichar(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [](std::span<const CellView> cells) {
    std::int32_t point = 0;
    if (Value fault = ToWholeNumber(cells[0], point); fault.IsError()) return fault;
    if (point < 1 || point > 0x10FFFF) return Value::Error(xlerrValue);
    if (point >= 0xD800 && point < 0xE000) return Value::Error(xlerrNA);
    if (point < 0x10000) return Value::Text(XString(1, static_cast<XCHAR>(point)));
    return Value::Text({static_cast<XCHAR>(0xD800 + ((point - 0x10000) >> 10)),
                        static_cast<XCHAR>(0xDC00 + ((point - 0x10000) & 0x3FF))});
  });
}

constexpr Builtin kBuiltins[] = {{"CHAR", 1, 1, CallChar},
                                 {"LEN", 1, 1, CallLen},
                                 {"REPT", 2, 2, CallRept},
                                 {"T", 1, 1, CallT},
                                 {"UNICHAR", 1, 1, CallUnichar}};

}  // namespace

std::span<const Builtin> TextBuiltins() { return kBuiltins; }

}  // namespace qcalc
