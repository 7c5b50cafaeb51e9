#include "host/calculation/power.h"

#include <array>
#include <cmath>
#include <cstdlib>

#include "host/calculation/formula_operators.h"

namespace qcalc {

namespace {

// A number as the sum of two doubles, the second below half a unit in the last place of the first: some 105 bits.
// Sums and products of doubles are exact in this form.
struct Pair {
  double high = 0;
  double low = 0;
};

constexpr Pair PairOf(double number) { return {number, 0}; }

constexpr Pair AddOrdered(double larger, double smaller) {
  const double sum = larger + smaller;
  return {sum, smaller - (sum - larger)};
}

constexpr Pair Add(double left, double right) {
  const double sum = left + right;
  const double part = sum - left;
  return {sum, (left - (sum - part)) + (right - part)};
}

// Of the high 26 bits and the rest.
constexpr Pair Split(double number) {
  const double scaled = 134'217'729.0 * number;  // 2^27 + 1
  const double high = scaled - (scaled - number);
  return {high, number - high};
}

constexpr Pair Multiply(double left, double right) {
  const double product = left * right;
  const Pair l = Split(left), r = Split(right);
  return {product, ((l.high * r.high - product) + l.high * r.low + l.low * r.high) + l.low * r.low};
}

constexpr Pair operator+(Pair left, Pair right) {
  const Pair high = Add(left.high, right.high), low = Add(left.low, right.low);
  const Pair sum = AddOrdered(high.high, high.low + low.high);
  return AddOrdered(sum.high, sum.low + low.low);
}

constexpr Pair operator-(Pair number) { return {-number.high, -number.low}; }

constexpr Pair operator*(Pair left, Pair right) {
  const Pair product = Multiply(left.high, right.high);
  return AddOrdered(product.high, product.low + (left.high * right.low + left.low * right.high));
}

constexpr Pair operator/(Pair left, Pair right) {
  Pair quotient = PairOf(left.high / right.high);
  for (int i = 0; i < 2; ++i) {
    const Pair rest = left + -(quotient * right);
    quotient = quotient + PairOf(rest.high / right.high);
  }
  return quotient;
}

constexpr int kTerms = 45;  // of the series below, at most
constexpr auto kReciprocals = [] {
  std::array<Pair, kTerms + 1> reciprocals;
  for (int n = 1; n <= kTerms; ++n) reciprocals[static_cast<std::size_t>(n)] = PairOf(1) / PairOf(n);
  return reciprocals;
}();
constexpr Pair kLogarithmOf2 = {0x1.62e42fefa39efp-1, 0x1.abc9e3b39803fp-56};

// The mantissa's pair times a power of two.
struct Scaled {
  Pair mantissa;
  int exponent = 0;

  void Normalize() {
    int shift = 0;
    mantissa.high = std::frexp(mantissa.high, &shift);
    mantissa.low = std::ldexp(mantissa.low, -shift);
    exponent += shift;
  }
  double ToDouble() const { return std::ldexp(mantissa.high, exponent); }
};

// By repeated squaring.
Scaled WholePower(double base, int exponent) {
  Scaled square{PairOf(base), 0}, power{PairOf(1), 0};
  square.Normalize();
  for (auto rest = static_cast<unsigned>(std::abs(exponent)); rest > 0; rest /= 2) {
    if (rest % 2 == 1) {
      power = {power.mantissa * square.mantissa, power.exponent + square.exponent};
      power.Normalize();
    }
    square = {square.mantissa * square.mantissa, 2 * square.exponent};
    square.Normalize();
  }
  if (exponent < 0) power = {PairOf(1) / power.mantissa, -power.exponent};
  return power;
}

// log(m) is twice the sum of s^n / n over odd n, with s = (m - 1) / (m + 1).
Pair Logarithm(double number) {
  int exponent = 0;
  double mantissa = std::frexp(number, &exponent);
  if (mantissa < 0x1.6a09e667f3bcdp-1) {  // the root of 1/2
    mantissa *= 2;
    --exponent;
  }
  const Pair s = PairOf(mantissa - 1) / Add(mantissa, 1);
  const Pair square = s * s;
  Pair sum{};
  for (std::size_t n = kTerms + 2; n > 1; n -= 2) sum = sum * square + kReciprocals[n - 2];
  return PairOf(2) * s * sum + kLogarithmOf2 * PairOf(exponent);
}

Scaled Exponential(Pair number) {
  constexpr std::size_t kLastTerm = 26;
  const double twos = std::floor(number.high / kLogarithmOf2.high + 0.5);
  const Pair rest = number + -(kLogarithmOf2 * PairOf(twos));
  Pair sum = PairOf(1);
  for (std::size_t n = kLastTerm; n > 0; --n) sum = sum * (rest * kReciprocals[n]) + PairOf(1);
  return {sum, static_cast<int>(twos)};
}

// Of a positive number.
double PositivePower(double base, double exponent) {
  constexpr double kMostMultiplied = 1024;
  constexpr double kBeyondRange = 750;  // e to this power, either way
  if (base == 1) return 1;
  if (std::trunc(exponent) == exponent && std::fabs(exponent) <= kMostMultiplied)
    return WholePower(base, static_cast<int>(exponent)).ToDouble();
  const Pair logarithm = Logarithm(base);
  const double estimate = exponent * logarithm.high;
  if (std::fabs(estimate) > kBeyondRange) return estimate > 0 ? HUGE_VAL : 0;
  return Exponential(logarithm * PairOf(exponent)).ToDouble();
}

bool IsOdd(double whole) { return std::fmod(whole, 2) != 0; }

}  // namespace

Value Power(double base, double exponent) {
  if (base == 0 && exponent == 0) return Value::Error(xlerrNum);
  if (base == 0) return exponent < 0 ? Value::Error(xlerrDiv0) : Value::Number(0);
  const double power = PositivePower(std::fabs(base), exponent);
  if (base > 0) return NumberResult(power);
  const bool isWhole = std::trunc(exponent) == exponent;
  const double root = std::floor(1 / exponent + 0.5);
  if (!isWhole && (1 / root != exponent || !IsOdd(root))) return Value::Error(xlerrNum);
  return NumberResult(!isWhole || IsOdd(exponent) ? -power : power);
}

}  // namespace qcalc
