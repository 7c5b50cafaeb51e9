#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <string>

#include "host/formats/digit_run.h"
#include "host/formats/format_number.h"

namespace qcalc {

namespace {

using TokenKind = FormatToken::Kind;
using Tokens = std::span<const FormatToken>;

// Of whole numbers; a numerator may be beyond integers.
struct Fraction {
  double numerator = 0;
  double denominator = 1;
};

// The tokens of a fraction: what stands before the numerator, its places, the denominator, and what follows.
struct FractionParts {
  Tokens whole, numerator, denominator, rest;

  explicit FractionParts(Tokens tokens) {
    std::size_t slash = 0;
    while (!tokens[slash].Is(TokenKind::kSlash)) ++slash;
    std::size_t first = slash, last = slash + 1;
    while (first > 0 && tokens[first - 1].Is(TokenKind::kDigit)) --first;
    while (last < tokens.size() && (tokens[last].Is(TokenKind::kDigit) || tokens[last].Is(TokenKind::kFixedDigit)))
      ++last;
    whole = tokens.first(first);
    numerator = tokens.subspan(first, slash - first);
    denominator = tokens.subspan(slash + 1, last - slash - 1);
    rest = tokens.subspan(last);
  }
  // The denominator that the format names, 0 for none.
  double FixedDenominator() const {
    double fixed = 0;
    if (!denominator.front().Is(TokenKind::kFixedDigit)) return 0;
    for (const FormatToken& digit : denominator.first(std::min<std::size_t>(denominator.size(), kMostDigits)))
      fixed = fixed * 10 + (digit.mark >= '0' && digit.mark <= '9' ? digit.mark - '0' : 0);
    return fixed;
  }
  double MostDenominator() const {
    double most = 1;
    for (std::size_t i = 0; i < std::min<std::size_t>(denominator.size(), kMostDigits); ++i) most *= 10;
    return most - 1;
  }
  static constexpr std::size_t kMostDigits = 9;
};

// The fraction nearest to a number from 0 on, by its continued fraction; of the last step as much as still has room.
Fraction NearestFraction(double number, double mostDenominator) {
  constexpr double kNothingLeft = 1e-10;
  Fraction before{1, 0}, last{std::floor(number), 1};
  double rest = number - last.numerator;
  while (rest > kNothingLeft) {
    const double inverse = 1 / rest;
    const double step = std::floor(inverse);
    const double taken = std::min(step, std::floor((mostDenominator - before.denominator) / last.denominator));
    const Fraction next{taken * last.numerator + before.numerator, taken * last.denominator + before.denominator};
    const auto distance = [number](const Fraction& fraction) {
      return std::fabs(number - fraction.numerator / fraction.denominator);
    };
    if (taken < step) return taken > 0 && distance(next) < distance(last) ? next : last;
    before = last;
    last = next;
    rest = inverse - step;
  }
  return last;
}

bool HasZeroPlace(Tokens tokens) {
  return std::any_of(tokens.begin(), tokens.end(), [](const FormatToken& token) { return token.mark == '0'; });
}

// Where it is all that there is, 0 shows whatever its place is marked.
void WriteWholePart(const DecimalDigits& number, Tokens tokens, bool isAll, XCHAR separator, XString& out) {
  WholeDigits digits(number, CountPlaces(tokens), separator);
  int places = CountPlaces(tokens);
  for (const FormatToken& token : tokens) {
    if (token.Is(TokenKind::kLiteral)) out += token.text;
    if (!token.Is(TokenKind::kDigit)) continue;
    const bool isForced = --places == 0 && isAll && number.IsZero();
    digits.WritePlace(isForced ? XTEXT('0') : token.mark, out);
  }
}

// Behind a denominator that is shorter than its places stand blanks.
void WriteDenominator(const FractionParts& parts, double denominator, XString& out) {
  if (parts.FixedDenominator() == 0 && HasZeroPlace(parts.denominator)) {
    WriteWhole(DigitsOf(denominator), parts.denominator, 0, out);
    return;
  }
  const std::string digits = std::to_string(static_cast<std::int64_t>(denominator));
  out.append(digits.begin(), digits.end());
  for (std::size_t i = digits.size(); i < parts.denominator.size(); ++i)
    if (parts.denominator[i].mark == '?') out += XTEXT(' ');
}

}  // namespace

XString FormatFraction(double magnitude, const FormatSection& section, NumberMarks marks) {
  const FractionParts parts(section.tokens);
  const bool hasWhole = CountPlaces(parts.whole) > 0;
  double number = magnitude;
  for (int i = 0; i < section.scale; ++i) number *= 10;
  for (int i = 0; i > section.scale; --i) number /= 10;
  number = std::min(number, std::numeric_limits<double>::max());
  const double whole = hasWhole ? std::floor(number) : 0;
  const double fixed = parts.FixedDenominator();
  Fraction fraction = fixed > 0 ? Fraction{std::floor((number - whole) * fixed + 0.5), fixed}
                                : NearestFraction(number - whole, parts.MostDenominator());
  const bool isNextWhole = hasWhole && fraction.numerator == fraction.denominator;
  if (isNextWhole) fraction.numerator = 0;
  DecimalDigits wholeDigits = DigitsOf(whole + (isNextWhole ? 1 : 0));
  wholeDigits.Round(0);
  XString out;
  WriteWholePart(wholeDigits, parts.whole, fraction.numerator == 0, section.isGrouped ? marks.Thousands() : XCHAR{0},
                 out);
  if (hasWhole && fraction.numerator == 0 && !HasZeroPlace(parts.numerator)) {
    // A whole number has blanks in place of its fraction.
    for (const Tokens part : {parts.numerator, parts.denominator})
      for (const FormatToken& token : part)
        if (token.mark != '#') out += XTEXT(' ');
    out += XTEXT(' ');
  } else {
    WriteWholePart(DigitsOf(fraction.numerator), parts.numerator, true, 0, out);
    out += XTEXT('/');
    WriteDenominator(parts, fraction.denominator, out);
  }
  WriteWhole({}, parts.rest, 0, out);
  return out;
}

}  // namespace qcalc
