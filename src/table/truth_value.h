// The one rule by which a cell reads as TRUE or FALSE, wherever a function asks for truth.
#pragma once

#include <cstdint>
#include <cstring>

#include "frame/values/cell.h"

namespace quillmere {

enum class TruthValue : std::int8_t { kNone, kFalse, kTrue };

constexpr TruthValue AsTruth(bool value) noexcept { return value ? TruthValue::kTrue : TruthValue::kFalse; }

/// Whether a cell is a number or a boolean: the truth of those takes no call, and no branch for which of the two it is.
inline bool HasPlainTruth(const XLOPER12& cell) {
  constexpr std::uint32_t kPlainTypes = 1U << xltypeNum | 1U << xltypeBool;
  const std::uint32_t type = TypeOf(cell);
  return type <= xltypeBool && (kPlainTypes >> type & 1) != 0;
}

/// The truth of such a cell.
inline bool PlainTruth(const XLOPER12& cell) {
  // A number is 0 when at most its first bit, the sign, is set; of a boolean the lower half counts.
  const std::uint32_t upperBits = TypeOf(cell) / xltypeBool * 31 + 1;
  std::uint64_t bits;
  std::memcpy(&bits, &cell.val, sizeof bits);
  return bits << upperBits != 0;
}

/// TruthOf for any kind but a number or a boolean.
TruthValue TruthOfOther(const XLOPER12& cell);

/// The truth value of a single cell: a boolean itself; a number unless it is 0; a text that is TRUE or FALSE in any
/// case, or reads as a number in plain decimal or scientific notation, with blanks around it perhaps, by that. No other
/// text has one, nor has a cell that is empty or missing, nor an error: who must pass errors on looks for them first.
/// Nothing is asked of Excel. What is no single cell is "Bad XLOPER type".
inline TruthValue TruthOf(const XLOPER12& cell) {
  return HasPlainTruth(cell) ? AsTruth(PlainTruth(cell)) : TruthOfOther(cell);
}

}  // namespace quillmere
