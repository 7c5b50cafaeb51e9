// Letters without their case.
#pragma once

#include <cstddef>
#include <string_view>
#include <unordered_map>

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

/// The capital letter of a small one, where that is one unit too; of a letter with several the first.
XCHAR CapitalUnit(XCHAR unit);

/// The text without its case, as names of sheets and functions and texts of cells are compared.
XString FoldCase(XStringView text);

/// Whether the texts are equal but for case.
bool EqualsIgnoringCase(XStringView left, XStringView right);

/// For tables of names that are found in any case, without a folded copy of what is looked for.
struct CaselessHash {
  using is_transparent = void;
  std::size_t operator()(XStringView text) const;
};
struct CaselessEqual {
  using is_transparent = void;
  bool operator()(XStringView left, XStringView right) const { return EqualsIgnoringCase(left, right); }
};
template <typename Key, typename Content>
using CaselessMap = std::unordered_map<Key, Content, CaselessHash, CaselessEqual>;

/// The same for words of scripts and files: A to Z alone have a case.
bool EqualsIgnoringCase(std::string_view left, std::string_view right);

}  // namespace qcalc
