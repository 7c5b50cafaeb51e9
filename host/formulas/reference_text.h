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

/// How far a formula stands from where it was written, each from 0 to one less than the sheet has.
struct CellShift {
  std::int32_t rows = 0;
  std::int32_t columns = 0;
  bool operator==(const CellShift&) const = default;

  /// So much further, in either direction and round the edges of the sheet.
  CellShift Plus(std::int64_t moreRows, std::int64_t moreColumns) const;
};

/// Which ends of an area go along when its formula is moved: those that stand there without a `$`.
struct MovingEnds {
  bool firstRow = false;
  bool lastRow = false;
  bool firstColumn = false;
  bool lastColumn = false;
  bool operator==(const MovingEnds&) const = default;
};

/// An area as it is written: of whole columns the rows do not move, of whole rows the columns.
struct AreaText {
  Area area;
  MovingEnds moving;

  /// As it is in a formula that was moved: ends that go over an edge of the sheet come in again at the other.
  AreaText Moved(CellShift shift) const;
  Area At(CellShift shift) const { return Moved(shift).area; }
};

/// Where a written reference points to before its sheet is found. Empty names mean the current book and sheet.
struct ReferenceText : AreaText {
  XString book;
  XString sheet;
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
std::optional<AreaText> TakeArea(TextCursor& cursor);

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
/// The same with a `$` before each end that does not move; `shift` is that of the formula.
std::string AreaToText(const AreaText& text, CellShift shift);
/// The same in the other style: `R3C2`, `R3C2:R9C3`, whole rows and columns too.
std::string AreaToR1C1(const Area& area);

}  // namespace qcalc
