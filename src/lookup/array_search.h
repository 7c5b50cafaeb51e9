// Searching an array: everything is done here, Excel is never called.
#pragma once

#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"
#include "lookup/lookup_keys.h"

namespace quillmere::lookup {

/// The wanted rows of every key. Sorted arrays are bisected; in unsorted ones, and where any key has wildcards, one or
/// two keys are scanned for and more are found by an index. A text key with wildcards matches text cells by its
/// pattern.
FoundRows SearchArray(const LookupPlan& plan, const LookupKeys& keys, const MatchRules& rules);

}  // namespace quillmere::lookup
