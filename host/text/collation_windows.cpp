#include <windows.h>

#include <stdexcept>

#include "host/text/collation.h"

namespace qcalc {

std::weak_ordering CompareInLanguage(XStringView left, XStringView right) {
  // Without flags for the contrary this is the word sort, which looks at hyphens and apostrophes last.
  const int order =
      CompareStringEx(LOCALE_NAME_USER_DEFAULT, NORM_IGNORECASE, left.data(), static_cast<int>(left.size()),
                      right.data(), static_cast<int>(right.size()), nullptr, nullptr, 0);
  if (order == 0) throw std::runtime_error("the system cannot order texts");
  return order <=> CSTR_EQUAL;
}

}  // namespace qcalc
