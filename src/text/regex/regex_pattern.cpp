#include "text/regex/regex_pattern.h"

namespace quillmere::text {

RegexPattern::RegexPattern(XStringView expression, RegexBudget& budget, LetterCase letterCase, RegexExtent extent)
    : regex_(expression, letterCase), required_(expression, letterCase, extent), budget_(budget), extent_(extent) {
  RejectBy({required_.Least(), XStringView::npos});
  RequirePairs(required_.Pairs());
}

bool RegexPattern::MatchesInFull(XStringView text) const {
  if (!required_.AreIn(text)) return false;
  return extent_ == RegexExtent::kWhole ? regex_.IsWholeOf(text, budget_) : regex_.IsFoundIn(text, budget_);
}

}  // namespace quillmere::text
