#include "host/values/number_writing.h"

#include <charconv>
#include <cmath>
#include <string>

namespace qcalc {

namespace {

constexpr int kDigits = 15;
constexpr int kExtremeExponent = 98;       // beyond it one digit less is shown
constexpr int kFirstScientific = 20;       // 1E20 and above are scientific
constexpr int kMostPositionalLength = 20;  // characters of a positional number below 1, without its sign

// d.ddd x 10^exponent, trailing zeros dropped.
struct Decimal {
  std::string digits;
  int exponent;
};

void DropTrailingZeros(std::string& digits) {
  while (digits.size() > 1 && digits.back() == '0') digits.pop_back();
}

// Rounds half up to one digit less.
void DropLastDigit(Decimal& decimal) {
  const bool up = decimal.digits.back() >= '5';
  decimal.digits.pop_back();
  if (!up) return;
  std::size_t i = decimal.digits.size();
  while (i > 0 && decimal.digits[i - 1] == '9') decimal.digits[--i] = '0';
  if (i > 0) {
    ++decimal.digits[i - 1];
  } else {
    decimal.digits.insert(decimal.digits.begin(), '1');
    decimal.digits.pop_back();
    ++decimal.exponent;
  }
}

Decimal RoundToDigits(double magnitude) {
  char text[40];
  const char* end = std::to_chars(text, text + sizeof text, magnitude, std::chars_format::scientific, kDigits - 1).ptr;
  Decimal decimal{std::string(1, text[0]), 0};
  const char* exponent = text + kDigits + 2;  // behind the digits, their point and the e
  decimal.digits.append(text + 2, text + kDigits + 1);
  std::from_chars(*exponent == '+' ? exponent + 1 : exponent, end, decimal.exponent);
  if (std::abs(decimal.exponent) > kExtremeExponent) DropLastDigit(decimal);
  DropTrailingZeros(decimal.digits);
  return decimal;
}

std::string Scientific(const Decimal& decimal) {
  std::string text(1, decimal.digits[0]);
  if (decimal.digits.size() > 1) text += '.' + decimal.digits.substr(1);
  const std::string size = std::to_string(std::abs(decimal.exponent));
  text += decimal.exponent < 0 ? "E-" : "E+";
  return text + (size.size() < 2 ? "0" : "") + size;
}

std::string Positional(const Decimal& decimal) {
  if (decimal.exponent < 0)
    return "0." + std::string(static_cast<std::size_t>(-decimal.exponent - 1), '0') + decimal.digits;
  const auto whole = static_cast<std::size_t>(decimal.exponent) + 1;
  if (decimal.digits.size() <= whole) return decimal.digits + std::string(whole - decimal.digits.size(), '0');
  return decimal.digits.substr(0, whole) + '.' + decimal.digits.substr(whole);
}

}  // namespace

XString NumberToText(double number, NumberMarks marks) {
  const double magnitude = std::fabs(number);
  if (magnitude == 0) return XTEXT("0");
  const Decimal decimal = RoundToDigits(magnitude);
  // "0.", the zeros behind the point and the digits.
  const int smallLength = 1 - decimal.exponent + static_cast<int>(decimal.digits.size());
  const bool scientific =
      decimal.exponent >= kFirstScientific || (decimal.exponent < 0 && smallLength > kMostPositionalLength);
  const std::string text = scientific ? Scientific(decimal) : Positional(decimal);
  XString result(number < 0 ? 1 : 0, XTEXT('-'));
  for (const char byte : text) result += byte == '.' ? marks.decimal : static_cast<XCHAR>(byte);
  return result;
}

}  // namespace qcalc
