#include "frame/text/number_reading.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>

#include "frame/text/white_space.h"

namespace quillmere {
namespace {

bool IsDigit(XCHAR unit) { return unit >= XTEXT('0') && unit <= XTEXT('9'); }

/// Significant digits of a number as long as a cell's text allows, cut to those that can decide its rounding.
class DigitCollector {
 public:
  void Put(XCHAR digit, bool isFraction) {
    any_ = true;
    if (isFraction) --scale_;
    if (count_ == 0 && digit == XTEXT('0')) return;
    if (count_ < kKept) {
      digits_[count_++] = static_cast<char>(digit);
    } else {
      ++scale_;
      if (digit != XTEXT('0')) digits_[kKept - 1] |= 1;  // so far behind, any digit but 0 rounds alike
    }
  }

  bool Any() const { return any_; }

  /// The number, its decimal point moved by `exponent`; nothing beyond the range of doubles, zero below it.
  std::optional<double> Number(std::int64_t exponent) const {
    if (count_ == 0) return 0.0;
    exponent += scale_;
    const std::int64_t magnitude = exponent + count_;
    if (magnitude > 400) return std::nullopt;
    if (magnitude < -400) return 0.0;
    char text[kKept + 8];
    std::copy(digits_, digits_ + count_, text);
    char* end = text + count_;
    *end++ = 'e';
    end = std::to_chars(end, text + sizeof text, exponent).ptr;
    double number = 0;
    const auto [stopped, error] = std::from_chars(text, end, number);
    if (error == std::errc::result_out_of_range) return magnitude > 0 ? std::nullopt : std::optional(0.0);
    return std::fpclassify(number) == FP_SUBNORMAL ? 0.0 : number;
  }

 private:
  // Halfway between two doubles a decimal has at most 767 digits: those behind matter only by not being all 0.
  static constexpr int kKept = 800;

  char digits_[kKept];
  int count_ = 0;
  std::int64_t scale_ = 0;
  bool any_ = false;
};

/// Takes a sign off the front; true for a minus.
bool TakeSign(XStringView& text) {
  const bool minus = !text.empty() && text.front() == XTEXT('-');
  if (minus || (!text.empty() && text.front() == XTEXT('+'))) text.remove_prefix(1);
  return minus;
}

}  // namespace

std::optional<double> ReadPlainNumber(XStringView text, XCHAR decimalSeparator) {
  text = TrimWhiteSpace(text);
  const bool minus = TakeSign(text);
  DigitCollector digits;
  bool isFraction = false;
  while (!text.empty() && (IsDigit(text.front()) || (!isFraction && text.front() == decimalSeparator))) {
    if (IsDigit(text.front()))
      digits.Put(text.front(), isFraction);
    else
      isFraction = true;
    text.remove_prefix(1);
  }
  if (!digits.Any()) return std::nullopt;
  std::int64_t exponent = 0;
  if (!text.empty()) {
    if (text.front() != XTEXT('e') && text.front() != XTEXT('E')) return std::nullopt;
    text.remove_prefix(1);
    const bool minusExponent = TakeSign(text);
    if (text.empty() || !std::all_of(text.begin(), text.end(), IsDigit)) return std::nullopt;
    constexpr std::int64_t kFarBeyondRange = 1'000'000;
    for (const XCHAR digit : text) exponent = std::min(exponent * 10 + (digit - XTEXT('0')), kFarBeyondRange);
    if (minusExponent) exponent = -exponent;
  }
  const std::optional<double> number = digits.Number(exponent);
  return number && minus ? -*number : number;
}

}  // namespace quillmere
