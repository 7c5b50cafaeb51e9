// The references in the text of a formula, found without a parse.
#pragma once

#include <string_view>

#include "host/formulas/reference_text.h"
#include "host/text/text_cursor.h"
#include "host/values/constant_parser.h"
#include "host/values/literal.h"

namespace qcalc {

/// Moves behind a text or a name in quotes.
inline void SkipQuoted(TextCursor& cursor) {
  const char quote = cursor.Peek();
  const std::size_t end = cursor.Rest().find(quote, 1);
  cursor.Advance(end == std::string_view::npos ? cursor.Rest().size() : end + 1);
}

/// Moves behind the closing bracket of a book, or of what is named of a table.
inline void SkipBrackets(TextCursor& cursor) {
  int depth = 0;
  do {
    if (cursor.Peek() == '\'') cursor.Advance();
    if (cursor.Peek() == '[') ++depth;
    if (cursor.Peek() == ']') --depth;
    cursor.Advance();
  } while (depth > 0 && !cursor.AtEnd());
}

/// Moves behind a word, or a number with its exponent.
inline void SkipWord(TextCursor& cursor) {
  const auto skip = [&cursor] {
    while (cursor.Peek() == '$' || IsNameByte(cursor.Peek())) cursor.Advance();
  };
  const std::size_t start = cursor.Position();
  const bool isNumber = IsNumberAhead(cursor);
  skip();
  if (!isNumber || (cursor.Peek() != '+' && cursor.Peek() != '-')) return;
  const char last = cursor.Slice(start).back();
  if (last != 'E' && last != 'e') return;
  cursor.Advance();
  skip();
}

/// Takes a text apart that is, or may be, a formula: calls `onText(std::string_view)` for what stands before, between
/// and behind its references, without their sheets, and `onArea(const AreaText&)` for those, in their order.
template <typename OnText, typename OnArea>
void ScanAreas(std::string_view text, OnText&& onText, OnArea&& onArea) {
  TextCursor cursor(text);
  std::size_t start = 0;
  while (!cursor.AtEnd()) {
    const char byte = cursor.Peek();
    if (byte == '"' || byte == '\'') {
      SkipQuoted(cursor);
    } else if (byte == '[') {
      SkipBrackets(cursor);
    } else if (byte == '#') {
      const auto error = MatchErrorName(cursor.Rest());
      cursor.Advance(error ? error->length : 1);
    } else if (byte == '$' || IsNameByte(byte)) {
      const std::size_t word = cursor.Position();
      if (const auto area = TakeArea(cursor)) {
        onText(text.substr(start, word - start));
        onArea(*area);
        start = cursor.Position();
      } else {
        SkipWord(cursor);
      }
    } else {
      cursor.Advance();
    }
  }
  onText(text.substr(start));
}

}  // namespace qcalc
