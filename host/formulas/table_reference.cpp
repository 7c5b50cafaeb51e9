#include "host/formulas/table_reference.h"

#include <string>
#include <utility>

#include "host/text/utf8.h"

namespace qcalc {

namespace {

XString TakeColumnName(TextCursor& cursor) {
  const std::size_t start = cursor.Position();
  std::string name;
  while (cursor.Peek() != ']') {
    if (cursor.AtEnd() || cursor.Peek() == '[') cursor.FailExpecting("']' after the name of a column");
    if (cursor.Peek() == '\'') cursor.Advance();
    name += cursor.Peek();
    cursor.Advance();
  }
  auto decoded = FromUtf8(name);
  if (!decoded) cursor.FailAt(start, "expected UTF-8 in the name of a column");
  if (decoded->empty()) cursor.FailExpecting("the name of a column");
  return *std::move(decoded);
}

void TakeRows(TextCursor& cursor, TableReference& reference) {
  constexpr std::pair<std::string_view, void (*)(TableReference&)> kWords[] = {
      {"#All", [](TableReference& rows) { rows.isAll = rows.hasHeaders = rows.hasData = rows.hasTotals = true; }},
      {"#Data", [](TableReference& rows) { rows.hasData = true; }},
      {"#Headers", [](TableReference& rows) { rows.hasHeaders = true; }},
      {"#Totals", [](TableReference& rows) { rows.hasTotals = true; }},
      {"#This Row", [](TableReference& rows) { rows.isThisRow = true; }}};
  for (const auto& [word, set] : kWords)
    if (EqualsIgnoringCase(cursor.Rest().substr(0, word.size()), word) && cursor.Peek(word.size()) == ']') {
      cursor.Advance(word.size());
      return set(reference);
    }
  cursor.FailExpecting("#All, #Data, #Headers, #Totals or #This Row");
}

void TakeClosing(TextCursor& cursor) {
  if (!cursor.Accept(']')) cursor.FailExpecting("']'");
}

// `[First]` or `[First]:[Last]`, or without brackets one column up to the closing bracket, which stays.
void TakeColumns(TextCursor& cursor, TableReference& reference) {
  const bool isBracketed = cursor.Accept('[');
  reference.firstColumn = reference.lastColumn = TakeColumnName(cursor);
  if (!isBracketed) return;
  TakeClosing(cursor);
  cursor.SkipBlanks();
  if (!cursor.Accept(':')) return;
  cursor.SkipBlanks();
  if (!cursor.Accept('[')) cursor.FailExpecting("'[' before the last column");
  reference.lastColumn = TakeColumnName(cursor);
  TakeClosing(cursor);
}

// `[#Headers],[#Data],[First]:[Last]`.
void TakeList(TextCursor& cursor, TableReference& reference) {
  do {
    cursor.SkipBlanks();
    if (cursor.Peek() != '[' || !reference.firstColumn.empty()) cursor.FailExpecting("']'");
    if (cursor.Peek(1) == '#') {
      cursor.Advance();
      TakeRows(cursor, reference);
      TakeClosing(cursor);
    } else {
      TakeColumns(cursor, reference);
    }
    cursor.SkipBlanks();
  } while (cursor.Accept(','));
}

}  // namespace

TableReference TakeTableReference(TextCursor& cursor, XString table) {
  TableReference reference{std::move(table)};
  cursor.Advance();
  cursor.SkipBlanks();
  if (cursor.Accept('@')) {
    reference.isThisRow = true;
    if (cursor.Peek() != ']') TakeColumns(cursor, reference);
  } else if (cursor.Peek() == '#') {
    TakeRows(cursor, reference);
  } else if (cursor.Peek() == '[') {
    TakeList(cursor, reference);
  } else if (cursor.Peek() != ']') {
    TakeColumns(cursor, reference);
  }
  cursor.SkipBlanks();
  TakeClosing(cursor);
  if (!reference.hasHeaders && !reference.hasTotals && !reference.isThisRow) reference.hasData = true;
  return reference;
}

}  // namespace qcalc
