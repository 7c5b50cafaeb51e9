// How two cell values stand to each other: the total order of any two values, and the comparison of a table's cell with
// the value looked for. No tolerance between numbers, no conversion between types.
#pragma once

#include "frame/text/fold_case.h"
#include "frame/values/xl_oper.h"

namespace quillmere {

/// The total order of any two values, -1, 0 or +1; null is an absent value and comes before all others. Kinds come in
/// the order of their codes (numbers, texts, booleans, references, errors, arrays, missing, empty); numbers of one kind
/// by value; the shorter text comes first whatever its letters, equally long ones by unit, with regard to case, up to a
/// NUL; arrays by rows, columns, then elements row by row; areas by columns before rows. An array's element that is no
/// single cell is "Bad XLOPER type".
int CompareOpers(const XLOPER12* a, const XLOPER12* b);

/// A value looked for, made ready once, so that the work per row is small. It views what it was made from.
struct PreparedLookupValue {
  XLOPER12 value;    ///< as passed
  XStringView text;  ///< of a text value; folded unless case counts
  bool isText;
  bool caseSensitive;
};

/// Makes a value ready. `folded` is room for the folded text, as many units as a text value has; it is not needed when
/// case counts, and must outlive the result.
PreparedLookupValue PrepareLookupValue(const XLOPER12& value, bool caseSensitive, XCHAR* folded);

/// Where a table's cell stands to the value looked for: -1 before it, 0 equal, +1 after it. All that is no text comes
/// before every text and is ordered by CompareOpers; texts are in dictionary order, by unit, a prefix first, folded
/// unless case counts. What is no single cell is "Bad XLOPER type".
int CompareLookupCell(const XLOPER12& cell, const PreparedLookupValue& lookup);

/// Whether CompareLookupCell gives 0; quicker. What is no single cell is merely not equal to a single value.
inline bool EqualsLookupValue(const XLOPER12& cell, const PreparedLookupValue& lookup) {
  const std::uint32_t type = TypeOf(cell);
  if (type != TypeOf(lookup.value)) return false;
  if (type == xltypeNum) return !(cell.val.num < lookup.value.val.num) && !(cell.val.num > lookup.value.val.num);
  if (type != xltypeStr) return CompareLookupCell(cell, lookup) == 0;
  const XStringView text = TextOf(cell);
  if (text.size() != lookup.text.size()) return false;
  return lookup.caseSensitive ? EqualExact(text, lookup.text) : EqualFolded(text, lookup.text);
}

}  // namespace quillmere
