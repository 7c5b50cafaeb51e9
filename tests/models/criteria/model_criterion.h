// One criterion against one cell, by the words of the rules.
#pragma once

#include <vector>

#include "host/values/value.h"

namespace qcalc::criteria {

/// A criterion taken apart. Its texts are those of the value that it was read from.
struct Criterion {
  bool isNegated = false;
  bool isJoined = false;
  XString op;  ///< "<=", "~~" and the like, a word in capitals ("#N", "TRUE"), or "" for a plain value
  CellView value;
  double number = 0;            ///< that the value's text reads as, where `kinds` has numbers
  std::vector<CellKind> kinds;  ///< of the cells that it is compared with by value; the first is its own
};

/// What a CritN says: one criterion, or the elements of a list.
using Criteria = std::vector<Criterion>;

Criteria ReadCriteria(const Value& written);

/// Where the cell comes in ascending data compared with the criterion's value: below 0 before it, 0 equal, above 0
/// after.
int Compare(const CellView& cell, const Criterion& criterion);

/// Whether the cell meets the criterion, or any of a list. `first` is the first data cell of its column.
bool Meets(const CellView& cell, const Criteria& criteria, const CellView& first);

/// Whether the cells that meet it stand together in sorted data.
bool HasOrder(const Criteria& criteria);

/// The order of two cells in sorted data, numbers without tolerance: by kind, then by value.
int CompareCells(const CellView& a, const CellView& b);

/// Whether the cells count as equal: same kind, numbers within the tolerance, texts in any case of A to Z.
bool EqualCells(const CellView& a, const CellView& b);

}  // namespace qcalc::criteria
