#include "text/regex/regex_pattern.h"

namespace quillmere::text {

RegexPattern::RegexPattern(XStringView expression, RegexBudget& budget, LetterCase letterCase)
    : regex_(expression, letterCase), budget_(budget) {}

bool RegexPattern::MatchesInFull(XStringView text) const { return regex_.IsFoundIn(text, budget_); }

}  // namespace quillmere::text
