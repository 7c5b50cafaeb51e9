// Errors replaced.
//
// Serves IFERRORX.
#include <algorithm>

#include "frame/convert/argument.h"
#include "frame/values/array_builder.h"
#include "implementations/logic.h"
#include "logic/prefetch_ahead.h"

namespace quillmere::logic {
namespace {

/// Which errors are replaced.
struct ReplacedErrors {
  bool notNa;
  bool notValue;

  bool Has(const XLOPER12& cell) const {
    return IsErrorCell(cell) && !(notNa && cell.val.err == xlerrNA) && !(notValue && cell.val.err == xlerrValue);
  }
};

CXlOper ReplaceErrors(const CXlCells& cells, const XLOPER12& replacement, const ReplacedErrors& replaced) {
  CXlArrayBuilder builder(cells.rows, cells.columns);
  const XLOPER12 stored = builder.Store(replacement);
  // Copied as they come, errors too, by so many that they are still in the cache when the errors are looked for, which
  // leaves the time to ask for the next ones.
  constexpr std::int64_t kCellsAtOnce = kCellsAhead;
  XLOPER12* const to = builder.Row(0);
  for (std::int64_t first = 0; first < cells.Count(); first += kCellsAtOnce) {
    const std::int64_t end = std::min(first + kCellsAtOnce, cells.Count());
    builder.CopyCells(to + first, cells.first + first, static_cast<std::size_t>(end - first));
    for (std::int64_t at = first; at < end; ++at) {
      PrefetchAhead<false>(cells.first + at);
      PrefetchAhead<true>(to + at);
      if (replaced.Has(cells.first[at])) to[at] = stored;
    }
  }
  return builder.FinishCollapsed();
}

}  // namespace

void Functions::ReplaceErrors(CXlOper& result, const CXlArgument& expression, const CXlArgument& replacement,
                              const CXlScalarArgument<ElementKind::kBoolean>& excludeNa,
                              const CXlScalarArgument<ElementKind::kBoolean>& excludeValue) {
  const CXlCells cells = expression.Value().Cells();
  const XLOPER12& first = *replacement.Value().Cells().first;
  const ReplacedErrors replaced{excludeNa.Read(), excludeValue.Read()};
  result = logic::ReplaceErrors(cells, first, replaced);
}

}  // namespace quillmere::logic
