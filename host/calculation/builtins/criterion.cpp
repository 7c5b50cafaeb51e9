#include "host/calculation/builtins/criterion.h"

#include "host/text/digits.h"
#include "host/text/text_cursor.h"
#include "host/text/utf8.h"
#include "host/values/constant_parser.h"
#include "host/values/conversion.h"
#include "host/values/value_order.h"

namespace qcalc {

namespace {

// The error that the text as a whole names.
std::optional<std::int32_t> ErrorNamed(XStringView text) {
  if (text.empty() || text[0] != '#') return std::nullopt;
  try {
    const std::string bytes = ToUtf8(text);
    TextCursor cursor(bytes);
    const std::int32_t code = ReadError(cursor);
    return cursor.AtEnd() ? std::optional(code) : std::nullopt;
  } catch (const SyntaxError&) {
    return std::nullopt;
  }
}

bool HasDigit(XStringView text) {
  return std::any_of(text.begin(), text.end(), [](XCHAR unit) { return IsDigit(unit); });
}

}  // namespace

Criterion::Criterion(const CellView& cell, NumberMarks marks) : marks_(marks) {
  if (!cell.IsText()) {
    key_ = Value::OfCell(EmptyAsZero(cell));
    return;
  }
  constexpr std::pair<XStringView, Operator> kOperators[] = {
      {XTEXT("<>"), Operator::kNotEqual},       {XTEXT("<="), Operator::kLessOrEqual},
      {XTEXT(">="), Operator::kGreaterOrEqual}, {XTEXT("<"), Operator::kLess},
      {XTEXT(">"), Operator::kGreater},         {XTEXT("="), Operator::kEqual}};
  XStringView text = cell.AsText();
  const auto written = std::find_if(std::begin(kOperators), std::end(kOperators),
                                    [&](const auto& entry) { return text.starts_with(entry.first); });
  const bool isWritten = written != std::end(kOperators);
  if (isWritten) {
    operator_ = written->second;
    text.remove_prefix(written->first.size());
  }
  const bool isEquality = operator_ == Operator::kEqual || operator_ == Operator::kNotEqual;
  if (text.empty() && isEquality)
    operand_ = isWritten ? Operand::kIsEmpty : Operand::kLooksEmpty;
  else
    ReadOperand(text, isEquality);
}

void Criterion::ReadOperand(XStringView text, bool mayBePattern) {
  const CellView cell = CellView::Text(text);
  if (key_ = ToNumber(cell, marks_); !key_.IsError()) return;
  if (key_ = ToBoolean(cell); !key_.IsError()) return;
  if (const auto code = ErrorNamed(text)) {
    key_ = Value::Error(*code);
    return;
  }
  key_ = Value::Text(XString(text));
  if (!mayBePattern) return;
  LookupPattern pattern(text);
  if (pattern.HasWildcards()) {
    operand_ = Operand::kPattern;
    pattern_ = std::move(pattern);
  } else {
    key_ = Value::Text(pattern.Literal());
  }
}

bool Criterion::ReadsAsKey(XStringView text) const {
  // Most texts are no numbers, which a look tells.
  if (!HasDigit(text)) return false;
  const Value number = ToNumber(CellView::Text(text), marks_);
  return number.IsNumber() && number.AsNumber() == key_.AsNumber();
}

bool Criterion::Equals(const CellView& cell) const {
  switch (operand_) {
    case Operand::kLooksEmpty:
      return cell.IsEmpty() || (cell.IsText() && cell.AsText().empty());
    case Operand::kIsEmpty:
      return cell.IsEmpty();
    case Operand::kPattern:
      return cell.IsText() && pattern_->Matches(cell.AsText());
    default:
      break;
  }
  if (key_.IsNumber() && cell.IsText()) return ReadsAsKey(cell.AsText());
  if (key_.IsError()) return cell.IsError() && cell.AsError() == key_.AsError();
  return EqualsKey(key_.AsCell(), cell);
}

bool Criterion::Matches(const CellView& cell) const {
  if (operator_ == Operator::kEqual) return Equals(cell);
  if (operator_ == Operator::kNotEqual) return !Equals(cell);
  const CellView key = key_.AsCell();
  if (key.Kind() != cell.Kind() || key.IsError()) return false;
  const std::partial_ordering order = CompareKey(cell, key);
  switch (operator_) {
    case Operator::kLess:
      return order < 0;
    case Operator::kLessOrEqual:
      return order <= 0;
    case Operator::kGreater:
      return order > 0;
    default:
      return order >= 0;
  }
}

}  // namespace qcalc
