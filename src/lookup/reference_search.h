// Searching cells of a sheet, with Excel's help where it can.
#pragma once

#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"
#include "lookup/lookup_keys.h"

namespace quillmere::lookup {

/// Whether Excel's VLOOKUP answers the whole lookup: one key of one part in the first column, one answer column, and
/// either an ascending table searched approximately for the last of equal rows, or an unsorted one without memory.
bool IsPlainVlookup(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules);

/// That answer, as Excel gives it: its own #N/A included.
CXlOper CallVlookup(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules);

/// The wanted rows of every key. Unsorted cells, and all cells where any key has wildcards, are searched by Excel's
/// MATCH for the first part of the key, the rows that it names being verified here; for regular expressions, and for
/// texts too long for MATCH, the lookup columns are read instead. A remembered row is tried first. Sorted cells are
/// searched by MATCH where it does just that, and by bisection, cell by cell, else. A callback that fails is
/// CXlErrorException with #VALUE!.
FoundRows SearchReference(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules);

}  // namespace quillmere::lookup
