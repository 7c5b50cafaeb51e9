// Bisection of sorted arrays, many keys side by side.
#pragma once

#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"
#include "lookup/lookup_keys.h"
#include "table/cell_tuples.h"

namespace quillmere::lookup {

/// Adds the wanted rows of every key; `rules.order` is one of the sorted ones.
void BisectArray(const RowTuples& rows, const LookupKeys& keys, const MatchRules& rules, std::int32_t position,
                 FoundRows& found);

}  // namespace quillmere::lookup
