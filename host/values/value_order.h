// How values are held against each other: the order of the operators, the equality of lookups and of results.
#pragma once

#include <compare>

#include "host/values/value.h"

namespace qcalc {

/// How the comparison operators order two cells, neither an error: number < text < FALSE < TRUE, texts as
/// CompareTexts has them, an empty cell as the other's 0, "" or FALSE, numbers by their 15 digits.
std::weak_ordering CompareCells(const CellView& left, const CellView& right);

/// Whether a lookup for `key` takes `cell`: same kind, numbers equal as doubles, texts equal but for case. Empty cells
/// and errors equal nothing.
bool EqualsKey(const CellView& key, const CellView& cell);

/// A lookup's key, a number, a text or a boolean, against a cell of its own kind; numbers as doubles, where the
/// comparison operators look at 15 digits.
std::partial_ordering CompareKey(const CellView& key, const CellView& cell);

/// Same kind and same content: texts and errors exactly, numbers as equal doubles (0 and -0 are equal, NaN equals NaN).
bool SameContent(const CellView& left, const CellView& right);

/// How two values are held against each other: `relative` and `absolute` are zero for exact equality. Numbers are equal
/// within `relative` of the expected one, or within `absolute` where 0 is expected.
struct Tolerance {
  double relative = 0;
  double absolute = 0;
};

/// Whether `actual` has the kind, shape and content of `expected`. References are compared as references: dereference
/// first to compare what they hold. A scalar never equals a 1 x 1 array.
bool SameValue(const Value& expected, const Value& actual, const Tolerance& tolerance = {});

}  // namespace qcalc
