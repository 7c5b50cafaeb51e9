// The pieces of a text between delimiters.
#pragma once

#include <algorithm>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "text/delimiter_set.h"

namespace quillmere::text {

/// Whether the pieces of length zero count: between two delimiters side by side, and beside one at an end of a text.
enum class EmptyTokens { kDropped, kKept };

/// Goes from token to token of a text as long as `visit(begin, end)` is true: the places of its first unit and behind
/// its last.
template <class Visit>
void ForEachToken(XStringView text, const DelimiterSet& delimiters, EmptyTokens empty, const Visit& visit) {
  const bool keepsEmpty = empty == EmptyTokens::kKept;
  std::size_t begin = 0;
  for (std::size_t at = 0; at < text.size(); at += DelimiterSet::kUnitsAtOnce) {
    const std::size_t units = std::min(text.size() - at, DelimiterSet::kUnitsAtOnce);
    for (std::uint64_t places = delimiters.PlacesIn(text.data() + at, units); places != 0; places &= places - 1) {
      const std::size_t end = at + static_cast<std::size_t>(std::countr_zero(places));
      if ((end != begin || keepsEmpty) && !visit(begin, end)) return;
      begin = end + 1;
    }
  }
  if (text.size() != begin || keepsEmpty) visit(begin, text.size());
}

/// How many tokens a text has.
inline std::size_t CountTokens(XStringView text, const DelimiterSet& delimiters, EmptyTokens empty) {
  std::size_t count = 0;
  ForEachToken(text, delimiters, empty, [&count](std::size_t, std::size_t) {
    ++count;
    return true;
  });
  return count;
}

}  // namespace quillmere::text
