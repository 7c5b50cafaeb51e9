// Comparing fixed words with what a user typed.
#pragma once

#include <cstddef>

#include "xlcall/xchar.h"

namespace quillmere {

/// Whether two texts are equal when A to Z and a to z count as the same; all other units must be equal as they are.
constexpr bool EqualIgnoringAsciiCase(XStringView a, XStringView b) {
  const auto lower = [](XCHAR unit) {
    return unit >= XTEXT('A') && unit <= XTEXT('Z') ? static_cast<XCHAR>(unit + 0x20) : unit;
  };
  if (a.size() != b.size()) return false;
  for (std::size_t at = 0; at < a.size(); ++at)
    if (lower(a[at]) != lower(b[at])) return false;
  return true;
}

}  // namespace quillmere
