#include "host/formats/format_number.h"

#include <algorithm>
#include <cstdlib>
#include <span>

#include "host/formats/digit_run.h"

namespace qcalc {

namespace {

using TokenKind = FormatToken::Kind;
using Tokens = std::span<const FormatToken>;

// The tokens before the point, between point and exponent, and from the exponent on.
struct Parts {
  Tokens whole, decimals, exponent;

  explicit Parts(Tokens tokens) {
    const auto find = [&](TokenKind kind) {
      const auto found = std::find_if(tokens.begin(), tokens.end(), [&](const auto& token) { return token.Is(kind); });
      return static_cast<std::size_t>(found - tokens.begin());
    };
    const std::size_t power = find(TokenKind::kExponent), point = std::min(find(TokenKind::kDecimalMark), power);
    whole = tokens.first(point);
    decimals = tokens.subspan(point, power - point);
    exponent = tokens.subspan(power);
  }
};

// Where a format begins with its point, the whole part stands before it all the same.
void WriteUnplacedWhole(const DecimalDigits& number, XString& out) {
  WholeDigits(number, 1, 0).WritePlace(XTEXT('#'), out);
}

// Zeros at the end are shown up to the last place marked 0; the point stays in any case.
void WriteDecimals(const DecimalDigits& number, Tokens tokens, NumberMarks marks, XString& out) {
  int needed = number.Decimals(), place = 0;
  for (const FormatToken& token : tokens) {
    if (!token.Is(TokenKind::kDigit)) continue;
    ++place;
    if (token.mark == '0') needed = std::max(needed, place);
  }
  place = 0;
  for (const FormatToken& token : tokens) {
    if (token.Is(TokenKind::kDecimalMark)) out += marks.decimal;
    if (token.Is(TokenKind::kLiteral)) out += token.text;
    if (!token.Is(TokenKind::kDigit)) continue;
    ++place;
    if (place <= needed)
      out += static_cast<XCHAR>(number.At(-place));
    else if (token.mark == '?')
      out += XTEXT(' ');
  }
}

// The power of ten that is shown: a multiple of the places before the point, with which they are enough for the rounded
// number. Scales and rounds the number.
int TakeExponent(DecimalDigits& number, int wholePlaces, int decimals) {
  if (number.IsZero()) return 0;
  const int step = std::max(wholePlaces, 1);
  // Without a place before the point the first digit stands behind it.
  const int size = wholePlaces == 0 ? number.exponent + 1 : number.exponent;
  int exponent = size - ((size % step) + step) % step;
  number.Scale(-exponent);
  number.Round(decimals);
  if (number.exponent >= wholePlaces) {
    number.Scale(-step);
    exponent += step;
  }
  return exponent;
}

}  // namespace

XString FormatMagnitude(double magnitude, const FormatSection& section, NumberMarks marks) {
  const Parts parts(section.tokens);
  const int decimals = CountPlaces(parts.decimals);
  DecimalDigits number = DigitsOf(magnitude);
  number.Scale(section.scale);
  int exponent = 0;
  if (section.kind == FormatSection::Kind::kScientific)
    exponent = TakeExponent(number, CountPlaces(parts.whole), decimals);
  else
    number.Round(decimals);
  XString out;
  WriteWhole(number, parts.whole, section.isGrouped ? marks.Thousands() : XCHAR{0}, out);
  if (CountPlaces(parts.whole) == 0 && !parts.decimals.empty()) WriteUnplacedWhole(number, out);
  WriteDecimals(number, parts.decimals, marks, out);
  if (parts.exponent.empty()) return out;
  const FormatToken& sign = parts.exponent.front();
  out += sign.mark;
  if (exponent < 0)
    out += XTEXT('-');
  else if (sign.count == 1)
    out += XTEXT('+');
  WriteWhole(DigitsOf(std::abs(exponent)), parts.exponent.subspan(1), 0, out);
  return out;
}

}  // namespace qcalc
