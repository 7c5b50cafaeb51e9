// What the texts that match an expression have in common, so that most others need no search.
#pragma once

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

  /// How long such a text is, at least, and what stands at its ends.
  const QuickReject& Reject() const noexcept { return reject_; }
  /// A run of units in it.
  const RequiredRun& Run() const noexcept { return run_; }
  /// What the UnitPairsOf such a text have, at least.
  UnitPairs Pairs() const noexcept { return pairs_; }

 private:
  bool Read(XStringView expression, LetterCase letterCase, RegexExtent extent);

  QuickReject reject_;
  RequiredRun run_;
  UnitPairs pairs_ = 0;
};

}  // namespace quillmere::text
