#include "host/formulas/reference_text.h"

#include <algorithm>
#include <string>
#include <tuple>
#include <utility>

#include "host/text/digits.h"
#include "host/text/letter_case.h"
#include "host/text/text_cursor.h"
#include "host/text/utf8.h"
#include "host/values/constant_parser.h"

namespace qcalc {

namespace {

// One end of an area: a column, a row, or both. Absent parts are -1.
struct End {
  std::int32_t row = -1;
  std::int32_t column = -1;
  bool rowMoves = false;
  bool columnMoves = false;
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

// An end followed by more of a word is part of a name; so is what stands before an opening bracket or a "!".
std::optional<End> TakeEnd(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  End end;
  const bool columnMoves = cursor.Peek() != '$';
  end.column = TakeColumn(cursor);
  end.columnMoves = end.column >= 0 && columnMoves;
  const bool rowMoves = cursor.Peek() != '$';
  end.row = TakeRow(cursor);
  end.rowMoves = end.row >= 0 && rowMoves;
  const char next = cursor.Peek();
  const bool isPartOfMore =
      IsNameByte(next) || (next != '\0' && std::string_view("$([!").find(next) != std::string_view::npos);
  if ((end.column >= 0 || end.row >= 0) && !isPartOfMore) return end;
  cursor.MoveTo(start);
  return std::nullopt;
}

bool IsCell(const End& end) { return end.row >= 0 && end.column >= 0; }

std::int32_t Wrapped(std::int64_t number, std::int32_t count) {
  const auto rest = static_cast<std::int32_t>(number % count);
  return rest < 0 ? rest + count : rest;
}

// A row or column where an area ends, and whether it moves.
using Edge = std::pair<std::int32_t, bool>;

void SetRows(AreaText& text, Edge one, Edge other) {
  const auto [low, high] = std::minmax({one, other});
  std::tie(text.area.firstRow, text.moving.firstRow) = low;
  std::tie(text.area.lastRow, text.moving.lastRow) = high;
}

void SetColumns(AreaText& text, Edge one, Edge other) {
  const auto [low, high] = std::minmax({one, other});
  std::tie(text.area.firstColumn, text.moving.firstColumn) = low;
  std::tie(text.area.lastColumn, text.moving.lastColumn) = high;
}

XString DecodeName(const TextCursor& cursor, std::size_t start, std::string_view bytes) {
  auto name = FromUtf8(bytes);
  if (!name) cursor.FailAt(start, "expected UTF-8 in the name of a sheet");
  return *std::move(name);
}

SheetPrefix PrefixOf(const TextCursor& cursor, std::size_t start, std::string_view bytes) {
  const XString name = DecodeName(cursor, start, bytes);
  const auto [book, sheet] = SplitSheetName(name);
  if (name.starts_with(XTEXT('[')) && (book.empty() || sheet.empty()))
    cursor.FailAt(start, "expected [Book]Sheet before '!'");
  return {XString(book), XString(sheet)};
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
  return PrefixOf(cursor, start, name);
}

// Runs a parser over the whole of the text and turns its throw into the error.
template <typename T, typename Parse>
Parsed<T> ParseWhole(std::string_view text, Parse parse) {
  try {
    TextCursor cursor(text);
    cursor.SkipBlanks();
    T result = parse(cursor);
    cursor.SkipBlanks();
    if (!cursor.AtEnd()) cursor.FailExpecting("the end of the reference");
    return result;
  } catch (SyntaxError& error) {
    return std::move(error);
  }
}

ReferenceText TakeReference(TextCursor& cursor) {
  ReferenceText reference;
  if (auto prefix = TakeSheetPrefix(cursor)) {
    reference.book = std::move(prefix->book);
    reference.sheet = std::move(prefix->sheet);
  }
  const auto area = TakeArea(cursor);
  if (!area)
    cursor.Fail("expected a reference such as A1, B2:C9, A:A, 3:5 or Data!A1, up to XFD1048576, found " +
                cursor.Found());
  static_cast<AreaText&>(reference) = *area;
  return reference;
}

// `A`, `XFD` of a zero-based column.
std::string ColumnToText(std::int32_t column) {
  std::string letters;
  for (std::int32_t number = column + 1; number > 0; number = (number - 1) / 26)
    letters.insert(letters.begin(), static_cast<char>('A' + (number - 1) % 26));
  return letters;
}

}  // namespace

CellShift CellShift::Plus(std::int64_t moreRows, std::int64_t moreColumns) const {
  return {Wrapped(rows + moreRows, kXlMaxRows), Wrapped(columns + moreColumns, kXlMaxColumns)};
}

AreaText AreaText::Moved(CellShift shift) const {
  if (shift == CellShift{}) return *this;
  const auto row = [&](std::int32_t end, bool moves) {
    return Edge(moves ? Wrapped(std::int64_t{end} + shift.rows, kXlMaxRows) : end, moves);
  };
  const auto column = [&](std::int32_t end, bool moves) {
    return Edge(moves ? Wrapped(std::int64_t{end} + shift.columns, kXlMaxColumns) : end, moves);
  };
  AreaText moved;
  SetRows(moved, row(area.firstRow, moving.firstRow), row(area.lastRow, moving.lastRow));
  SetColumns(moved, column(area.firstColumn, moving.firstColumn), column(area.lastColumn, moving.lastColumn));
  return moved;
}

std::optional<AreaText> TakeArea(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  const auto first = TakeEnd(cursor);
  if (!first) return std::nullopt;
  const std::size_t behindFirst = cursor.Position();
  std::optional<End> second;
  if (cursor.Accept(':')) second = TakeEnd(cursor);
  const bool isArea =
      second && (first->row >= 0) == (second->row >= 0) && (first->column >= 0) == (second->column >= 0);
  if (!isArea) {
    // The colon may belong to a range between a cell and something else.
    cursor.MoveTo(IsCell(*first) ? behindFirst : start);
    if (!IsCell(*first)) return std::nullopt;
    second = first;
  }
  AreaText text{{0, kXlMaxRows - 1, 0, kXlMaxColumns - 1}, {}};
  if (first->row >= 0) SetRows(text, {first->row, first->rowMoves}, {second->row, second->rowMoves});
  if (first->column >= 0) SetColumns(text, {first->column, first->columnMoves}, {second->column, second->columnMoves});
  return text;
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
  if (!name.empty() && cursor.Accept('!')) return PrefixOf(cursor, start, name);
  cursor.MoveTo(start);
  return std::nullopt;
}

Parsed<ReferenceText> ParseReference(std::string_view text) { return ParseWhole<ReferenceText>(text, TakeReference); }

Parsed<std::vector<ReferenceText>> ParseReferences(std::string_view text) {
  return ParseWhole<std::vector<ReferenceText>>(text, [](TextCursor& cursor) {
    std::vector<ReferenceText> references;
    const bool several = cursor.Accept('(');
    do {
      cursor.SkipBlanks();
      references.push_back(TakeReference(cursor));
      cursor.SkipBlanks();
    } while (several && cursor.Accept(','));
    if (several && !cursor.Accept(')')) cursor.FailExpecting("',' or ')'");
    return references;
  });
}

Parsed<Area> ParseRows(std::string_view text) {
  return ParseWhole<Area>(text, [](TextCursor& cursor) {
    const std::size_t start = cursor.Position();
    if (const auto area = TakeArea(cursor)) {
      if (area->area.Columns() == kXlMaxColumns) return area->area;
    } else if (const std::int32_t row = TakeRow(cursor); row >= 0) {
      return Area{row, row, 0, kXlMaxColumns - 1};
    }
    cursor.MoveTo(start);
    cursor.FailExpecting("rows such as 3:5 or 3, from 1 to 1048576");
  });
}

XString FullSheetName(XStringView book, XStringView sheet) {
  return XTEXT("[") + XString(book) + XTEXT("]") + XString(sheet);
}

std::pair<XStringView, XStringView> SplitSheetName(XStringView fullName) {
  const std::size_t close = fullName.find(XTEXT(']'));
  if (fullName.empty() || fullName[0] != XTEXT('[') || close == XStringView::npos) return {{}, fullName};
  return {fullName.substr(1, close - 1), fullName.substr(close + 1)};
}

std::string QualifiedSheetName(XStringView fullName) {
  const std::string name = ToUtf8(fullName);
  const bool isPlain = std::all_of(name.begin(), name.end(), [](char byte) {
    return IsLetter(byte) || IsDigit(byte) || std::string_view("_.[]").find(byte) != std::string_view::npos;
  });
  if (isPlain) return name;
  std::string quoted = "'";
  for (const char letter : name) quoted += letter == '\'' ? std::string("''") : std::string(1, letter);
  return quoted + "'";
}

std::string AreaToText(const Area& area, bool absolute) {
  return AreaToText({area, {!absolute, !absolute, !absolute, !absolute}}, CellShift{});
}

std::string AreaToText(const AreaText& text, CellShift shift) {
  const auto [area, moving] = text.Moved(shift);
  const auto row = [](std::int32_t number, bool moves) { return (moves ? "" : "$") + std::to_string(number + 1); };
  const auto column = [](std::int32_t number, bool moves) { return (moves ? "" : "$") + ColumnToText(number); };
  const std::string firstColumn = column(area.firstColumn, moving.firstColumn);
  const std::string lastColumn = column(area.lastColumn, moving.lastColumn);
  if (area.firstRow == 0 && area.lastRow == kXlMaxRows - 1) return firstColumn + ":" + lastColumn;
  const std::string firstRow = row(area.firstRow, moving.firstRow), lastRow = row(area.lastRow, moving.lastRow);
  if (area.firstColumn == 0 && area.lastColumn == kXlMaxColumns - 1) return firstRow + ":" + lastRow;
  const std::string first = firstColumn + firstRow, last = lastColumn + lastRow;
  return first == last ? first : first + ":" + last;
}

std::string AreaToR1C1(const Area& area) {
  const auto cell = [](std::int32_t row, std::int32_t column) {
    return "R" + std::to_string(row + 1) + "C" + std::to_string(column + 1);
  };
  const std::string first = cell(area.firstRow, area.firstColumn);
  return area.IsOneCell() ? first : first + ":" + cell(area.lastRow, area.lastColumn);
}

}  // namespace qcalc
