// An array whose texts are changed one by one, and that has everything else as it was.
#pragma once

#include <cstdint>

#include "frame/values/array_builder.h"
#include "text/prefetch_ahead.h"

namespace quillmere::text {

/// The array of those cells, a plain value for one cell, in which `change(builder, to, text)` has made `to` what
/// becomes of each text.
template <class Change>
CXlOper ChangeTexts(const CXlCells& cells, const Change& change) {
  CXlArrayBuilder changed(cells.rows, cells.columns);
  XLOPER12* const to = changed.Row(0);
  const std::int64_t count = cells.Count();
  for (std::int64_t at = 0; at < count;) {
    PrefetchAhead(cells, at);
    if (IsTextCell(cells.first[at])) [[likely]] {
      change(changed, to + at, TextOf(cells.first[at]));
      ++at;
      continue;
    }
    const std::int64_t first = at++;
    while (at < count && !IsTextCell(cells.first[at])) ++at;
    changed.CopyCells(to + first, cells.first + first, static_cast<std::size_t>(at - first));
  }
  return changed.FinishCollapsed();
}

}  // namespace quillmere::text
