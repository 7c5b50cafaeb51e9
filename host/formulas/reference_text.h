// References and names of sheets as they are written: all reading and writing of them.
#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

#include "host/text/syntax_error.h"
#include "host/values/area.h"

namespace qcalc {

class TextCursor;

/// Where a written reference points to before its sheet is found. Empty names mean the current book and sheet.
struct ReferenceText {
  XString book;
  XString sheet;
  Area area;
};

/// Reads one reference that takes up the whole of `text` but for blanks around it: `A1`, `$B$2:C9`, `A:A`, `3:5`,
/// `Data!A1`, `'My sheet'!A1`, `[Book]Sheet!A1`, a leading "!" alone for the current sheet.
Parsed<ReferenceText> ParseReference(std::string_view text);

/// As ParseReference, also for several areas in parentheses: `(A1:A3,C1)`.
Parsed<std::vector<ReferenceText>> ParseReferences(std::string_view text);

/// Reads a row range `3:5`, or one row `3`; zero-based rows in the area, over all columns.
Parsed<Area> ParseRows(std::string_view text);

/// Reads `A1`, `$B$2:C9`, `A:A`, `3:5` where one stands and moves behind it; nothing, and no movement, where none does.
/// Ends may be written in either order.
std::optional<Area> TakeArea(TextCursor& cursor);

/// What stands before a "!".
struct SheetPrefix {
  XString book;
  XString sheet;  ///< empty for a leading "!" alone: the current sheet
};

/// Reads `Data!`, `'My sheet'!`, `[Book]Sheet!`, `'[My book]My sheet'!` or `!` where one stands; nothing, and no
/// movement, where none does. Throws SyntaxError for a quoted name that is not closed or not followed by "!".
std::optional<SheetPrefix> TakeSheetPrefix(TextCursor& cursor);

/// `[Book1]Sheet1`.
XString FullSheetName(XStringView book, XStringView sheet);

/// Splits `[Book1]Sheet1` into book and sheet; the book is empty when no brackets stand there.
std::pair<XStringView, XStringView> SplitSheetName(XStringView fullName);

/// A sheet's full name as it stands before "!": in quotes unless it is a plain word.
std::string QualifiedSheetName(XStringView fullName);

/// `B3`, `B3:C9`, `A:A`, `3:5`; with `absolute` `$B$3`. No sheet.
std::string AreaToText(const Area& area, bool absolute = false);
/// The same in the other style: `R3C2`, `R3C2:R9C3`, whole rows and columns too.
std::string AreaToR1C1(const Area& area);

}  // namespace qcalc
