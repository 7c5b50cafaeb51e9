// Building the result of a lookup, the last of its three steps.
#pragma once

#include "frame/values/xl_oper.h"
#include "lookup/found_rows.h"
#include "lookup/lookup_arguments.h"

namespace quillmere::lookup {

/// The values of the answer columns, or the row positions (from 1), one row per row found. A key without a match gives
/// `notFound` in every column. A single value is no array. Cells of a reference are read one by one.
CXlOper BuildLookupResult(const LookupPlan& plan, const FoundRows& found, const XLOPER12& notFound);

}  // namespace quillmere::lookup
