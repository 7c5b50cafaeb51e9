// What the texts that match an expression have in common, so that most others need no search.
#pragma once

#include <cstddef>

#include "frame/locale/collation.h"
#include "text/quick_reject.h"
#include "text/regex/regex.h"
#include "text/regex/required_run.h"
#include "text/unit_pairs.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// The length, the literal units at the anchored ends and those side by side of an expression that is a plain row of
/// units, classes and their repeats. Of one with groups, alternatives or rarer things nothing is known.
class RequiredUnits {
 public:
  RequiredUnits(XStringView expression, LetterCase letterCase, RegexExtent extent);

  /// How many units are in a text that matches, at least.
  std::size_t Least() const noexcept { return least_; }

  /// What the UnitPairsOf such a text have, at least.
  UnitPairs Pairs() const noexcept { return pairs_; }

  /// False only for a text that does not match.
  bool AreIn(XStringView text) const {
    // Texts with line breaks may match at one of those, and letters beyond ASCII may have another case in it.
    return (ends_.Passes(text) || !IsPlain(text)) && run_.MayBeIn(text);
  }

 private:
  static bool IsPlain(XStringView text);
  bool Read(XStringView expression, LetterCase letterCase, RegexExtent extent);

  QuickReject ends_;
  RequiredRun run_;
  std::size_t least_ = 0;
  UnitPairs pairs_ = 0;
};

}  // namespace quillmere::text
