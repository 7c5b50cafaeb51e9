#include "host/formulas/r1c1_text.h"

#include "host/text/text_cursor.h"

namespace qcalc {

namespace {

// Takes `R3`, `C[-1]` or the letter alone where it stands, from `base` on where it is relative; zero-based.
std::optional<std::int32_t> TakeLine(TextCursor& cursor, char letter, std::int32_t base) {
  const std::size_t begin = cursor.Position();
  if (SmallLetter(cursor.Peek()) != letter) return std::nullopt;
  cursor.Advance();
  const bool isRelative = cursor.Accept('[');
  const bool isNegative = isRelative && cursor.Accept('-');
  std::int32_t number = 0;
  const std::size_t start = cursor.Position();
  for (; IsDigit(cursor.Peek()) && number <= kXlMaxRows; cursor.Advance()) number = number * 10 + (cursor.Peek() - '0');
  const bool hasDigits = cursor.Position() > start;
  if (isRelative && (!hasDigits || !cursor.Accept(']'))) {
    cursor.MoveTo(begin);
    return std::nullopt;
  }
  if (!isRelative && hasDigits) return number - 1;
  return base + (isNegative ? -number : number);
}

// `R1C1`, `R[2]C[-1]`, `R3`, `C4`, two of them with a colon between.
std::optional<Area> TakeR1C1(TextCursor& cursor, const Area& caller) {
  std::optional<Area> whole;
  do {
    const auto row = TakeLine(cursor, 'r', caller.firstRow), column = TakeLine(cursor, 'c', caller.firstColumn);
    if (!row && !column) return std::nullopt;
    const Area area{row.value_or(0), row.value_or(kXlMaxRows - 1), column.value_or(0),
                    column.value_or(kXlMaxColumns - 1)};
    const bool isSecond = whole.has_value();
    whole = isSecond ? whole->Around(area) : area;
    if (isSecond) break;
  } while (cursor.Accept(':'));
  return cursor.AtEnd() && whole->IsOnSheet() ? whole : std::nullopt;
}

}  // namespace

std::optional<ReferenceText> ParseR1C1(std::string_view text, const Area& base) {
  try {
    TextCursor cursor(text);
    ReferenceText reference;
    if (auto prefix = TakeSheetPrefix(cursor)) {
      reference.book = std::move(prefix->book);
      reference.sheet = std::move(prefix->sheet);
    }
    const auto area = TakeR1C1(cursor, base);
    if (!area) return std::nullopt;
    reference.area = *area;
    return reference;
  } catch (const SyntaxError&) {
    return std::nullopt;
  }
}

}  // namespace qcalc
