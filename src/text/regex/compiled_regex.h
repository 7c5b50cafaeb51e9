// What the library makes of an expression.
#pragma once

#include "frame/locale/regex_traits.h"
#include "text/regex/regex.h"
#include "text/regex/regex_steps.h"

namespace quillmere::text {

struct Regex::Compiled {
  LibraryRegex expression;
  StepLength stepLength;
  boost::match_results<RegexPlace> match;  ///< the latest
};

}  // namespace quillmere::text
