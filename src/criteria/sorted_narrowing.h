// Narrowing the rows by the criteria about sorted columns, without looking at most of them.
#pragma once

#include <cstdint>

#include "criteria/criteria_columns.h"
#include "criteria/criteria_group.h"

namespace quillmere::criteria {

/// Searches the sorted columns of a group of criteria by bisection, each within the rows left by those before it, and
/// makes tests of the criteria that could not be searched: those of columns that are not sorted, those without an
/// order, and those whose search would cost more than testing the rows. `rows` is the height of the data.
///
/// The rows that result are those of a scan when the cells of each sorted column, where all sorted columns before it
/// are equal, follow each other as CompareCell orders them for its criterion. In other data the bisection decides.
NarrowedGroup NarrowGroup(CriteriaGroup&& group, const CriteriaColumns& columns, std::int32_t rows);

}  // namespace quillmere::criteria
