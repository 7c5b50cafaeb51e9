// Shortening a text to a limit of Excel's.
#pragma once

#include <cstddef>

#include "xlcall/xchar.h"

namespace quillmere {

/// The longest beginning of `text` that has at most `limit` units and does not end within a surrogate pair.
constexpr XStringView CutText(XStringView text, std::size_t limit) noexcept {
  if (text.size() <= limit) return text;
  const bool splitsPair = limit > 0 && text[limit - 1] >= 0xD800 && text[limit - 1] <= 0xDBFF;
  return text.substr(0, splitsPair ? limit - 1 : limit);
}

}  // namespace quillmere
