// What the library makes of an expression.
#pragma once

#include <memory>

#include "frame/locale/regex_traits.h"
#include "text/regex/linear/linear_matcher.h"
#include "text/regex/regex.h"
#include "text/regex/regex_steps.h"

namespace quillmere::text {

struct Regex::Compiled {
  /// The matcher that goes before the library, or none.
  LinearMatcher* Linear() {
    if (linear && linear->IsWornOut()) linear.reset();
    return linear.get();
  }

  LibraryRegex expression;
  std::unique_ptr<LinearMatcher> linear;  ///< none where only the library can match the expression
  StepLength stepLength;
  boost::match_results<RegexPlace> match;  ///< the latest
};

}  // namespace quillmere::text
