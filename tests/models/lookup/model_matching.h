// When a cell is what a key looks for: by Excel's MATCH, by a pattern, by plain equality.
#pragma once

#include "host/values/value.h"

namespace qcalc::lookup {

bool HasWildcards(const CellView& key);

/// Whether Excel's exact MATCH finds the key in that cell: same type, letters of any case, * ? and ~ in a text key.
bool ExcelMatches(const CellView& cell, const CellView& key);

/// Whether a text cell fits a key with wildcards where ~ has no meaning.
bool FitsPattern(const CellView& cell, const CellView& key, bool caseSensitive);

/// Whether the texts are equal when A to Z count as a to z.
bool EqualLabels(XStringView a, XStringView b);

/// A to Z as a to z.
XCHAR FoldLatin(XCHAR unit);

}  // namespace qcalc::lookup
