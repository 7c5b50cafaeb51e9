#include "text/regex/regex_pattern.h"

namespace quillmere::text {

RegexPattern::RegexPattern(XStringView expression, RegexBudget& budget, LetterCase letterCase)
    : regex_(expression, letterCase), required_(expression, letterCase), budget_(budget) {
  RejectBy({required_.Least(), XStringView::npos});
}

bool RegexPattern::MatchesInFull(XStringView text) const {
  return required_.AreIn(text) && regex_.IsFoundIn(text, budget_);
}

}  // namespace quillmere::text
