#include "host/values/number_reading.h"

#include <optional>
#include <utility>

#include "host/text/digits.h"
#include "host/values/date_reading.h"
#include "host/values/decimal_number.h"

namespace qcalc {

namespace {

void SkipSpaces(XStringView& text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
}

bool Accept(XStringView& text, XCHAR unit) {
  if (text.empty() || text.front() != unit) return false;
  text.remove_prefix(1);
  return true;
}

// A numerator or a denominator.
std::optional<double> TakeWhole(XStringView& text) {
  DecimalNumber number;
  const std::size_t length = text.size();
  for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1)) number.AddWholeDigit(text.front() - '0');
  return text.size() < length ? number.ToDouble() : std::nullopt;
}

// The number between the signs. Each step takes its part off the front of the text and is false where what stands
// there makes it no number.
class Magnitude {
 public:
  explicit Magnitude(NumberMarks marks) : marks_(marks) {}

  bool Take(XStringView& text) {
    if (!TakeWholePart(text)) return false;
    const bool isWhole = wholeDigits_ > 0 && !text.empty() && text.front() == ' ';
    return isWhole ? TakeCommonFraction(text) : TakeDecimals(text);
  }

  Value ToValue(bool isNegative, bool isPercent) {
    if (isPercent) number_.Scale(-2);
    const std::optional<double> number = number_.ToDouble();
    if (!number) return Value::Error(xlerrNum);
    const double magnitude = *number + (isPercent ? fraction_ / 100 : fraction_);
    return Value::Number(isNegative ? -magnitude : magnitude);
  }

 private:
  // A mark between thousands needs a digit before it and at least three behind it.
  bool TakeWholePart(XStringView& text) {
    for (;;) {
      int group = 0;
      for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1), ++group)
        number_.AddWholeDigit(text.front() - '0');
      if (wholeDigits_ > 0 && group < 3) return false;
      wholeDigits_ += group;
      if (!Accept(text, marks_.Thousands())) return true;
      if (wholeDigits_ == 0) return false;
    }
  }

  bool TakeDecimals(XStringView& text) {
    int digits = 0;
    if (Accept(text, marks_.decimal))
      for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1), ++digits)
        number_.AddFractionDigit(text.front() - '0');
    if (wholeDigits_ + digits == 0) return false;
    const auto exponent = TakeExponent(text);
    number_.Scale(exponent.value_or(0));
    return exponent.has_value();
  }

  // 1/2 behind a blank; a blank alone may be the end of the number.
  bool TakeCommonFraction(XStringView& text) {
    SkipSpaces(text);
    if (text.empty() || !IsDigit(text.front())) return true;
    const auto numerator = TakeWhole(text);
    if (!numerator || !Accept(text, XTEXT('/'))) return false;
    const auto denominator = TakeWhole(text);
    if (!denominator || *denominator == 0) return false;
    fraction_ = *numerator / *denominator;
    return true;
  }

  NumberMarks marks_;
  DecimalNumber number_;
  double fraction_ = 0;
  int wholeDigits_ = 0;
};

// The signs before a number, each at most once.
struct Signs {
  bool isNegative = false;
  bool isPercent = false;
};

// Sign, currency and percent sign in any order; blanks may follow each.
bool TakeSigns(XStringView& text, bool mayHaveSign, Signs& signs) {
  bool currency = false, sign = !mayHaveSign;
  for (;;) {
    SkipSpaces(text);
    if (Accept(text, XTEXT('$'))) {
      if (std::exchange(currency, true)) return false;
    } else if (Accept(text, XTEXT('%'))) {
      if (std::exchange(signs.isPercent, true)) return false;
    } else if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
      if (std::exchange(sign, true)) return false;
      signs.isNegative = signs.isNegative || text.front() == '-';
      text.remove_prefix(1);
    } else {
      return true;
    }
  }
}

std::optional<Value> ReadNumeric(XStringView text, NumberMarks marks) {
  Signs signs;
  const bool parentheses = Accept(text, XTEXT('('));
  signs.isNegative = parentheses;
  Magnitude magnitude(marks);
  if (!TakeSigns(text, !parentheses, signs) || !magnitude.Take(text)) return std::nullopt;
  SkipSpaces(text);
  if (Accept(text, XTEXT('%'))) {
    if (std::exchange(signs.isPercent, true)) return std::nullopt;
    SkipSpaces(text);
  }
  if (parentheses) {
    if (!Accept(text, XTEXT(')'))) return std::nullopt;
    SkipSpaces(text);
  }
  if (!text.empty()) return std::nullopt;
  return magnitude.ToValue(signs.isNegative, signs.isPercent);
}

}  // namespace

Value TextToNumber(XStringView text, NumberMarks marks) {
  SkipSpaces(text);
  while (!text.empty() && text.back() == ' ') text.remove_suffix(1);
  if (const auto number = ReadNumeric(text, marks)) return *number;
  if (const auto serial = ReadDateTime(text, marks)) return Value::Number(*serial);
  return Value::Error(xlerrValue);
}

}  // namespace qcalc
