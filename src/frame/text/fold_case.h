// The case folding of every comparison that ignores case, the letters A to Z alone, whatever the locale; and the
// comparisons of two texts, exact and folded. They read the host's memory in place, and no byte outside a text.
#pragma once

#include "xlcall/xchar.h"

namespace quillmere {

/// The folded form of one UTF-16 unit.
constexpr XCHAR FoldUnit(XCHAR unit) noexcept {
  return unit >= XTEXT('A') && unit <= XTEXT('Z') ? static_cast<XCHAR>(unit + 0x20) : unit;
}

/// Folds a text in place, unit by unit: its length does not change.
void FoldCase(XString& text);

/// Writes the folded form of `text` to `to`, which has room for as many units.
void FoldTo(XCHAR* to, XStringView text);

/// Whether two texts are equal when both are folded: the letters A to Z count as a to z.
bool EqualFolded(XStringView a, XStringView b);

/// Whether two texts are equal, unit by unit.
bool EqualExact(XStringView a, XStringView b);

/// The dictionary order of two texts when both are folded, -1, 0 or +1: by unit, a prefix first.
int CompareFolded(XStringView a, XStringView b);

/// The dictionary order of two texts by their units as they are.
int CompareExact(XStringView a, XStringView b);

}  // namespace quillmere
