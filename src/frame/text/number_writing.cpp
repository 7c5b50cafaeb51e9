#include "frame/text/number_writing.h"

#include <charconv>
#include <cmath>
#include <cstddef>

#include "frame/text/error_text.h"
#include "xlcall/xlcall.h"

namespace quillmere {
namespace {

constexpr int kDigits = 15;

/// A number's significant digits without trailing zeros; its value is d.ddd times ten to the exponent.
struct DecimalDigits {
  char digits[kDigits];
  int count;
  int exponent;
};

/// Rounds to one digit less, half up.
void DropLastDigit(DecimalDigits& decimal) {
  if (decimal.count < kDigits) return;
  const bool up = decimal.digits[--decimal.count] >= '5';
  if (!up) return;
  int at = decimal.count - 1;
  while (at >= 0 && decimal.digits[at] == '9') decimal.digits[at--] = '0';
  if (at >= 0) {
    ++decimal.digits[at];
  } else {
    decimal.digits[0] = '1';
    ++decimal.exponent;
  }
}

void DropTrailingZeros(DecimalDigits& decimal) {
  while (decimal.count > 1 && decimal.digits[decimal.count - 1] == '0') --decimal.count;
}

/// The digits of a positive normal number.
DecimalDigits DigitsOf(double number) {
  char text[kDigits + 16];
  const char* const end =
      std::to_chars(text, text + sizeof text, number, std::chars_format::scientific, kDigits - 1).ptr;
  DecimalDigits decimal{};
  const char* at = text;
  for (; *at != 'e'; ++at)
    if (*at != '.') decimal.digits[decimal.count++] = *at;
  ++at;
  std::from_chars(*at == '+' ? at + 1 : at, end, decimal.exponent);
  // Excel writes one digit less where the exponent needs a third.
  constexpr int kLargestTwoDigitExponent = 98;
  if (std::abs(decimal.exponent) > kLargestTwoDigitExponent) DropLastDigit(decimal);
  DropTrailingZeros(decimal);
  return decimal;
}

class UnitWriter {
 public:
  explicit UnitWriter(NumberTextBuffer& buffer) : buffer_(buffer) {}
  void Put(XCHAR unit) { buffer_.units[count_++] = unit; }
  void PutZeros(int count) {
    for (; count > 0; --count) Put(XTEXT('0'));
  }
  void PutDigits(const DecimalDigits& decimal, int from, int to) {
    for (; from < to; ++from) Put(from < decimal.count ? static_cast<XCHAR>(decimal.digits[from]) : XTEXT('0'));
  }
  XStringView Text() const { return {buffer_.units, count_}; }

 private:
  NumberTextBuffer& buffer_;
  std::size_t count_ = 0;
};

void WriteScientific(UnitWriter& writer, const DecimalDigits& decimal, XCHAR separator) {
  writer.PutDigits(decimal, 0, 1);
  if (decimal.count > 1) writer.Put(separator);
  writer.PutDigits(decimal, 1, decimal.count);
  writer.Put(XTEXT('E'));
  writer.Put(decimal.exponent < 0 ? XTEXT('-') : XTEXT('+'));
  const int size = std::abs(decimal.exponent);
  if (size >= 100) writer.Put(static_cast<XCHAR>(XTEXT('0') + size / 100));
  writer.Put(static_cast<XCHAR>(XTEXT('0') + size / 10 % 10));
  writer.Put(static_cast<XCHAR>(XTEXT('0') + size % 10));
}

void WriteDigits(UnitWriter& writer, const DecimalDigits& decimal, XCHAR separator) {
  constexpr int kScientificFrom = 20;
  constexpr int kLongestFraction = 20;
  const int leadingZeros = -decimal.exponent - 1;
  if (decimal.exponent >= kScientificFrom ||
      (decimal.exponent < 0 && 2 + leadingZeros + decimal.count > kLongestFraction)) {
    WriteScientific(writer, decimal, separator);
  } else if (decimal.exponent < 0) {
    writer.Put(XTEXT('0'));
    writer.Put(separator);
    writer.PutZeros(leadingZeros);
    writer.PutDigits(decimal, 0, decimal.count);
  } else {
    const int whole = decimal.exponent + 1;
    writer.PutDigits(decimal, 0, whole);
    if (decimal.count > whole) writer.Put(separator);
    writer.PutDigits(decimal, whole, decimal.count);
  }
}

}  // namespace

XStringView NumberText(double number, NumberTextBuffer& buffer, XCHAR decimalSeparator) noexcept {
  if (!std::isfinite(number)) return ErrorText(xlerrNum);
  if (!std::isnormal(number)) return XTEXT("0");
  UnitWriter writer(buffer);
  if (number < 0) writer.Put(XTEXT('-'));
  WriteDigits(writer, DigitsOf(std::fabs(number)), decimalSeparator);
  return writer.Text();
}

}  // namespace quillmere
