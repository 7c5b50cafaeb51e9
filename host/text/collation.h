// The order of texts in the user's language, as the system knows it: accented letters beside their plain ones.
#pragma once

#include <compare>

#include "xlcall/xchar.h"

namespace qcalc {

/// Orders two texts whose case is folded, by the language of the user: on Windows that of the system, elsewhere that
/// which LC_ALL, LC_COLLATE or LANG names, "C" and "POSIX" being American English. Hyphens and apostrophes count only
/// between otherwise equal texts, of which the one with more of them comes last. Different texts may be equivalent:
/// what the language does not tell apart. Throws std::runtime_error where the system cannot order texts.
std::weak_ordering CompareInLanguage(XStringView left, XStringView right);

}  // namespace qcalc
