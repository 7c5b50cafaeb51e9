#include "host/values/decimal_digits.h"

#include <charconv>

namespace qcalc {

namespace {

void DropTrailingZeros(std::string& digits) {
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
}

}  // namespace

void DecimalDigits::Round(int decimals) {
  const int kept = exponent + 1 + decimals;
  if (kept >= static_cast<int>(digits.size())) return;
  const bool up = kept >= 0 && digits[static_cast<std::size_t>(kept)] >= '5';
  digits.resize(static_cast<std::size_t>(std::max(kept, 0)));
  if (up) {
    while (!digits.empty() && digits.back() == '9') digits.pop_back();
    if (digits.empty()) {
      digits = "1";
      ++exponent;
    } else {
      ++digits.back();
    }
  }
  DropTrailingZeros(digits);
  if (digits.empty()) *this = {};
}

DecimalDigits DigitsOf(double magnitude) {
  if (magnitude == 0) return {};
  constexpr int kDigits = 15;
  char text[40];
  const char* end = std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific, kDigits - 1).ptr;
  DecimalDigits decimal{std::string(1, text[0]), 0};
  const char* exponent = text + kDigits + 2;  // behind the digits, their point and the e
  decimal.digits.append(text + 2, text + kDigits + 1);
  std::from_chars(*exponent == '+' ? exponent + 1 : exponent, end, decimal.exponent);
  DropTrailingZeros(decimal.digits);
  return decimal;
}

}  // namespace qcalc
