// Decimal numbers as they are typed.
#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

#include "host/text/digits.h"

namespace qcalc {

/// Collects the digits of a number. Of more than 15 significant ones Excel keeps 15, and takes the others for zeros.
class DecimalNumber {
 public:
  void AddWholeDigit(int digit) {
    if (count_ < kMostDigits)
      Keep(digit);
    else
      ++exponent_;
  }
  void AddFractionDigit(int digit) {
    if (count_ >= kMostDigits) return;
    Keep(digit);
    --exponent_;
  }
  /// Times ten to that power, which is within kMostExponent of 0.
  void Scale(int exponent) { exponent_ += exponent; }

  /// The nearest double, 0 for one too small; nothing beyond the range of doubles.
  std::optional<double> ToDouble() const;

  static constexpr int kMostDigits = 15;
  static constexpr int kMostExponent = 100'000;  ///< far beyond doubles, yet no overflow in sums

 private:
  void Keep(int digit) {
    digits_ = digits_ * 10 + digit;
    if (digits_ != 0) ++count_;
  }

  std::int64_t digits_ = 0;
  std::int64_t exponent_ = 0;
  int count_ = 0;
};

/// Takes an exponent (`e`, perhaps a sign, digits) off the front of the text; 0 where none stands there, nothing where
/// it has no digits.
template <typename Unit>
std::optional<int> TakeExponent(std::basic_string_view<Unit>& text) {
  if (text.empty() || (text.front() != 'e' && text.front() != 'E')) return 0;
  text.remove_prefix(1);
  const bool isNegative = !text.empty() && text.front() == '-';
  if (isNegative || (!text.empty() && text.front() == '+')) text.remove_prefix(1);
  if (text.empty() || !IsDigit(text.front())) return std::nullopt;
  int exponent = 0;
  for (; !text.empty() && IsDigit(text.front()); text.remove_prefix(1))
    exponent = std::min(exponent * 10 + static_cast<int>(text.front() - '0'), DecimalNumber::kMostExponent);
  return isNegative ? -exponent : exponent;
}

/// What ReadDecimal does with a text of any length.
bool ReadCutDecimal(std::string_view text, double& number);

/// Reads the number that the text as a whole is: digits with an optional point and exponent, no sign, of which 15
/// count. False when it is none, or beyond the range of doubles.
inline bool ReadDecimal(std::string_view text, double& number) {
  // What is too short to be cut is read faster.
  if (text.size() <= DecimalNumber::kMostDigits && !text.empty() && (IsDigit(text.front()) || text.front() == '.')) {
    const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), number);
    if (end != text.data() + text.size()) return false;
    if (fault == std::errc()) return true;
  }
  return ReadCutDecimal(text, number);
}

}  // namespace qcalc
