// Testing rows, where nothing but looking at them tells which are selected.
#pragma once

#include <span>

#include "criteria/criteria_columns.h"
#include "criteria/criteria_group.h"

namespace quillmere::criteria {

/// The rows of their runs that meet all tests of any of several groups, each of which has a test. The columns are read
/// once for all groups, in blocks. Of a group's tests the one that spares the most work is tried first, as the rows so
/// far have it. A callback that fails raises CXlErrorException with #VALUE!.
RowIntervals ScanRows(CriteriaColumns& columns, std::span<const NarrowedGroup> groups);

}  // namespace quillmere::criteria
