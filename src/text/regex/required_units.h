// What all texts that match an expression have in common, so that most others need no search.
#pragma once

#include <cstddef>

#include "frame/locale/collation.h"
#include "frame/text/fold_case.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// The literal units of an expression that is a plain row of units, classes and their repeats: every text that it is
/// found in has them, in that order. Of an expression with groups, alternatives or rarer things nothing is known.
class RequiredUnits {
 public:
  RequiredUnits(XStringView expression, LetterCase letterCase);

  /// How many units are in a text in which the expression is found, at least.
  std::size_t Least() const noexcept { return least_; }

  /// False only for a text in which the expression is not found. It is told of texts of printable ASCII units alone:
  /// others may have line breaks, where ^ and $ match, or letters whose other case is in ASCII.
  bool AreIn(XStringView text) const {
    if (units_.empty()) return true;
    std::size_t met = 0;
    for (const XCHAR unit : text) {
      if (!IsPlain(unit)) return true;
      if (met < units_.size() && units_[met] == Folded(unit)) ++met;
    }
    return met == units_.size() && (!begins_ || units_.front() == Folded(text.front())) &&
           (!ends_ || units_.back() == Folded(text.back()));
  }

 private:
  static bool IsPlain(XCHAR unit) noexcept { return unit >= 0x20 && unit < 0x7F; }
  XCHAR Folded(XCHAR unit) const noexcept { return anyCase_ ? FoldUnit(unit) : unit; }
  bool Read(XStringView expression);

  bool anyCase_;
  XString units_;  ///< folded where case is ignored
  std::size_t least_ = 0;
  bool begins_ = false;  ///< whether a text begins with the first unit
  bool ends_ = false;    ///< whether it ends with the last one
};

}  // namespace quillmere::text
