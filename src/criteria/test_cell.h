// Whether a cell meets a criterion.
#pragma once

#include "criteria/criterion.h"

namespace quillmere::criteria {

/// Whether a cell meets a prepared criterion, its negation included. An expression that does not compile, or is past
/// the budget of the call, is met by no cell, negated or not. What is no single cell is "Bad XLOPER type".
bool TestCell(const Criterion& criterion, const XLOPER12& cell);

}  // namespace quillmere::criteria
