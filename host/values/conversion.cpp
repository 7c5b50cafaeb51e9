#include "host/values/conversion.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <string_view>

#include "host/text/utf8.h"
#include "host/values/number_text.h"
#include "host/values/text_number.h"

namespace qcalc {

Value ToNumber(const CellView& cell) {
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      return Value::Number(0);
    case CellKind::kNumber:
      return Value::Number(cell.AsNumber());
    case CellKind::kBoolean:
      return Value::Number(cell.AsBoolean() ? 1 : 0);
    case CellKind::kText:
      return TextToNumber(cell.AsText());
    case CellKind::kError:
      break;
  }
  return Value::Error(cell.AsError());
}

Value ToText(const CellView& cell, XCHAR decimalSeparator) {
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      return Value::Text({});
    case CellKind::kNumber:
      return Value::Text(NumberToText(cell.AsNumber(), decimalSeparator));
    case CellKind::kBoolean:
      return Value::Text(cell.AsBoolean() ? XTEXT("TRUE") : XTEXT("FALSE"));
    case CellKind::kText:
      return Value::Text(XString(cell.AsText()));
    case CellKind::kError:
      break;
  }
  return Value::Error(cell.AsError());
}

Value ToBoolean(const CellView& cell) {
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      return Value::Boolean(false);
    case CellKind::kNumber:
      return Value::Boolean(cell.AsNumber() != 0);
    case CellKind::kBoolean:
      return Value::Boolean(cell.AsBoolean());
    case CellKind::kText:
      if (EqualsIgnoringCase(cell.AsText(), XTEXT("TRUE"))) return Value::Boolean(true);
      if (EqualsIgnoringCase(cell.AsText(), XTEXT("FALSE"))) return Value::Boolean(false);
      return Value::Error(xlerrValue);
    case CellKind::kError:
      break;
  }
  return Value::Error(cell.AsError());
}

namespace {

// Digits, then these marks, then letters, as Excel publishes its order.
constexpr std::string_view kMarkOrder = " !\"#$%&()*,./:;?@[\\]^_`{|}~+<=>";

// Hyphen and apostrophe have none: they count only between otherwise equal texts.
int RankOf(XCHAR unit) {
  const unsigned u = static_cast<std::uint16_t>(FoldUnit(unit));
  constexpr int kMarks = 16, kLetters = 256;
  if (u >= '0' && u <= '9') return static_cast<int>(u - '0');
  if (u < 0x80)
    if (const auto mark = kMarkOrder.find(static_cast<char>(u)); mark != std::string_view::npos)
      return kMarks + static_cast<int>(mark);
  return kLetters + static_cast<int>(u);
}

bool IsIgnorable(XCHAR unit) { return unit == XTEXT('-') || unit == XTEXT('\''); }

// The number as its 15 significant digits say it.
double RoundToShownDigits(double number) {
  char text[40];
  const char* end = std::to_chars(text, text + sizeof text, number, std::chars_format::scientific, 14).ptr;
  std::from_chars(text, end, number);
  return number;
}

std::weak_ordering Order(double left, double right) {
  return left < right   ? std::weak_ordering::less
         : left > right ? std::weak_ordering::greater
                        : std::weak_ordering::equivalent;
}

std::weak_ordering CompareNumbers(double left, double right) {
  // Only numbers this close can have the same 15 digits.
  constexpr double kClose = 1e-13;
  if (std::fabs(left - right) > kClose * std::max(std::fabs(left), std::fabs(right))) return Order(left, right);
  return Order(RoundToShownDigits(left), RoundToShownDigits(right));
}

// An empty cell as the zero value of the other's kind.
CellView Filled(const CellView& cell, const CellView& other) {
  if (!cell.IsEmpty()) return cell;
  if (other.IsText()) return CellView::Text({});
  return other.IsBoolean() ? CellView::Boolean(false) : CellView::Number(0);
}

}  // namespace

std::weak_ordering CompareTexts(XStringView left, XStringView right) {
  std::size_t l = 0, r = 0;
  for (;;) {
    while (l < left.size() && IsIgnorable(left[l])) ++l;
    while (r < right.size() && IsIgnorable(right[r])) ++r;
    if (l == left.size() || r == right.size()) break;
    if (const auto order = RankOf(left[l++]) <=> RankOf(right[r++]); order != 0) return order;
  }
  if (l < left.size() || r < right.size())
    return l < left.size() ? std::weak_ordering::greater : std::weak_ordering::less;
  // Equal but for hyphens: the text with more of them comes last, then the one whose first difference is one.
  if (left.size() != right.size()) return left.size() <=> right.size();
  for (std::size_t i = 0; i < left.size(); ++i)
    if (FoldUnit(left[i]) != FoldUnit(right[i])) return RankOf(left[i]) <=> RankOf(right[i]);
  return std::weak_ordering::equivalent;
}

std::weak_ordering CompareCells(const CellView& left, const CellView& right) {
  const CellView l = Filled(left, right), r = Filled(right, left);
  if (l.Kind() != r.Kind()) {
    const auto rank = [](const CellView& cell) { return cell.IsNumber() ? 0 : cell.IsText() ? 1 : 2; };
    return rank(l) <=> rank(r);
  }
  if (l.IsText()) return CompareTexts(l.AsText(), r.AsText());
  if (l.IsBoolean()) return l.AsBoolean() <=> r.AsBoolean();
  return CompareNumbers(l.AsNumber(), r.AsNumber());
}

}  // namespace qcalc
