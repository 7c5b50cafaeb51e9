// The matches of an expression in one text, one after the other.
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

#include "text/bounded_text.h"
#include "text/regex/regex.h"
#include "text/regex/regex_budget.h"
#include "text/regex/regex_steps.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// Where an expression was found.
struct RegexMatch {
  std::size_t place;  ///< of its first unit, counted from 0
  std::size_t units;  ///< 0 for an empty match
};

/// Where the next search begins when a match was empty.
enum class AfterEmptyMatch {
  kStep,       ///< one unit further on
  kSamePlace,  ///< at the same place, for a match that is not empty: so the library replaces
};

/// Walks through a text from match to match. The steps that a text has of its own are those of the whole walk. The
/// expression serves one walk at a time; text and budget must outlive it.
class RegexMatches {
 public:
  RegexMatches(const Regex& regex, XStringView text, AfterEmptyMatch afterEmpty, RegexBudget& budget);

  /// The next match, which begins where the one before ended, or behind; nothing when there is none.
  /// CXlRegexLimitException as for Regex.
  std::optional<RegexMatch> Next();

  /// The n-th match from here on, 1 for the next.
  std::optional<RegexMatch> Nth(std::int32_t nth) {
    std::optional<RegexMatch> match = Next();
    while (match && --nth > 0) match = Next();
    return match;
  }

  /// Appends what a format in Perl's syntax ($& is the match, $1 its first group) makes of the latest match. The
  /// library looks at the unit behind the format's last, which must be there, and copies what it likes of it: none of
  /// the host's.
  void AppendFormatted(const XString& format, BoundedText& to);

 private:
  std::optional<RegexMatch> NextByLibrary();

  const Regex& regex_;
  XStringView text_;
  AfterEmptyMatch afterEmpty_;
  RegexSteps steps_;
  std::size_t next_ = 0;
  bool wasEmpty_ = false;
  std::size_t from_ = 0;     ///< where the latest search began
  bool needsUnits_ = false;  ///< whether it was for no empty match there
  bool hasGroups_ = false;   ///< whether the library found it
};

}  // namespace quillmere::text
