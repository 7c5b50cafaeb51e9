#include "host/formulas/formula_reference.h"

#include <algorithm>
#include <string>
#include <utility>

#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/text/utf8.h"
#include "host/values/constant_parser.h"

namespace qcalc {

namespace {

// One end of an area: a column, a row, or both. Absent parts are -1.
struct End {
  std::int32_t row = -1;
  std::int32_t column = -1;
};

// The zero-based column of up to three letters; -1 when none stands there or it lies beyond the sheet.
std::int32_t TakeColumn(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  std::int32_t number = 0;
  cursor.Accept('$');
  const std::size_t letters = cursor.Position();
  while (IsLetter(cursor.Peek()) && cursor.Position() - letters < 3) {
    number = number * 26 + (SmallLetter(cursor.Peek()) - 'a' + 1);
    cursor.Advance();
  }
  if (number >= 1 && number <= kXlMaxColumns) return number - 1;
  cursor.MoveTo(start);
  return -1;
}

std::int32_t TakeRow(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  std::int32_t number = 0;
  cursor.Accept('$');
  if (cursor.Peek() != '0')
    for (; IsDigit(cursor.Peek()) && number <= kXlMaxRows; cursor.Advance())
      number = number * 10 + (cursor.Peek() - '0');
  if (number >= 1 && number <= kXlMaxRows) return number - 1;
  cursor.MoveTo(start);
  return -1;
}

// An end followed by more of a word is part of a name.
std::optional<End> TakeEnd(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  End end;
  end.column = TakeColumn(cursor);
  end.row = TakeRow(cursor);
  if ((end.column >= 0 || end.row >= 0) && !IsNameByte(cursor.Peek()) && cursor.Peek() != '$') return end;
  cursor.MoveTo(start);
  return std::nullopt;
}

bool IsCell(const End& end) { return end.row >= 0 && end.column >= 0; }

XString DecodeName(const TextCursor& cursor, std::size_t start, const std::string& bytes) {
  auto name = FromUtf8(bytes);
  if (!name) cursor.FailAt(start, "expected UTF-8 in the name of a sheet");
  return *std::move(name);
}

// Splits a name of the form [book]sheet.
SheetPrefix SplitBook(const TextCursor& cursor, std::size_t start, const std::string& name) {
  const std::size_t close = name.find(']');
  if (name.empty() || name[0] != '[') return {{}, DecodeName(cursor, start, name)};
  if (close == std::string::npos || close == 1 || close + 1 == name.size())
    cursor.FailAt(start, "expected [Book]Sheet before '!'");
  return {DecodeName(cursor, start, name.substr(1, close - 1)), DecodeName(cursor, start, name.substr(close + 1))};
}

SheetPrefix TakeQuotedPrefix(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  cursor.Advance();
  std::string name;
  for (;;) {
    if (cursor.AtEnd()) cursor.FailAt(start, "expected a closing ' for the name of a sheet, found the end");
    const char byte = cursor.Peek();
    cursor.Advance();
    if (byte == '\'' && !cursor.Accept('\'')) break;
    name += byte;
  }
  if (name.empty()) cursor.FailAt(start, "expected the name of a sheet between the quotes");
  if (!cursor.Accept('!')) cursor.FailExpecting("'!' after the name of a sheet");
  return SplitBook(cursor, start, name);
}

}  // namespace

std::optional<Area> TakeArea(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  const auto first = TakeEnd(cursor);
  if (!first) return std::nullopt;
  const std::size_t behindFirst = cursor.Position();
  std::optional<End> second;
  if (cursor.Accept(':')) second = TakeEnd(cursor);
  if (!second) {
    // The colon may belong to a range between a cell and something else.
    cursor.MoveTo(IsCell(*first) ? behindFirst : start);
    if (!IsCell(*first)) return std::nullopt;
    return Area{first->row, first->row, first->column, first->column};
  }
  const bool sameForm = (first->row >= 0) == (second->row >= 0) && (first->column >= 0) == (second->column >= 0);
  if (!sameForm) {
    cursor.MoveTo(IsCell(*first) ? behindFirst : start);
    if (!IsCell(*first)) return std::nullopt;
    return Area{first->row, first->row, first->column, first->column};
  }
  Area area{0, kXlMaxRows - 1, 0, kXlMaxColumns - 1};
  if (first->row >= 0) std::tie(area.firstRow, area.lastRow) = std::minmax({first->row, second->row});
  if (first->column >= 0) std::tie(area.firstColumn, area.lastColumn) = std::minmax({first->column, second->column});
  return area;
}

std::optional<SheetPrefix> TakeSheetPrefix(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  if (cursor.Accept('!')) return SheetPrefix{};
  if (cursor.Peek() == '\'') return TakeQuotedPrefix(cursor);
  if (cursor.Peek() == '[')
    while (!cursor.AtEnd() && cursor.Peek() != ']' && cursor.Peek() != '\n') cursor.Advance();
  cursor.Accept(']');
  while (!cursor.AtEnd() && IsNameByte(cursor.Peek())) cursor.Advance();
  const std::string name(cursor.Slice(start));
  if (!name.empty() && cursor.Accept('!')) return SplitBook(cursor, start, name);
  cursor.MoveTo(start);
  return std::nullopt;
}

}  // namespace qcalc
