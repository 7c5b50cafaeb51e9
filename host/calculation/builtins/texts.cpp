// Texts of values and values of texts: CHAR, CODE, CONCAT, CONCATENATE, EXACT, FIXED, LEN, REPT, T, TEXT, TEXTJOIN,
// UNICHAR, UNICODE, VALUE.
#include <algorithm>
#include <string>
#include <utility>

#include "host/calculation/broadcast.h"
#include "host/calculation/builtins/builtin.h"
#include "host/calculation/builtins/rounding.h"
#include "host/calculation/formula_operators.h"
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

Value CallCode(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    const Value text = ToText(cells[0], call.context.marks);
    if (text.IsError()) return text;
    if (text.AsText().empty()) return Value::Error(xlerrValue);
    return Value::Number(static_cast<unsigned char>(ToAnsi(XStringView(text.AsText()).substr(0, 1))[0]));
  });
}

Value CallUnicode(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    const Value text = ToText(cells[0], call.context.marks);
    if (text.IsError()) return text;
    if (text.AsText().empty()) return Value::Error(xlerrValue);
    std::size_t at = 0;
    const char32_t number = TakeCharacter(text.AsText(), at);
    return IsHighSurrogate(number) || IsLowSurrogate(number) ? Value::Error(xlerrValue)
                                                             : Value::Number(static_cast<double>(number));
  });
}

Value CallConcatenate(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    XString joined;
    for (const CellView& cell : cells) {
      const Value text = ToText(cell, call.context.marks);
      if (text.IsError()) return text;
      joined += text.AsText();
    }
    return TextResult(std::move(joined));
  });
}

// Calls `visitor(const CellView&)` for all elements of the operand, row by row; of a reference those down to the last
// row that is used, unless empty ones matter.
template <typename Visitor>
void VisitElements(const Value& operand, const Workbooks& workbooks, bool withEmpty, Visitor&& visitor) {
  if (!operand.IsReference()) {
    if (!operand.IsArray()) return visitor(operand.AsCell());
    for (const CellView& cell : operand.AsArray()->Cells()) visitor(cell);
    return;
  }
  const Sheet* sheet = workbooks.FindSheet(operand.AsReference().sheet);
  if (!sheet) return visitor(CellView::Error(xlerrRef));
  for (Area area : operand.AsReference().areas) {
    if (const auto used = sheet->UsedArea(); !withEmpty && used) {
      area.lastRow = std::min(area.lastRow, used->lastRow);
      area.lastColumn = std::min(area.lastColumn, used->lastColumn);
    }
    if (area.IsOnSheet()) sheet->VisitRowMajor(area, visitor);
  }
}

// Joins texts as long as they fit in a cell.
class Joiner {
 public:
  // `next` gives the text that stands before all but the first.
  template <typename Next>
  void Add(const CellView& cell, NumberMarks marks, Next&& next) {
    if (fault_.IsError() || joined_.size() > static_cast<std::size_t>(kXlMaxText)) return;
    if (cell.IsError()) {
      fault_ = Value::OfCell(cell);
      return;
    }
    if (std::exchange(isBehindFirst_, true)) joined_ += next();
    joined_ += cell.IsText() ? cell.AsText() : XStringView(ToText(cell, marks).AsText());
  }
  Value Result() { return fault_.IsError() ? fault_ : TextResult(std::move(joined_)); }

 private:
  XString joined_;
  Value fault_;
  bool isBehindFirst_ = false;
};

Value CallConcat(const BuiltinCall& call) {
  Joiner joiner;
  for (const Value& operand : call.operands)
    VisitElements(operand, *call.context.workbooks, false,
                  [&](const CellView& cell) { joiner.Add(cell, call.context.marks, [] { return XStringView(); }); });
  return joiner.Result();
}

