// Regular expressions for models: drawn from a small grammar, and run by the library as it comes.
#pragma once

#include <optional>
#include <vector>

#include "frame/locale/regex_traits.h"
#include "tests/models/draws.h"

namespace qcalc::text {

using PlainRegex = quillmere::LibraryRegex;
using PlainMatch = boost::match_results<XStringView::const_iterator>;

/// One of words with blanks between.
XStringView DrawWord(models::Draws& draws, XStringView words);

/// Of few letters, so that they match one another, themselves or nothing. An expression is broken now and then; it does
/// not take long in any text.
XString DrawText(models::Draws& draws);
XString DrawExpression(models::Draws& draws);

/// Nothing for what is no expression.
std::optional<PlainRegex> Compile(XStringView expression, bool caseSensitive);

/// The matches, each from where the one before ended; one unit on from an empty one.
std::vector<PlainMatch> AllMatches(const PlainRegex& regex, XStringView text);

}  // namespace qcalc::text
