// Parts of texts, and texts changed: LEFT, MID, RIGHT, FIND, SEARCH, REPLACE, SUBSTITUTE, CLEAN, LOWER, PROPER, TRIM,
// UPPER.
#include "host/calculation/builtins/builtin.h"
#include "host/calculation/lookup_pattern.h"
#include "host/text/letter_case.h"

namespace qcalc {

namespace {

// Calls `calculate(const XString& text, span<const CellView> rest) -> Value` element by element.
template <typename Calculate>
Value OnText(const BuiltinCall& call, std::vector<Value> operands, Calculate&& calculate) {
  return Broadcast(operands, [&](std::span<const CellView> cells) {
    const Value text = ToText(cells[0], call.context.marks);
    return text.IsError() ? text : calculate(text.AsText(), cells.subspan(1));
  });
}

template <XString (*change)(const XString&)>
Value CallChange(const BuiltinCall& call) {
  return OnText(call, ScalarOperands(call),
                [](const XString& text, std::span<const CellView>) { return Value::Text(change(text)); });
}

// Reads a place or a count of units, from `least` on, into `size`; an error, or empty.
Value ReadSize(const CellView& cell, NumberMarks marks, std::int32_t least, std::size_t& size) {
  std::int32_t whole = 0;
  if (Value fault = ToWholeNumber(cell, marks, whole); fault.IsError()) return fault;
  if (whole < least) return Value::Error(xlerrValue);
  size = static_cast<std::size_t>(whole);
  return {};
}

template <bool isRight>
Value CallEnd(const BuiltinCall& call) {
  return OnText(call, ScalarOperands(call, 1, {1}), [&](const XString& text, std::span<const CellView> rest) {
    std::size_t count = 0;
    if (Value fault = ReadSize(rest[0], call.context.marks, 0, count); fault.IsError()) return fault;
    count = std::min(count, text.size());
    return Value::Text(text.substr(isRight ? text.size() - count : 0, count));
  });
}

Value CallMid(const BuiltinCall& call) {
  return OnText(call, ScalarOperands(call), [&](const XString& text, std::span<const CellView> rest) {
    std::size_t start = 0, count = 0;
    if (Value fault = ReadSize(rest[0], call.context.marks, 1, start); fault.IsError()) return fault;
    if (Value fault = ReadSize(rest[1], call.context.marks, 0, count); fault.IsError()) return fault;
    return Value::Text(start > text.size() ? XString() : text.substr(start - 1, count));
  });
}

// What is sought stands first, where it is sought behind it. An empty text is found where the search starts.
template <typename Find>
Value Search(const BuiltinCall& call, Find&& find) {
  return OnText(call, ScalarOperands(call, 2, {1}), [&](const XString& sought, std::span<const CellView> rest) {
    const Value text = ToText(rest[0], call.context.marks);
    if (text.IsError()) return text;
    std::size_t start = 0;
    if (Value fault = ReadSize(rest[1], call.context.marks, 1, start); fault.IsError()) return fault;
    if (start > text.AsText().size() + 1) return Value::Error(xlerrValue);
    const std::size_t found = find(sought, text.AsText(), start - 1);
    return found == XString::npos ? Value::Error(xlerrValue) : Value::Number(static_cast<double>(found + 1));
  });
}

Value CallFind(const BuiltinCall& call) {
  return Search(call,
                [](const XString& sought, const XString& text, std::size_t start) { return text.find(sought, start); });
}

// Without case, and with wildcards.
Value CallSearch(const BuiltinCall& call) {
  return Search(call, [](const XString& sought, const XString& text, std::size_t start) {
    return LookupPattern(sought).FindIn(text, start);
  });
}

Value CallReplace(const BuiltinCall& call) {
  return OnText(call, ScalarOperands(call), [&](const XString& text, std::span<const CellView> rest) {
    std::size_t start = 0, count = 0;
    if (Value fault = ReadSize(rest[0], call.context.marks, 1, start); fault.IsError()) return fault;
    if (Value fault = ReadSize(rest[1], call.context.marks, 0, count); fault.IsError()) return fault;
    const Value put = ToText(rest[2], call.context.marks);
    if (put.IsError()) return put;
    start = std::min(start - 1, text.size());
    return TextResult(XString(text).replace(start, count, put.AsText()));
  });
}

// All of them, or the one of that number alone.
Value Substituted(const XString& text, const XString& old, const XString& put, std::size_t only) {
  XString result;
  std::size_t from = 0, number = 0;
  for (std::size_t at = old.empty() ? XString::npos : text.find(old); at != XString::npos; at = text.find(old, at)) {
    result.append(text, from, at - from).append(++number == only || only == 0 ? put : old);
    from = at += old.size();
    if (number == only || result.size() > static_cast<std::size_t>(kXlMaxText)) break;
  }
  return TextResult(result.append(text, from));
}

Value CallSubstitute(const BuiltinCall& call) {
  const bool isOneMeant = call.operands.size() > 3;
  return OnText(call, ScalarOperands(call), [&](const XString& text, std::span<const CellView> rest) {
    const Value old = ToText(rest[0], call.context.marks), put = ToText(rest[1], call.context.marks);
    if (old.IsError()) return old;
    if (put.IsError()) return put;
    std::size_t only = 0;
    if (isOneMeant)
      if (Value fault = ReadSize(rest[2], call.context.marks, 1, only); fault.IsError()) return fault;
    return Substituted(text, old.AsText(), put.AsText(), only);
  });
}

// Blanks at the ends go, and of several between words all but one; of blanks there is the plain one alone.
XString Trimmed(const XString& text) {
  XString result;
  for (const XCHAR unit : text)
    if (unit != ' ' || (!result.empty() && result.back() != ' ')) result += unit;
  if (!result.empty() && result.back() == ' ') result.pop_back();
  return result;
}

XString Cleaned(const XString& text) {
  XString result(text);
  std::erase_if(result, [](XCHAR unit) { return unit < ' '; });
  return result;
}

XString SmallLetters(const XString& text) { return FoldCase(text); }

XString Capitals(const XString& text) {
  XString result(text);
  std::transform(result.begin(), result.end(), result.begin(), CapitalUnit);
  return result;
}

// A letter behind another one is small, any other a capital.
XString Proper(const XString& text) {
  XString result(text);
  bool isInside = false;
  for (XCHAR& unit : result) {
    const XCHAR small = FoldUnit(unit), capital = CapitalUnit(unit);
    unit = isInside ? small : capital;
    isInside = small != capital;
  }
  return result;
}

constexpr Builtin kTextPartBuiltins[] = {{XTEXT("CLEAN"), 1, 1, CallChange<Cleaned>},
                                         {XTEXT("FIND"), 2, 3, CallFind},
                                         {XTEXT("LEFT"), 1, 2, CallEnd<false>},
                                         {XTEXT("LOWER"), 1, 1, CallChange<SmallLetters>},
                                         {XTEXT("MID"), 3, 3, CallMid},
                                         {XTEXT("PROPER"), 1, 1, CallChange<Proper>},
                                         {XTEXT("REPLACE"), 4, 4, CallReplace},
                                         {XTEXT("RIGHT"), 1, 2, CallEnd<true>},
                                         {XTEXT("SEARCH"), 2, 3, CallSearch},
                                         {XTEXT("SUBSTITUTE"), 3, 4, CallSubstitute},
                                         {XTEXT("TRIM"), 1, 1, CallChange<Trimmed>},
                                         {XTEXT("UPPER"), 1, 1, CallChange<Capitals>}};

}  // namespace

std::span<const Builtin> TextPartBuiltins() { return kTextPartBuiltins; }

}  // namespace qcalc
