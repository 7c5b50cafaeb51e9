#include <windows.h>

#include "tests/models/sort/model.h"

namespace qcalc::sort {

std::weak_ordering CompareWithCase(XStringView left, XStringView right) {
  return CompareStringEx(LOCALE_NAME_USER_DEFAULT, 0, left.data(), static_cast<int>(left.size()), right.data(),
                         static_cast<int>(right.size()), nullptr, nullptr, 0) <=> CSTR_EQUAL;
}

}  // namespace qcalc::sort
