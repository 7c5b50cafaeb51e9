// The decimal digits that Excel shows of a number.
#pragma once

#include <algorithm>
#include <string>

namespace qcalc {

/// d.ddd x 10^exponent: at most 15 digits, none of them a zero at the end. 0 is "0" with exponent 0.
struct DecimalDigits {
  std::string digits = "0";
  int exponent = 0;

  bool IsZero() const { return digits == "0"; }
  /// The digit that counts that power of ten.
  char At(int power) const {
    const auto index = static_cast<std::size_t>(exponent - power);
    return index < digits.size() ? digits[index] : '0';
  }
  /// Digits behind the point, and none for a whole number.
  int Decimals() const { return std::max(static_cast<int>(digits.size()) - 1 - exponent, 0); }
  /// Times ten to that power.
  void Scale(int power) {
    if (!IsZero()) exponent += power;
  }
  /// Rounds half up to that many digits behind the point; negative ones count before it.
  void Round(int decimals);
};

/// Rounded correctly to 15 digits. `magnitude` is finite and not negative.
DecimalDigits DigitsOf(double magnitude);

}  // namespace qcalc
