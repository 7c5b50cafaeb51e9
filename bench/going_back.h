// Matching a wildcard pattern as one would write it by hand: by going back to the last star.
#pragma once

#include "frame/text/lower_case.h"

namespace quillmere {

/// Whether a text matches a pattern of small letters, * and ?, in any case of its letters.
inline bool MatchesByGoingBack(XStringView pattern, XStringView text) {
  std::size_t at = 0;
  std::size_t in = 0;
  std::size_t star = XStringView::npos;
  std::size_t resumed = 0;
  while (at < text.size()) {
    if (in < pattern.size() && pattern[in] == XTEXT('*')) {
      star = in++;
      resumed = at;
    } else if (in < pattern.size() && (pattern[in] == XTEXT('?') || pattern[in] == LowerCase(text[at]))) {
      ++in;
      ++at;
    } else if (star != XStringView::npos) {
      in = star + 1;
      at = ++resumed;
    } else {
      return false;
    }
  }
  while (in < pattern.size() && pattern[in] == XTEXT('*')) ++in;
  return in == pattern.size();
}

}  // namespace quillmere
