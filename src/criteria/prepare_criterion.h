// Making a criterion ready for a column of cells.
#pragma once

#include "criteria/criterion.h"
#include "text/regex/regex_budget.h"

namespace quillmere::criteria {

/// Makes ready what ParseCriterion read: its masks, its pattern, and, of a text that is compared, the number that
/// Excel's VALUE reads in it, if any. VALUE is asked once; a call of it that fails leaves the text. Expressions share
/// `budget`, which must outlive the criterion.
void PrepareCriterionValue(Criterion& criterion, text::RegexBudget& budget);

}  // namespace quillmere::criteria
