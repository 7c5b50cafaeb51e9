// Texts with wildcards, as MATCH and VLOOKUP look for them.
#pragma once

#include <cstddef>
#include <vector>

#include "xlcall/xchar.h"

namespace qcalc {

/// `*` stands for any run of units, `?` for one, `~` takes the meaning from `*`, `?` and `~`. Case does not count.
class LookupPattern {
 public:
  /// A `~` before anything else, or at the end, is dropped: so Excel's users report, though not of every version.
  explicit LookupPattern(XStringView text);

  bool HasWildcards() const { return hasWildcards_; }
  /// Without wildcards: the text that it stands for, its case folded.
  XString Literal() const;
  /// Whether the whole text fits.
  bool Matches(XStringView text) const { return MatchesAt(text, 0, true); }
  /// The first place from `start` on where a part of the text begins that fits; npos when there is none.
  std::size_t FindIn(XStringView text, std::size_t start) const;

 private:
  enum class Kind { kUnit, kOne, kRun };
  struct Element {
    Kind kind;
    XCHAR unit;  ///< folded, of kUnit
  };

  bool MatchesAt(XStringView text, std::size_t unit, bool toTheEnd, bool* missedBehindRun = nullptr) const;

  std::vector<Element> elements_;
  bool hasWildcards_ = false;
};

}  // namespace qcalc
