// A view of texts so coarse that it is one number, by which many are told that lack something.
#pragma once

#include <cstddef>
#include <cstdint>

#include "frame/text/fold_case.h"
#include "text/plain_text.h"
#include "xlcall/xchar.h"

namespace quillmere::text {

/// Pairs of neighbouring units, A to Z in any case. Each is one of 64 bits, which it shares with many.
using UnitPairs = std::uint64_t;

/// The pair of two plain units.
inline UnitPairs UnitPair(XCHAR unit, XCHAR next) noexcept {
  const std::uint32_t units = std::uint32_t{FoldUnit(unit)} << 7 | FoldUnit(next);
  return UnitPairs{1} << (units * 0x9E3779B1U >> 26);
}

/// The pairs of a text, or all bits where it has other units than plain ones, or so many that they would tell nothing.
inline UnitPairs UnitPairsOf(XStringView text) {
  constexpr std::size_t kMostUnits = 64;
  constexpr UnitPairs kAll = ~UnitPairs{0};
  if (text.empty() || text.size() > kMostUnits) return text.empty() ? 0 : kAll;
  UnitPairs pairs = 0;
  for (std::size_t at = 0; at + 1 < text.size(); ++at) {
    if (!IsPlainUnit(text[at])) return kAll;
    pairs |= UnitPair(text[at], text[at + 1]);
  }
  return IsPlainUnit(text.back()) ? pairs : kAll;
}

}  // namespace quillmere::text
