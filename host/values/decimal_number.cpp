#include "host/values/decimal_number.h"

#include <array>
#include <charconv>
#include <cstdlib>
#include <string>

namespace qcalc {

std::optional<double> DecimalNumber::ToDouble() const {
  static constexpr std::array<double, 23> kPowers = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                                     1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                                     1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  if (digits_ == 0) return 0;
  const auto digits = static_cast<double>(digits_);
  // Digits and power are exact here: what comes of them is rounded once.
  if (const auto size = static_cast<std::size_t>(std::abs(exponent_)); size < kPowers.size())
    return exponent_ < 0 ? digits / kPowers[size] : digits * kPowers[size];
  const std::string text = std::to_string(digits_) + "e" + std::to_string(exponent_);
  double number = 0;
  const bool isWithin = std::from_chars(text.data(), text.data() + text.size(), number).ec == std::errc();
  return isWithin || exponent_ < 0 ? std::optional(number) : std::nullopt;
}

bool ReadCutDecimal(std::string_view text, double& number) {
  DecimalNumber decimal;
  const char *next = text.data(), *const end = next + text.size();
  for (; next != end && IsDigit(*next); ++next) decimal.AddWholeDigit(*next - '0');
  std::ptrdiff_t digits = next - text.data();
  if (next != end && *next == '.') {
    const char* const first = ++next;
    for (; next != end && IsDigit(*next); ++next) decimal.AddFractionDigit(*next - '0');
    digits += next - first;
  }
  if (digits == 0) return false;
  text.remove_prefix(static_cast<std::size_t>(next - text.data()));
  const auto exponent = TakeExponent(text);
  if (!exponent || !text.empty()) return false;
  decimal.Scale(*exponent);
  const auto read = decimal.ToDouble();
  number = read.value_or(0);
  return read.has_value();
}

}  // namespace qcalc
