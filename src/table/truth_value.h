// The one rule by which a cell reads as TRUE or FALSE, wherever a function asks for truth.
#pragma once

#include <cstdint>

#include "frame/values/cell.h"

namespace quillmere {

enum class TruthValue : std::int8_t { kNone, kFalse, kTrue };

constexpr TruthValue AsTruth(bool value) noexcept { return value ? TruthValue::kTrue : TruthValue::kFalse; }

/// TruthOf for any kind but a number or a boolean.
TruthValue TruthOfOther(const XLOPER12& cell);

/// The truth value of a single cell: a boolean itself; a number unless it is 0; a text that is TRUE or FALSE in any
/// case, or reads as a number in plain decimal or scientific notation, with blanks around it perhaps, by that. No other
/// text has one, nor has a cell that is empty or missing, nor an error: who must pass errors on looks for them first.
/// Nothing is asked of Excel. What is no single cell is "Bad XLOPER type".
inline TruthValue TruthOf(const XLOPER12& cell) {
  if (IsNumberCell(cell)) return AsTruth(cell.val.num != 0);
  if (IsBooleanCell(cell)) return AsTruth(cell.val.xbool != 0);
  return TruthOfOther(cell);
}

}  // namespace quillmere
