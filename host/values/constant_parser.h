// The constants that literals and formulas have in common, read at a cursor.
#pragma once

#include "host/text/text_cursor.h"
#include "host/values/value.h"

namespace qcalc {

/// Each reads one constant at the cursor and leaves it behind it; throws SyntaxError when what stands there does not
/// read on.

/// Digits with an optional point and exponent, no sign: the nearest double, all digits taken in, but 0 below the range.
double ReadNumber(TextCursor& cursor);
/// A text in quotes, quotes doubled, of no more units than a cell holds. Units that cannot be seen stand behind the
/// quotes by their numbers in four digits, and quotes may follow again: `"two"U+000A"lines"`.
XString ReadText(TextCursor& cursor);
/// What stands before the number of a unit.
constexpr std::string_view kUnitMark = "U+";
/// `#N/A` and its like.
std::int32_t ReadError(TextCursor& cursor);
/// `{1,"a";TRUE,#N/A}`; elements may be signed numbers and `empty`.
ArrayPtr ReadArrayConstant(TextCursor& cursor);
/// Number with or without sign, text, boolean, error or `empty`.
Value ReadScalar(TextCursor& cursor);

/// Whether a number begins here: a digit, or a point and a digit.
bool IsNumberAhead(const TextCursor& cursor);
/// A byte that may stand in a name: letter, digit, `_`, `.`, `\`, `?` or part of a letter beyond ASCII.
bool IsNameByte(char byte);

}  // namespace qcalc
