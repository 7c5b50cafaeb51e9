// Asking for memory ahead of a walk through the texts of an array.
#pragma once

#include <cstdint>

#include "frame/values/cell.h"
#include "frame/values/xl_oper.h"

namespace quillmere::text {

/// How far ahead cells and texts are asked for.
inline constexpr std::int64_t kCellsAhead = 128;
inline constexpr std::int64_t kTextsAhead = 24;

/// Asks for a cell that is read some time after the one at that place, and for a text that is read a little sooner:
/// where it lies, its cell must tell.
inline void PrefetchAhead(const CXlCells& cells, std::int64_t at) {
  if (at + kTextsAhead >= cells.Count()) return;
  // An address, since no pointer may lead out of its array.
  const auto ahead = reinterpret_cast<std::uintptr_t>(cells.first + at) + kCellsAhead * sizeof(XLOPER12);
  PrefetchFarCell(reinterpret_cast<const XLOPER12*>(ahead));
  PrefetchText(cells.first[at + kTextsAhead]);
}

}  // namespace quillmere::text