// Several separators take turns.
Value CallTextjoin(const BuiltinCall& call) {
  std::vector<XString> separators;
  Value fault;
  VisitElements(call.operands[0], *call.context.workbooks, true, [&](const CellView& cell) {
    const Value text = ToText(cell, call.context.marks);
    if (text.IsError() && !fault.IsError()) fault = text;
    separators.push_back(text.IsError() ? XString() : text.AsText());
  });
  const Value ignored = ScalarOperand(call, 1);
  const Value ignoresEmpty = ignored.IsArray()     ? Value::Error(xlerrValue)
                             : ignored.IsMissing() ? Value::Boolean(true)
                                                   : ToBoolean(ignored.AsCell());
  if (fault.IsError()) return fault;
  if (ignoresEmpty.IsError()) return ignoresEmpty;
  Joiner joiner;
  std::size_t turn = 0;
  for (const Value& operand : call.operands.subspan(2))
    VisitElements(operand, *call.context.workbooks, !ignoresEmpty.AsBoolean(), [&](const CellView& cell) {
      if (ignoresEmpty.AsBoolean() && (cell.IsEmpty() || (cell.IsText() && cell.AsText().empty()))) return;
      joiner.Add(cell, call.context.marks, [&] { return XStringView(separators[turn++ % separators.size()]); });
    });
  return joiner.Result();
}

Value CallExact(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call), [&](std::span<const CellView> cells) {
    const Value left = ToText(cells[0], call.context.marks), right = ToText(cells[1], call.context.marks);
    if (left.IsError()) return left;
    return right.IsError() ? right : Value::Boolean(left.AsText() == right.AsText());
  });
}

// A number with so many decimals, with thousands marks unless the third operand is true.
Value CallFixed(const BuiltinCall& call) {
  return Broadcast(ScalarOperands(call, 1, {2, 0}), [&](std::span<const CellView> cells) {
    constexpr std::int32_t kMostDecimals = 127;
    const Value number = ToNumber(cells[0], call.context.marks);
    if (number.IsError()) return number;
    std::int32_t decimals = 0;
    if (Value fault = ToWholeNumber(cells[1], call.context.marks, decimals); fault.IsError()) return fault;
    const Value isPlain = ToBoolean(cells[2]);
    if (isPlain.IsError()) return isPlain;
    if (decimals > kMostDecimals) return Value::Error(xlerrValue);
    const Value rounded = NumberResult(Rounded(number.AsNumber(), std::max(decimals, -400), Rounding::kHalfAway));
    const NumberMarks marks = call.context.marks;
    XString format = isPlain.AsBoolean() ? XTEXT("0") : XTEXT("#") + XString(1, marks.Thousands()) + XTEXT("##0");
    if (decimals > 0) format += marks.decimal + XString(static_cast<std::size_t>(decimals), XTEXT('0'));
    return FormatCell(rounded.AsCell(), format, marks);
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

constexpr Builtin kTextBuiltins[] = {{XTEXT("CHAR"), 1, 1, CallChar},
                                     {XTEXT("CODE"), 1, 1, CallCode},
                                     {XTEXT("CONCAT"), 1, kXlMaxArguments, CallConcat, "r"},
                                     {XTEXT("CONCATENATE"), 1, kXlMaxArguments, CallConcatenate},
                                     {XTEXT("EXACT"), 2, 2, CallExact},
                                     {XTEXT("FIXED"), 1, 3, CallFixed},
                                     {XTEXT("TEXTJOIN"), 3, kXlMaxArguments, CallTextjoin, "rvr"},
                                     {XTEXT("UNICODE"), 1, 1, CallUnicode},
                                     {XTEXT("LEN"), 1, 1, CallLen},
                                     {XTEXT("REPT"), 2, 2, CallRept},
                                     {XTEXT("T"), 1, 1, CallT, "r"},
                                     {XTEXT("TEXT"), 2, 2, CallText},
                                     {XTEXT("UNICHAR"), 1, 1, CallUnichar},
                                     {XTEXT("VALUE"), 1, 1, CallValue}};

}  // namespace

std::span<const Builtin> TextBuiltins() { return kTextBuiltins; }

}  // namespace qcalc
