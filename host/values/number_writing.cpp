#include "host/values/number_writing.h"

#include <cmath>
#include <cstdlib>

#include "host/values/decimal_digits.h"

namespace qcalc {

namespace {

constexpr int kExtremeExponent = 98;       // beyond it one digit less is shown
constexpr int kFirstScientific = 20;       // 1E20 and above are scientific
constexpr int kMostPositionalLength = 20;  // characters of a positional number below 1, without its sign

std::string Scientific(const DecimalDigits& decimal) {
  std::string text(1, decimal.digits[0]);
  if (decimal.digits.size() > 1) text += '.' + decimal.digits.substr(1);
  const std::string size = std::to_string(std::abs(decimal.exponent));
  text += decimal.exponent < 0 ? "E-" : "E+";
  return text + (size.size() < 2 ? "0" : "") + size;
}

std::string Positional(const DecimalDigits& decimal) {
  if (decimal.exponent < 0)
    return "0." + std::string(static_cast<std::size_t>(-decimal.exponent - 1), '0') + decimal.digits;
  const auto whole = static_cast<std::size_t>(decimal.exponent) + 1;
  if (decimal.digits.size() <= whole) return decimal.digits + std::string(whole - decimal.digits.size(), '0');
  return decimal.digits.substr(0, whole) + '.' + decimal.digits.substr(whole);
}

XString Finish(bool isNegative, const std::string& text, NumberMarks marks) {
  XString result(isNegative ? 1 : 0, XTEXT('-'));
  for (const char byte : text) result += byte == '.' ? marks.decimal : static_cast<XCHAR>(byte);
  return result;
}

}  // namespace

XString NumberToText(double number, NumberMarks marks) {
  DecimalDigits decimal = DigitsOf(std::fabs(number));
  if (std::abs(decimal.exponent) > kExtremeExponent) decimal.Round(13 - decimal.exponent);
  // "0.", the zeros behind the point and the digits.
  const int smallLength = 1 - decimal.exponent + static_cast<int>(decimal.digits.size());
  const bool scientific =
      decimal.exponent >= kFirstScientific || (decimal.exponent < 0 && smallLength > kMostPositionalLength);
  return Finish(number < 0, scientific ? Scientific(decimal) : Positional(decimal), marks);
}

XString NumberToGeneral(double number, NumberMarks marks) {
  constexpr int kWidth = 11;
  constexpr int kScientificDigits = 6;
  constexpr int kLeastRounded = -4;  // below 1E-4 what does not fit as it is becomes scientific
  const DecimalDigits exact = DigitsOf(std::fabs(number));
  DecimalDigits shown = exact;
  const int wholeDigits = std::max(exact.exponent + 1, 1);
  shown.Round(std::max(kWidth - 1 - wholeDigits, 0));
  const bool isRounded = shown.digits != exact.digits;
  const bool positional = shown.exponent < kWidth && (exact.exponent >= kLeastRounded || !isRounded);
  if (positional) return Finish(number < 0, Positional(shown), marks);
  shown = exact;
  shown.Round(kScientificDigits - 1 - exact.exponent);
  return Finish(number < 0, Scientific(shown), marks);
}

}  // namespace qcalc
