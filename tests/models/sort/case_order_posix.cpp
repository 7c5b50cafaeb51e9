#include "host/text/collation.h"
#include "tests/models/sort/model.h"

namespace qcalc::sort {

// The host's order looks at case too; texts are folded before it where case does not count.
std::weak_ordering CompareWithCase(XStringView left, XStringView right) { return CompareInLanguage(left, right); }

}  // namespace qcalc::sort
