// Searching an array: everything is done here, Excel is never called.
#pragma once

#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"
#include "lookup/lookup_keys.h"

namespace quillmere::lookup {

/// The wanted rows of every key. Sorted arrays are bisected, unless any key has wildcards. In unsorted ones, keys with
/// patterns are scanned for, many at a time; of the others one or two are, and more are found by an index. Wildcards
/// match text cells alone, regular expressions the text form of numbers and booleans too.
FoundRows SearchArray(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules);

}  // namespace quillmere::lookup
