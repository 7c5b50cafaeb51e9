// The one place where regular expressions are compiled and run.
#pragma once

#include <cstddef>
#include <memory>

#include "frame/locale/collation.h"
#include "text/regex/regex_budget.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// How much of a text an expression must match.
enum class RegexExtent { kAnyPart, kWhole };

/// An expression in Perl's syntax. ^ and $ match at line breaks inside a text too, and . matches one. One thread uses
/// it, for one text after the other, since it keeps what matching needs room for. Ordinary
/// expressions are matched in a time that grows with the text alone, all others by the library.
class Regex {
 public:
  /// Where case is ignored, it is that of every letter. CXlBadRegexException for what is no expression, and for what
  /// cannot be compiled safely.
  Regex(XStringView expression, LetterCase letterCase);
  Regex(Regex&&) noexcept;
  Regex& operator=(Regex&&) noexcept;
  ~Regex();

  // Texts are viewed in place. CXlRegexLimitException when matching one takes more than the budget has, or more than
  // the library allows.

  /// Whether the expression is found anywhere in a text.
  bool IsFoundIn(XStringView text, RegexBudget& budget) const;
  /// Whether it matches the whole of a text.
  bool IsWholeOf(XStringView text, RegexBudget& budget) const;
  /// The one or the other for each of several texts.
  void AreMatched(RegexExtent extent, const XStringView* texts, std::size_t count, bool* answers,
                  RegexBudget& budget) const;

 private:
  friend class RegexMatches;
  struct Compiled;
  std::unique_ptr<Compiled> compiled_;
};

}  // namespace quillmere::text
