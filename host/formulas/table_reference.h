// References to the columns of a table by their names: all reading of them.
#pragma once

#include "host/text/text_cursor.h"
#include "xlcall/xchar.h"

namespace qcalc {

/// `Table1`, `Table1[Column]`, `Table1[[#Headers],[First]:[Last]]` before the table is found.
struct TableReference {
  XString table;
  bool hasHeaders = false;   ///< `#Headers`, `#All`
  bool hasData = false;      ///< `#Data`, `#All`; also where no rows are named
  bool hasTotals = false;    ///< `#Totals`, `#All`
  bool isAll = false;        ///< `#All`: the headers and totals that there are
  bool isThisRow = false;    ///< `#This Row`, `@`: the row of the calling cell
  XString firstColumn = {};  ///< empty: all columns
  XString lastColumn = {};
};

/// Reads from the opening bracket behind a table's name to the closing one. In the name of a column `'` takes the
/// meaning from the sign behind it. Throws SyntaxError.
TableReference TakeTableReference(TextCursor& cursor, XString table);

}  // namespace qcalc
