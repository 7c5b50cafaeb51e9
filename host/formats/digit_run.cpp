#include "host/formats/digit_run.h"

#include <algorithm>

namespace qcalc {

void WholeDigits::WritePlace(XCHAR mark, XString& out) {
  hasZero_ = hasZero_ || mark == '0';
  --places_;
  if (isFirst_)
    for (int power = number_.exponent; power > places_; --power) WriteDigit(power, mark, out);
  isFirst_ = false;
  WriteDigit(places_, hasZero_ ? XTEXT('0') : mark, out);
}

void WholeDigits::WriteDigit(int power, XCHAR mark, XString& out) {
  const bool isSeparated = separator_ != 0 && power > 0 && power % 3 == 0;
  if (mark == '0' || (!number_.IsZero() && power <= number_.exponent)) {
    out += static_cast<XCHAR>(number_.At(power));
    if (isSeparated) out += separator_;
  } else if (mark == '?') {
    out.append(isSeparated ? 2 : 1, XTEXT(' '));
  }
}

int CountPlaces(std::span<const FormatToken> tokens) {
  return static_cast<int>(std::count_if(tokens.begin(), tokens.end(),
                                        [](const FormatToken& token) { return token.Is(FormatToken::Kind::kDigit); }));
}

void WriteWhole(const DecimalDigits& number, std::span<const FormatToken> tokens, XCHAR separator, XString& out) {
  WholeDigits digits(number, CountPlaces(tokens), separator);
  for (const FormatToken& token : tokens) {
    if (token.Is(FormatToken::Kind::kDigit)) digits.WritePlace(token.mark, out);
    if (token.Is(FormatToken::Kind::kLiteral)) out += token.text;
  }
}

}  // namespace qcalc
