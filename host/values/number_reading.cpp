#include "host/values/number_reading.h"

#include <algorithm>
#include <charconv>
#include <limits>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "host/text/digits.h"
#include "host/values/date_reading.h"

namespace qcalc {

namespace {

// Digits, commas, point and exponent, read into the form that from_chars knows.
class PlainNumber {
 public:
  // Reads at the front of `text` and shortens it; false when no number stands there.
  bool Read(std::string_view& text) {
    return ReadWhole(text) && ReadFraction(text) && (wholeDigits_ > 0 || fractionDigits_ > 0) && ReadExponent(text);
  }

  Value ToValue(bool negative, bool percent) {
    exponent_ += percent ? -2 : 0;
    const std::string text = digits_ + "e" + std::to_string(exponent_);
    double number = 0;
    if (std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc::result_out_of_range) {
      if (FirstDigitExponent() > 0) return Value::Error(xlerrNum);
      number = 0;
    }
    if (number < std::numeric_limits<double>::min()) number = 0;
    return Value::Number(negative ? -number : number);
  }

 private:
  static constexpr int kMostExponent = 100'000;  // far beyond doubles, yet no overflow in sums

  void ReadDigits(std::string_view& text, int& count) {
    for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1), ++count) digits_ += text.front();
  }

  // A comma needs a digit before it and at least three behind it.
  bool ReadWhole(std::string_view& text) {
    ReadDigits(text, wholeDigits_);
    while (!text.empty() && text.front() == ',') {
      if (wholeDigits_ == 0) return false;
      text.remove_prefix(1);
      int group = 0;
      ReadDigits(text, group);
      if (group < 3) return false;
      wholeDigits_ += group;
    }
    return true;
  }

  bool ReadFraction(std::string_view& text) {
    if (text.empty() || text.front() != '.') return true;
    text.remove_prefix(1);
    digits_ += '.';
    ReadDigits(text, fractionDigits_);
    return true;
  }

  bool ReadExponent(std::string_view& text) {
    if (text.empty() || (text.front() != 'e' && text.front() != 'E')) return true;
    text.remove_prefix(1);
    const bool negative = !text.empty() && text.front() == '-';
    if (negative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
    if (text.empty() || !IsDigit(text.front())) return false;
    for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1))
      exponent_ = std::min(exponent_ * 10 + (text.front() - '0'), kMostExponent);
    if (negative) exponent_ = -exponent_;
    return true;
  }

  // The decimal exponent of the first digit that is not 0.
  int FirstDigitExponent() const {
    const std::size_t first = digits_.find_first_of("123456789");
    if (first == std::string::npos) return 0;
    const auto point = static_cast<int>(std::min(digits_.find('.'), digits_.size()));
    return point - static_cast<int>(first) + exponent_;
  }

  std::string digits_;
  int wholeDigits_ = 0;
  int fractionDigits_ = 0;
  int exponent_ = 0;
};

// The signs around a number, each at most once.
struct Signs {
  bool negative = false;
  bool percent = false;
};

void SkipSpaces(std::string_view& text) {
  while (!text.empty() && text.front() == ' ') text.remove_prefix(1);
}

bool Accept(std::string_view& text, char byte) {
  if (text.empty() || text.front() != byte) return false;
  text.remove_prefix(1);
  return true;
}

// Sign and currency sign in either order; blanks may follow either.
bool ReadLeadingSigns(std::string_view& text, bool mayHaveSign, Signs& signs) {
  bool currency = false, sign = !mayHaveSign;
  for (;;) {
    SkipSpaces(text);
    if (Accept(text, '$')) {
      if (std::exchange(currency, true)) return false;
    } else if (!text.empty() && (text.front() == '-' || text.front() == '+')) {
      if (std::exchange(sign, true)) return false;
      signs.negative = signs.negative || text.front() == '-';
      text.remove_prefix(1);
    } else {
      return true;
    }
  }
}

std::optional<Value> ReadNumeric(std::string_view text) {
  Signs signs;
  const bool parentheses = Accept(text, '(');
  signs.negative = parentheses;
  PlainNumber number;
  if (!ReadLeadingSigns(text, !parentheses, signs) || !number.Read(text)) return std::nullopt;
  SkipSpaces(text);
  if (Accept(text, '%')) {
    signs.percent = true;
    SkipSpaces(text);
  }
  if (parentheses) {
    if (!Accept(text, ')')) return std::nullopt;
    SkipSpaces(text);
  }
  if (!text.empty()) return std::nullopt;
  return number.ToValue(signs.negative, signs.percent);
}

}  // namespace

Value TextToNumber(XStringView text) {
  std::string bytes;
  for (const XCHAR unit : text) {
    if (unit == 0 || static_cast<std::uint16_t>(unit) >= 0x80) return Value::Error(xlerrValue);
    bytes += static_cast<char>(unit);
  }
  std::string_view trimmed = bytes;
  SkipSpaces(trimmed);
  while (!trimmed.empty() && trimmed.back() == ' ') trimmed.remove_suffix(1);
  if (const auto number = ReadNumeric(trimmed)) return *number;
  if (const auto serial = ReadDateTime(trimmed)) return Value::Number(*serial);
  return Value::Error(xlerrValue);
}

}  // namespace qcalc
