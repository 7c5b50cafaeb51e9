// Functions of single numbers: rounding, powers and logarithms, angles, random numbers.
#include <charconv>
#include <cmath>
#include <random>
#include <string>

#include "host/calculation/builtins/builtin.h"
#include "host/calculation/builtins/rounding.h"
#include "host/calculation/formula_operators.h"
#include "host/calculation/power.h"

namespace qcalc {

namespace {
constexpr int kShownDigits = 15;
}

double Rounded(double number, int decimals, Rounding rounding) {
  DecimalDigits decimal = DigitsOf(std::fabs(number));
  const int kept = std::max(decimal.exponent + 1 + decimals, 0);
  if (decimal.IsZero() || kept > kShownDigits) return number;
  // What is cut off becomes one digit, which rounds as it should.
  if (rounding != Rounding::kHalfAway && kept < static_cast<int>(decimal.digits.size())) {
    decimal.digits.resize(static_cast<std::size_t>(kept));
    decimal.digits += rounding == Rounding::kAway ? '9' : '0';
    if (kept == 0) decimal.exponent = -decimals - 1;
  }
  decimal.Round(decimals);
  std::string text = decimal.digits.substr(0, 1) + "." + decimal.digits.substr(1) + "e";
  text += std::to_string(decimal.exponent);
  double result = std::numeric_limits<double>::infinity();
  std::from_chars(text.data(), text.data() + text.size(), result);
  return std::copysign(result, number);
}

namespace {

// With 15 digits, so that a quotient which is whole but for the last bits is whole.
double Shown(double number) {
  if (number == 0 || !std::isfinite(number)) return number;
  return Rounded(number, kShownDigits - 1 - static_cast<int>(std::floor(std::log10(std::fabs(number)))),
                 Rounding::kHalfAway);
}

using Calculation = Value (*)(const double*);

template <Calculation calculate>
Value CallNumbers(const BuiltinCall& call) {
  return BroadcastNumbers(ScalarOperands(call), call.context.marks, calculate);
}

template <double (*function)(double)>
Value CallFunction(const BuiltinCall& call) {
  return BroadcastNumbers(ScalarOperands(call), call.context.marks,
                          [](const double* x) { return NumberResult(function(*x)); });
}

template <Rounding rounding>
Value CallRound(const BuiltinCall& call) {
  return BroadcastNumbers(ScalarOperands(call, 1, {0}), call.context.marks, [](const double* x) {
    constexpr double kMostDecimals = 400;
    return NumberResult(
        Rounded(x[0], static_cast<int>(std::fmax(-kMostDecimals, std::fmin(x[1], kMostDecimals))), rounding));
  });
}

Value CallLog(const BuiltinCall& call) {
  return BroadcastNumbers(ScalarOperands(call, 1, {10}), call.context.marks, [](const double* x) {
    if (x[0] <= 0 || x[1] <= 0) return Value::Error(xlerrNum);
    if (x[1] == 1) return Value::Error(xlerrDiv0);
    if (x[1] == 10) return NumberResult(std::log10(x[0]));
    // More digits than a double has: a whole result is to be whole.
    return NumberResult(
        static_cast<double>(std::log(static_cast<long double>(x[0])) / std::log(static_cast<long double>(x[1]))));
  });
}

Value CallPi(const BuiltinCall&) { return Value::Number(3.141592653589793); }

Value Absolute(const double* x) { return Value::Number(std::fabs(*x)); }
Value Sign(const double* x) { return Value::Number(*x > 0 ? 1 : *x < 0 ? -1 : 0); }
Value SquareRoot(const double* x) { return *x < 0 ? Value::Error(xlerrNum) : NumberResult(std::sqrt(*x)); }
Value NaturalLog(const double* x) { return *x <= 0 ? Value::Error(xlerrNum) : NumberResult(std::log(*x)); }
Value DecimalLog(const double* x) { return *x <= 0 ? Value::Error(xlerrNum) : NumberResult(std::log10(*x)); }
Value ToThePower(const double* x) { return Power(x[0], x[1]); }

// The remainder has the sign of the divisor. Beyond this quotient Excel gives none.
Value Remainder(const double* x) {
  constexpr double kMostQuotient = 1'125'900'000'000;
  if (x[1] == 0) return Value::Error(xlerrDiv0);
  if (std::fabs(x[0] / x[1]) >= kMostQuotient) return Value::Error(xlerrNum);
  return NumberResult(x[0] - x[1] * std::floor(x[0] / x[1]));
}

Value Quotient(const double* x) { return x[1] == 0 ? Value::Error(xlerrDiv0) : NumberResult(std::trunc(x[0] / x[1])); }

// To a multiple of the second number: away from zero, or towards it, where both have one sign, up where the first one
// alone is negative.
Value Ceiling(const double* x) {
  if (x[0] > 0 && x[1] < 0) return Value::Error(xlerrNum);
  return x[0] == 0 || x[1] == 0 ? Value::Number(0) : NumberResult(Shown(std::ceil(Shown(x[0] / x[1])) * x[1]));
}

Value Floor(const double* x) {
  if (x[0] > 0 && x[1] < 0) return Value::Error(xlerrNum);
  if (x[0] == 0) return Value::Number(0);
  return x[1] == 0 ? Value::Error(xlerrDiv0) : NumberResult(Shown(std::floor(Shown(x[0] / x[1])) * x[1]));
}

Value ToMultiple(const double* x) {
  if (x[0] == 0 || x[1] == 0) return Value::Number(0);
  if ((x[0] < 0) != (x[1] < 0)) return Value::Error(xlerrNum);
  return NumberResult(Shown(Rounded(Shown(x[0] / x[1]), 0, Rounding::kHalfAway) * x[1]));
}

Value ToEven(const double* x) { return NumberResult(std::copysign(std::ceil(std::fabs(*x) / 2) * 2, *x)); }
Value ToOdd(const double* x) {
  const double odd = std::fabs(*x) <= 1 ? 1 : std::ceil((std::fabs(*x) - 1) / 2) * 2 + 1;
  return NumberResult(*x < 0 ? -odd : odd);
}

Value ArcSine(const double* x) { return std::fabs(*x) > 1 ? Value::Error(xlerrNum) : NumberResult(std::asin(*x)); }
Value ArcCosine(const double* x) { return std::fabs(*x) > 1 ? Value::Error(xlerrNum) : NumberResult(std::acos(*x)); }
// The x comes first, other than elsewhere.
Value ArcTangent2(const double* x) {
  return x[0] == 0 && x[1] == 0 ? Value::Error(xlerrDiv0) : NumberResult(std::atan2(x[1], x[0]));
}
double Degrees(double angle) { return angle * 180 / 3.141592653589793; }
double Radians(double angle) { return angle / 180 * 3.141592653589793; }

std::mt19937_64& Generator() {
  thread_local std::mt19937_64 generator{std::random_device{}()};
  return generator;
}

Value CallRand(const BuiltinCall&) { return Value::Number(std::uniform_real_distribution<double>{}(Generator())); }

Value WholeBetween(const double* x) {
  constexpr double kMostWhole = 9007199254740992;
  const double least = std::ceil(x[0]), most = std::floor(x[1]);
  if (!(least <= most && std::fabs(least) <= kMostWhole && std::fabs(most) <= kMostWhole))
    return Value::Error(xlerrNum);
  std::uniform_int_distribution<std::int64_t> whole{static_cast<std::int64_t>(least), static_cast<std::int64_t>(most)};
  return Value::Number(static_cast<double>(whole(Generator())));
}

constexpr Builtin kNumberBuiltins[] = {{XTEXT("ABS"), 1, 1, CallNumbers<Absolute>},
                                       {XTEXT("ACOS"), 1, 1, CallNumbers<ArcCosine>},
                                       {XTEXT("ASIN"), 1, 1, CallNumbers<ArcSine>},
                                       {XTEXT("ATAN"), 1, 1, CallFunction<std::atan>},
                                       {XTEXT("ATAN2"), 2, 2, CallNumbers<ArcTangent2>},
                                       {XTEXT("CEILING"), 2, 2, CallNumbers<Ceiling>},
                                       {XTEXT("COS"), 1, 1, CallFunction<std::cos>},
                                       {XTEXT("DEGREES"), 1, 1, CallFunction<Degrees>},
                                       {XTEXT("EVEN"), 1, 1, CallNumbers<ToEven>},
                                       {XTEXT("EXP"), 1, 1, CallFunction<std::exp>},
                                       {XTEXT("FLOOR"), 2, 2, CallNumbers<Floor>},
                                       {XTEXT("INT"), 1, 1, CallFunction<std::floor>},
                                       {XTEXT("LN"), 1, 1, CallNumbers<NaturalLog>},
                                       {XTEXT("LOG"), 1, 2, CallLog},
                                       {XTEXT("LOG10"), 1, 1, CallNumbers<DecimalLog>},
                                       {XTEXT("MOD"), 2, 2, CallNumbers<Remainder>},
                                       {XTEXT("MROUND"), 2, 2, CallNumbers<ToMultiple>},
                                       {XTEXT("ODD"), 1, 1, CallNumbers<ToOdd>},
                                       {XTEXT("PI"), 0, 0, CallPi},
                                       {XTEXT("POWER"), 2, 2, CallNumbers<ToThePower>},
                                       {XTEXT("QUOTIENT"), 2, 2, CallNumbers<Quotient>},
                                       {XTEXT("RADIANS"), 1, 1, CallFunction<Radians>},
                                       {XTEXT("RAND"), 0, 0, CallRand, "v", true},
                                       {XTEXT("RANDBETWEEN"), 2, 2, CallNumbers<WholeBetween>, "v", true},
                                       {XTEXT("ROUND"), 2, 2, CallRound<Rounding::kHalfAway>},
                                       {XTEXT("ROUNDDOWN"), 2, 2, CallRound<Rounding::kTowardsZero>},
                                       {XTEXT("ROUNDUP"), 2, 2, CallRound<Rounding::kAway>},
                                       {XTEXT("SIGN"), 1, 1, CallNumbers<Sign>},
                                       {XTEXT("SIN"), 1, 1, CallFunction<std::sin>},
                                       {XTEXT("SQRT"), 1, 1, CallNumbers<SquareRoot>},
                                       {XTEXT("TAN"), 1, 1, CallFunction<std::tan>},
                                       {XTEXT("TRUNC"), 1, 2, CallRound<Rounding::kTowardsZero>}};

}  // namespace

std::span<const Builtin> NumberBuiltins() { return kNumberBuiltins; }

}  // namespace qcalc
