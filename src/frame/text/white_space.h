// Which text units count as white space, alike on every build.
#pragma once

#include "xlcall/xchar.h"

namespace quillmere {

constexpr bool IsWhiteSpace(XCHAR unit) {
  switch (unit) {
    case 0x0020:
    case 0x0085:
    case 0x00A0:
    case 0x1680:
    case 0x2028:
    case 0x2029:
    case 0x202F:
    case 0x205F:
    case 0x3000:
      return true;
    default:
      return (unit >= 0x0009 && unit <= 0x000D) || (unit >= 0x2000 && unit <= 0x200A);
  }
}

/// The text without the white space at its two ends.
constexpr XStringView TrimWhiteSpace(XStringView text) {
  while (!text.empty() && IsWhiteSpace(text.front())) text.remove_prefix(1);
  while (!text.empty() && IsWhiteSpace(text.back())) text.remove_suffix(1);
  return text;
}

}  // namespace quillmere
