// Names that a mistyped one may have meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace qcalc {

/// Those of the known names that are few letters away from what was written, the nearest first, three at most. Case
/// counts for nothing; a letter too many, too few or another one, and two that changed places, count one each.
std::vector<std::string> NearNames(std::string_view written, const std::vector<std::string>& known);

/// "; near names: A, B" or, when there are none, nothing: the end of a sentence about an unknown name.
std::string NearNamesHint(std::string_view written, const std::vector<std::string>& known);

}  // namespace qcalc
