// The Sorted argument of the lookup functions.
#pragma once

#include <cstdint>

#include "frame/values/xl_oper.h"

namespace quillmere {

enum class SortOrder : std::int8_t { kDescending = -1, kUnsorted = 0, kAscending = 1 };

/// Reads a Sorted argument. Numbers by the sign of their whole part; texts by their first three characters without
/// regard to case: ASC, TRU, YES ascending, DES descending; TRUE ascending. All else, also what is missing, is
/// unsorted.
SortOrder ParseSortOrder(const CXlOper& sorted);

}  // namespace quillmere
