// Where a cell stands to the value of a criterion.
#pragma once

#include "criteria/criterion.h"

namespace quillmere::criteria {

/// Whether two numbers count as one: finite numbers when they differ by less than five units of the double's precision
/// relative to either, 0 and the smallest numbers likewise; infinities when they have one sign. A number that is none
/// equals nothing.
bool NumbersMeet(double a, double b) noexcept;

/// -1, 0 or +1 as a cell comes before, meets or comes behind the value of a prepared criterion, in ascending order;
/// descending (`direction` -1) the other way round. Types that the value is compared with are compared by value: texts
/// in the dictionary order of CompareFolded, booleans FALSE first, errors by code. All others are ordered by type:
/// numbers, texts, booleans, errors, empty cells. What is no single cell is "Bad XLOPER type".
int CompareCell(const Criterion& criterion, const XLOPER12& cell, int direction);

}  // namespace quillmere::criteria
