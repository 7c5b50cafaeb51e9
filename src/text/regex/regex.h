// The one place where regular expressions are compiled and run.
#pragma once

#include <memory>

#include "frame/locale/collation.h"
#include "text/regex/regex_budget.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// An expression in Perl's syntax. ^ and $ match at line breaks inside a text too, and . matches one. One thread uses
/// it, for one text after the other, since it keeps what the library needs room for.
class Regex {
 public:
  /// Where case is ignored, it is that of every letter. CXlBadRegexException for what is no expression, and for what
  /// cannot be compiled safely.
  Regex(XStringView expression, LetterCase letterCase);
  Regex(Regex&&) noexcept;
  Regex& operator=(Regex&&) noexcept;
  ~Regex();

  /// Whether the expression is found anywhere in a text, which is viewed in place. CXlRegexLimitException when that
  /// takes more than the budget has, or more than the library allows.
  bool IsFoundIn(XStringView text, RegexBudget& budget) const;

 private:
  struct Compiled;
  std::unique_ptr<Compiled> compiled_;
};

}  // namespace quillmere::text
