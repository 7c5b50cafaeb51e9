#include "host/values/constant_parser.h"

#include <charconv>
#include <string>
#include <vector>

#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/values/decimal_number.h"
#include "host/values/literal.h"

namespace qcalc {

namespace {

void SkipDigits(TextCursor& cursor) {
  while (IsDigit(cursor.Peek())) cursor.Advance();
}

std::string_view ReadWord(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  while (!cursor.AtEnd() && IsNameByte(cursor.Peek())) cursor.Advance();
  return cursor.Slice(start);
}

// What stands between two quotes.
XString ReadQuoted(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  cursor.Advance();
  std::string bytes;
  for (;;) {
    const std::string_view rest = cursor.Rest();
    const std::size_t quote = rest.find('"');
    if (quote == std::string_view::npos) cursor.FailAt(start, "expected a closing quote for this text, found the end");
    bytes += rest.substr(0, quote);
    cursor.Advance(quote + 1);
    if (!cursor.Accept('"')) break;
    bytes += '"';
  }
  std::size_t badByte = 0;
  auto text = FromUtf8(bytes, &badByte);
  if (!text)
    cursor.FailAt(start, "expected UTF-8, found another byte " + std::to_string(badByte + 1) + " into this text");
  return *std::move(text);
}

// A unit by its number: `U+000A`.
XCHAR ReadUnit(TextCursor& cursor) {
  constexpr std::size_t kDigits = 4;
  const std::string_view digits = cursor.Rest().substr(kUnitMark.size(), kDigits);
  const auto number = ReadWhole<std::uint16_t>(digits, 16);
  if (!number || digits.size() < kDigits)
    cursor.Fail("expected a unit's number such as U+000A, found " + cursor.Found());
  cursor.Advance(kUnitMark.size() + kDigits);
  return static_cast<XCHAR>(*number);
}

}  // namespace

bool IsNumberAhead(const TextCursor& cursor) {
  return IsDigit(cursor.Peek()) || (cursor.Peek() == '.' && IsDigit(cursor.Peek(1)));
}

bool IsNameByte(char byte) {
  return IsDigit(byte) || IsLetter(byte) || byte == '_' || byte == '.' || byte == '\\' || byte == '?' ||
         static_cast<unsigned char>(byte) >= 0x80;
}

double ReadNumber(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  SkipDigits(cursor);
  if (cursor.Accept('.')) SkipDigits(cursor);
  if (cursor.Peek() == 'e' || cursor.Peek() == 'E') {
    const std::size_t sign = cursor.Peek(1) == '+' || cursor.Peek(1) == '-' ? 1 : 0;
    if (IsDigit(cursor.Peek(1 + sign))) {
      cursor.Advance(1 + sign);
      SkipDigits(cursor);
    }
  }
  const std::string_view digits = cursor.Slice(start);
  double number = 0;
  const auto [end, fault] = std::from_chars(digits.data(), digits.data() + digits.size(), number);
  if (fault == std::errc::result_out_of_range && ReadDecimal(digits, number)) return number;
  if (fault != std::errc() || end != digits.data() + digits.size())
    cursor.FailAt(start, "expected a number within the range of doubles, found " + std::string(digits));
  return number;
}

XString ReadText(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  if (cursor.Peek() != '"') cursor.FailExpecting("a text in quotes");
  XString text = ReadQuoted(cursor);
  while (cursor.Rest().starts_with(kUnitMark)) {
    text += ReadUnit(cursor);
    if (cursor.Peek() == '"') text += ReadQuoted(cursor);
  }
  if (text.size() > static_cast<std::size_t>(kXlMaxText))
    cursor.FailAt(start, "expected a text of at most " + std::to_string(kXlMaxText) + " characters, found " +
                             std::to_string(text.size()));
  return text;
}

std::int32_t ReadError(TextCursor& cursor) {
  const auto match = MatchErrorName(cursor.Rest());
  if (!match) {
    cursor.Advance();
    cursor.Fail("expected an error such as #N/A or #VALUE!, found " + cursor.Found() + " after '#'");
  }
  cursor.Advance(match->length);
  return match->code;
}

Value ReadScalar(TextCursor& cursor) {
  if (cursor.Peek() == '"') return Value::Text(ReadText(cursor));
  if (cursor.Peek() == '#') return Value::Error(ReadError(cursor));
  if (IsNumberAhead(cursor)) return Value::Number(ReadNumber(cursor));
  const std::size_t start = cursor.Position();
  if (cursor.Peek() == '-' || cursor.Peek() == '+') {
    const bool negative = cursor.Peek() == '-';
    cursor.Advance();
    if (!IsNumberAhead(cursor)) cursor.FailExpecting("digits after the sign");
    const double number = ReadNumber(cursor);
    return Value::Number(negative ? -number : number);
  }
  const std::string_view word = ReadWord(cursor);
  if (EqualsIgnoringCase(word, "true")) return Value::Boolean(true);
  if (EqualsIgnoringCase(word, "false")) return Value::Boolean(false);
  if (EqualsIgnoringCase(word, "empty")) return Value::Empty();
  cursor.MoveTo(start);
  cursor.Fail("expected a number, a text in quotes, TRUE, FALSE, an error or empty, found " +
              (word.empty() ? cursor.Found() : "'" + std::string(word) + "'"));
}

ArrayPtr ReadArrayConstant(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  if (!cursor.Accept('{')) cursor.FailExpecting("'{'");
  std::vector<Value> elements;
  std::size_t rows = 1, columns = 0;
  for (;;) {
    cursor.SkipBlanks();
    elements.push_back(ReadScalar(cursor));
    cursor.SkipBlanks();
    if (cursor.Accept(',')) continue;
    const std::size_t length = elements.size() - (rows - 1) * columns;
    if (rows == 1) columns = length;
    if (length != columns)
      cursor.Fail("expected " + std::to_string(columns) + " elements in row " + std::to_string(rows) +
                  " of the array, as in its first row, found " + std::to_string(length));
    if (cursor.Accept('}')) break;
    if (!cursor.Accept(';')) cursor.FailExpecting("',', ';' or '}' in the array");
    ++rows;
  }
  if (rows > static_cast<std::size_t>(kXlMaxRows) || columns > static_cast<std::size_t>(kXlMaxColumns))
    cursor.FailAt(start, "expected an array of at most " + std::to_string(kXlMaxRows) + " x " +
                             std::to_string(kXlMaxColumns) + " elements, found " + std::to_string(rows) + " x " +
                             std::to_string(columns));
  ArrayBuilder builder(static_cast<std::int32_t>(rows), static_cast<std::int32_t>(columns));
  for (std::size_t i = 0; i < elements.size(); ++i)
    builder.Set(static_cast<std::int32_t>(i / columns), static_cast<std::int32_t>(i % columns), elements[i].AsCell());
  return builder.Finish();
}

}  // namespace qcalc
