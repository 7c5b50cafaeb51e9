// Letters without their case.
#pragma once

#include <string_view>

#include "xlcall/xchar.h"

namespace qcalc {

/// A to Z, in either case.
constexpr bool IsLetter(char byte) { return (byte >= 'A' && byte <= 'Z') || (byte >= 'a' && byte <= 'z'); }

/// The small form of A to Z; all else as it is.
template <typename Unit>
constexpr Unit SmallLetter(Unit unit) {
  return unit >= 'A' && unit <= 'Z' ? static_cast<Unit>(unit + ('a' - 'A')) : unit;
}

/// One unit without its case: a capital letter of any script gives its small one, where that is one unit too.
XCHAR FoldUnit(XCHAR unit);

/// The text without its case, as names of sheets and functions and texts of cells are compared.
XString FoldCase(XStringView text);

/// Whether the texts are equal but for case.
bool EqualsIgnoringCase(XStringView left, XStringView right);

/// The same for words of scripts and files: A to Z alone have a case.
bool EqualsIgnoringCase(std::string_view left, std::string_view right);

}  // namespace qcalc
