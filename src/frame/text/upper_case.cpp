#include "frame/text/upper_case.h"

#include <algorithm>

#include "frame/text/case_ranges.h"

namespace quillmere {
namespace {

constexpr CaseRange kToUpper[] = {
#include "frame/text/upper_case_ranges.inc"
};

}  // namespace

XCHAR UpperCase(XCHAR unit) noexcept {
  if (unit < 0x80) [[likely]]
    return unit >= XTEXT('a') && unit <= XTEXT('z') ? static_cast<XCHAR>(unit - 0x20) : unit;
  return MapByRange(kToUpper, unit);
}

void AssignUpperCase(XString& upper, XStringView text) {
  upper.resize(text.size());
  std::transform(text.begin(), text.end(), upper.begin(), UpperCase);
}

}  // namespace quillmere
