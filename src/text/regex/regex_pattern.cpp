#include "text/regex/regex_pattern.h"

#include "text/regex/required_units.h"

namespace quillmere::text {

RegexPattern::RegexPattern(XStringView expression, RegexBudget& budget, LetterCase letterCase, RegexExtent extent)
    : regex_(expression, letterCase), budget_(budget), extent_(extent) {
  const RequiredUnits required(expression, letterCase, extent);
  RejectBy(required.Reject());
  RequirePairs(required.Pairs());
  run_ = required.Run();
}

bool RegexPattern::MatchesInFull(XStringView text) const {
  if (!run_.MayBeIn(text)) return false;
  return extent_ == RegexExtent::kWhole ? regex_.IsWholeOf(text, budget_) : regex_.IsFoundIn(text, budget_);
}

void RegexPattern::MatchInFull(const XStringView* texts, std::size_t count, bool* matches) const {
  XStringView left[kTextsAtOnce];
  bool answers[kTextsAtOnce];
  std::size_t leftCount = 0;
  for (std::size_t text = 0; text < count; ++text) {
    matches[text] = run_.MayBeIn(texts[text]);
    left[leftCount] = texts[text];
    leftCount += matches[text];
  }
  regex_.AreMatched(extent_, left, leftCount, answers, budget_);
  const bool* answer = answers;
  for (std::size_t text = 0; text < count; ++text)
    if (matches[text]) matches[text] = *answer++;
}

}  // namespace quillmere::text
