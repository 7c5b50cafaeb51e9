// The little language of criteria: operators, keywords and flags.
#pragma once

#include "criteria/criterion.h"

namespace quillmere::criteria {

/// Reads one criterion as it was written, a single value of any type. It never fails: a text that is nothing else is
/// looked for as it stands. What it gives is yet to be prepared. What is no single cell is "Bad XLOPER type".
///
/// A text is read from its front: "¬" negates, then "&" joins; then at most one operator, behind which all is value;
/// or, without one, a keyword in any case, which must be the whole text.
Criterion ParseCriterion(const XLOPER12& crit);

}  // namespace quillmere::criteria
