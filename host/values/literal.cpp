#include "host/values/literal.h"

#include <charconv>
#include <cmath>

#include "host/text/letter_case.h"
#include "host/text/shown_text.h"
#include "host/text/utf8.h"
#include "host/values/constant_parser.h"

namespace qcalc {

namespace {

struct NamedError {
  std::int32_t code;
  std::string_view name;
};
// Those from 45 on stand for themselves in results only: Excel publishes no number for them in this API.
constexpr NamedError kErrors[] = {
    {xlerrNull, "#NULL!"},    {xlerrDiv0, "#DIV/0!"}, {xlerrValue, "#VALUE!"}, {xlerrRef, "#REF!"},
    {xlerrName, "#NAME?"},    {xlerrNum, "#NUM!"},    {xlerrNA, "#N/A"},       {xlerrGettingData, "#GETTING_DATA"},
    {kErrorSpill, "#SPILL!"}, {kErrorCalc, "#CALC!"}};

constexpr std::string_view kUnnamedError = "#ERR";

// Below this a whole number is easier to read in all its digits than with an exponent.
constexpr double kMostWhole = 1e15;

bool StartsWithName(std::string_view text, std::string_view name) {
  return EqualsIgnoringCase(text.substr(0, name.size()), name);
}

// "U+000A".
void AppendUnit(std::string& out, char32_t unit) {
  constexpr std::string_view kDigits = "0123456789ABCDEF";
  out += kUnitMark;
  for (int shift = 12; shift >= 0; shift -= 4) out += kDigits[(unit >> shift) & 0xF];
}

void AppendText(std::string& out, XStringView text) {
  std::size_t start = 0;
  const auto append = [&](std::size_t end) {
    if (start == end && start > 0) return;
    out += '"';
    for (const char byte : ToUtf8(text.substr(start, end - start))) {
      if (byte == '"') out += '"';
      out += byte;
    }
    out += '"';
  };
  for (std::size_t at = 0; at < text.size();) {
    const std::size_t here = at;
    const char32_t character = TakeCharacter(text, at);
    if (!IsUnseen(character)) continue;
    append(here);
    AppendUnit(out, character);
    start = at;
  }
  append(text.size());
}

void AppendLiteral(std::string& out, const CellView& cell) {
  switch (cell.Kind()) {
    case CellKind::kEmpty:
      out += "empty";
      break;
    case CellKind::kNumber:
      out += PrintNumber(cell.AsNumber());
      break;
    case CellKind::kBoolean:
      out += cell.AsBoolean() ? "TRUE" : "FALSE";
      break;
    case CellKind::kError:
      out += ErrorName(cell.AsError());
      break;
    case CellKind::kText:
      AppendText(out, cell.AsText());
      break;
  }
}

}  // namespace

Parsed<Value> ParseLiteral(std::string_view text) {
  try {
    TextCursor cursor(text);
    cursor.SkipBlanks();
    Parsed<Value> value = cursor.Peek() == '{' ? Value::OfArray(ReadArrayConstant(cursor)) : ReadScalar(cursor);
    cursor.SkipBlanks();
    if (!cursor.AtEnd()) cursor.FailExpecting("the end of the value");
    return value;
  } catch (SyntaxError& error) {
    return std::move(error);
  }
}

std::string PrintNumber(double number) {
  if (std::isnan(number)) return "nan";
  char digits[32];
  const bool isWhole = std::trunc(number) == number && std::fabs(number) < kMostWhole;
  const auto end = isWhole ? std::to_chars(digits, digits + sizeof digits, number, std::chars_format::fixed)
                           : std::to_chars(digits, digits + sizeof digits, number);
  return {digits, end.ptr};
}

std::string PrintLiteral(const CellView& cell) {
  std::string out;
  AppendLiteral(out, cell);
  return out;
}

std::string PrintLiteral(const Value& value) {
  if (value.IsMissing()) return "missing";
  if (!value.IsArray()) return PrintLiteral(value.AsCell());
  const Array& array = *value.AsArray();
  std::string out = "{";
  for (std::int32_t row = 0; row < array.Rows(); ++row)
    for (std::int32_t column = 0; column < array.Columns(); ++column) {
      if (column > 0)
        out += ',';
      else if (row > 0)
        out += ';';
      AppendLiteral(out, array.At(row, column));
    }
  return out + "}";
}

std::string ErrorName(std::int32_t code) {
  for (const NamedError& error : kErrors)
    if (error.code == code) return std::string(error.name);
  return std::string(kUnnamedError) + std::to_string(code);
}

std::optional<ErrorMatch> MatchErrorName(std::string_view text) {
  for (const NamedError& error : kErrors)
    if (StartsWithName(text, error.name)) return ErrorMatch{error.code, error.name.size()};
  if (!StartsWithName(text, kUnnamedError)) return std::nullopt;
  const char* digits = text.data() + kUnnamedError.size();
  std::int32_t code = 0;
  const auto [end, fault] = std::from_chars(digits, text.data() + text.size(), code);
  if (fault != std::errc() || code < 0) return std::nullopt;
  return ErrorMatch{code, static_cast<std::size_t>(end - text.data())};
}

}  // namespace qcalc
