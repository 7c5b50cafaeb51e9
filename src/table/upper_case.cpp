#include "table/upper_case.h"

#include <algorithm>
#include <cstdint>
#include <iterator>

namespace quillmere {
namespace {

struct Range {
  std::uint16_t first;
  std::uint16_t last;
  std::uint16_t step;
  std::int32_t distance;
};

constexpr Range kRanges[] = {
#include "table/upper_case_ranges.inc"
};

XCHAR UpperCaseByRange(XCHAR unit) noexcept {
  const std::uint16_t code = static_cast<std::uint16_t>(unit);
  const Range* const range =
      std::lower_bound(std::begin(kRanges), std::end(kRanges), code,
                       [](const Range& each, std::uint16_t wanted) { return each.last < wanted; });
  if (range == std::end(kRanges) || code < range->first || (code - range->first) % range->step != 0) return unit;
  return static_cast<XCHAR>(code + range->distance);
}

}  // namespace

XCHAR UpperCase(XCHAR unit) noexcept {
  if (unit < 0x80) [[likely]]
    return unit >= XTEXT('a') && unit <= XTEXT('z') ? static_cast<XCHAR>(unit - 0x20) : unit;
  return UpperCaseByRange(unit);
}

void AssignUpperCase(XString& upper, XStringView text) {
  upper.resize(text.size());
  std::transform(text.begin(), text.end(), upper.begin(), UpperCase);
}

}  // namespace quillmere
