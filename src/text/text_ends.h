// Parts of a text that are counted from its ends.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>

#include "xlcall/xchar.h"

namespace quillmere::text {

/// The first units of a text, as many as it says, or for a number below 0 the last; all of it for 0, and where it has
/// no more.
inline XStringView EndOf(XStringView text, std::int64_t units) {
  const auto wanted = static_cast<std::size_t>(std::abs(units));
  if (wanted == 0 || wanted >= text.size()) return text;
  return text.substr(units > 0 ? 0 : text.size() - wanted, wanted);
}

}  // namespace quillmere::text
