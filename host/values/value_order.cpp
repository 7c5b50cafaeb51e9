#include "host/values/value_order.h"

#include <algorithm>
#include <charconv>
#include <cmath>

#include "host/text/letter_case.h"
#include "host/text/text_order.h"

namespace qcalc {

namespace {

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

bool EqualsKey(const CellView& key, const CellView& cell) {
  if (key.Kind() != cell.Kind()) return false;
  switch (key.Kind()) {
    case CellKind::kNumber:
      return key.AsNumber() == cell.AsNumber();
    case CellKind::kText:
      return EqualsIgnoringCase(key.AsText(), cell.AsText());
    case CellKind::kBoolean:
      return key.AsBoolean() == cell.AsBoolean();
    case CellKind::kEmpty:
    case CellKind::kError:
      break;
  }
  return false;
}

std::partial_ordering CompareKey(const CellView& key, const CellView& cell) {
  if (key.IsNumber()) return key.AsNumber() <=> cell.AsNumber();
  if (key.IsText()) return CompareTexts(key.AsText(), cell.AsText());
  return key.AsBoolean() <=> cell.AsBoolean();
}

bool SameContent(const CellView& left, const CellView& right) {
  if (left.Kind() != right.Kind()) return false;
  switch (left.Kind()) {
    case CellKind::kEmpty:
      return true;
    case CellKind::kNumber:
      return left.AsNumber() == right.AsNumber() || (std::isnan(left.AsNumber()) && std::isnan(right.AsNumber()));
    case CellKind::kText:
      return left.AsText() == right.AsText();
    case CellKind::kBoolean:
      return left.AsBoolean() == right.AsBoolean();
    case CellKind::kError:
      return left.AsError() == right.AsError();
  }
  return false;
}

namespace {

bool SameCell(const CellView& expected, const CellView& actual, const Tolerance& tolerance) {
  if (SameContent(expected, actual)) return true;
  if (!expected.IsNumber() || !actual.IsNumber()) return false;
  const double wanted = expected.AsNumber(), difference = std::fabs(actual.AsNumber() - wanted);
  return wanted == 0 ? difference <= tolerance.absolute : difference <= tolerance.relative * std::fabs(wanted);
}

bool SameArray(const Array& expected, const Array& actual, const Tolerance& tolerance) {
  return expected.Rows() == actual.Rows() && expected.Columns() == actual.Columns() &&
         std::equal(expected.Cells().begin(), expected.Cells().end(), actual.Cells().begin(),
                    [&](const CellView& left, const CellView& right) { return SameCell(left, right, tolerance); });
}

}  // namespace

bool SameValue(const Value& expected, const Value& actual, const Tolerance& tolerance) {
  if (expected.Kind() != actual.Kind()) return false;
  if (expected.IsArray()) return SameArray(*expected.AsArray(), *actual.AsArray(), tolerance);
  if (expected.IsReference()) return expected.AsReference() == actual.AsReference();
  return SameCell(expected.AsCell(), actual.AsCell(), tolerance);
}

}  // namespace qcalc
