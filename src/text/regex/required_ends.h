// What the texts that match an expression have in common at their ends, so that most others need no search.
#pragma once

#include <cstddef>

#include "frame/locale/collation.h"
#include "text/quick_reject.h"
#include "text/regex/regex.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// The length and the literal units at the anchored ends of an expression that is a plain row of units, classes and
/// their repeats. Of an expression with groups, alternatives or rarer things nothing is known.
class RequiredEnds {
 public:
  RequiredEnds(XStringView expression, LetterCase letterCase, RegexExtent extent);

  /// How many units are in a text that matches, at least.
  std::size_t Least() const noexcept { return least_; }

  /// False only for a text that does not match. It is told of texts of printable ASCII units alone:
  /// others may have line breaks, where ^ and $ match, or letters whose other case is in ASCII.
  bool MayBeOf(XStringView text) const { return ends_.Passes(text) || !IsPlain(text); }

 private:
  static bool IsPlain(XStringView text);
  bool Read(XStringView expression, LetterCase letterCase, RegexExtent extent);

  QuickReject ends_;
  std::size_t least_ = 0;
};

}  // namespace quillmere::text
