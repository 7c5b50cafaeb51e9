// Regular expressions as something that texts are matched against.
#pragma once

#include "frame/locale/collation.h"
#include "text/regex/regex.h"
#include "text/regex/regex_budget.h"
#include "text/regex/required_run.h"
#include "text/text_matcher.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// An expression that a text matches when it is found in it: anywhere, or as the whole of it. CXlBadRegexException for
/// one that does not compile; when the call is past its budget, matching a text that takes more than its own steps is
/// CXlRegexLimitException.
class RegexPattern : public TextMatcher {
 public:
  RegexPattern(XStringView expression, RegexBudget& budget, LetterCase letterCase = LetterCase::kIgnored,
               RegexExtent extent = RegexExtent::kAnyPart);

  const Regex& Expression() const noexcept { return regex_; }
  RegexBudget& Budget() const noexcept { return budget_; }

 private:
  bool MatchesInFull(XStringView text) const override;
  void MatchInFull(const XStringView* texts, std::size_t count, bool* matches) const override;

  Regex regex_;
  RequiredRun run_;  ///< that every text has which matches
  RegexBudget& budget_;
  RegexExtent extent_;
};

}  // namespace quillmere::text
