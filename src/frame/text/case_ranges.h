// Looking up the tables of letter case that case_ranges.py writes.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <iterator>

#include "xlcall/xchar.h"

namespace quillmere {

/// Units at equal steps whose counterparts lie equally far off.
struct CaseRange {
  std::uint16_t first;
  std::uint16_t last;
  std::uint16_t step;
  std::int32_t distance;
};

/// The counterpart of a unit in a table sorted by unit; the unit itself where it has none.
template <std::size_t kCount>
XCHAR MapByRange(const CaseRange (&ranges)[kCount], XCHAR unit) noexcept {
  const std::uint16_t code = static_cast<std::uint16_t>(unit);
  const CaseRange* const range =
      std::lower_bound(std::begin(ranges), std::end(ranges), code,
                       [](const CaseRange& each, std::uint16_t wanted) { return each.last < wanted; });
  if (range == std::end(ranges) || code < range->first || (code - range->first) % range->step != 0) return unit;
  return static_cast<XCHAR>(code + range->distance);
}

}  // namespace quillmere
