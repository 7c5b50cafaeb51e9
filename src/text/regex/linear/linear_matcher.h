// Matching without going back, for expressions that allow it.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>

#include "text/regex/linear/automaton.h"
#include "text/regex/linear/program.h"
#include "text/regex/linear/unit_classes.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// Matches texts against an expression that is regular in the strict sense, in a time that grows with the text alone,
/// whatever the expression is. All answers are those of the library. One thread uses it; what it learns of texts it
/// keeps.
class LinearMatcher {
 public:
  /// A matcher of an expression, compiled as `expression`, which must outlive it; none where the spelling holds what
  /// only the library can match.
  static std::unique_ptr<LinearMatcher> Make(XStringView spelling, const LibraryRegex& expression);

  bool IsFoundIn(XStringView text);
  bool IsWholeOf(XStringView text);

 private:
  explicit LinearMatcher(const LibraryRegex& expression) : classes_(expression) {}

  UnitClasses classes_;
  Program forward_;
  std::optional<Automaton> search_;
  std::optional<Automaton> whole_;
};

}  // namespace quillmere::text
