#include "lookup/lookup_result.h"

#include <algorithm>

#include "frame/values/array_builder.h"
#include "table/array_painter.h"

namespace quillmere::lookup {
namespace {

void PutPositions(CXlArrayBuilder& builder, const FoundRows& found, const XLOPER12& notFound) {
  for (std::size_t i = 0; i < found.size(); ++i) {
    XLOPER12* const to = builder.Row(static_cast<std::int64_t>(i));
    *to = found[i] == kNoRow ? notFound : NumberCell(found[i] + 1.0);
  }
}

void PutReferenceRows(CXlArrayBuilder& builder, const LookupPlan& plan, const FoundRows& found,
                      const XLOPER12& notFound) {
  for (std::size_t i = 0; i < found.size(); ++i) {
    const auto row = static_cast<std::int64_t>(i);
    for (std::size_t j = 0; j < plan.answerColumns.size(); ++j) {
      const auto column = static_cast<std::int64_t>(j);
      if (found[i] == kNoRow)
        *builder.At(row, column) = notFound;
      else
        builder.Put(row, column, plan.data.CoerceCell(found[i], plan.answerColumns[j]));
    }
  }
}

}  // namespace

CXlOper BuildLookupResult(const LookupPlan& plan, const FoundRows& found, const XLOPER12& notFound) {
  if (!plan.WantsPositions() && !plan.data.IsReference()) {
    const ArrayPiece rows{plan.data.Cells(), AxisMap::By(found), AxisMap::By(plan.answerColumns)};
    return PaintStack({&rows, 1}, false, notFound);
  }
  const std::size_t columns = plan.WantsPositions() ? 1 : plan.answerColumns.size();
  CXlArrayBuilder builder(static_cast<std::int64_t>(found.size()), static_cast<std::int64_t>(columns));
  // Stored once, when it is needed: a text is shared by all cells that show it.
  XLOPER12 missing = notFound;
  if (std::find(found.begin(), found.end(), kNoRow) != found.end()) missing = builder.Store(notFound);
  if (plan.WantsPositions())
    PutPositions(builder, found, missing);
  else
    PutReferenceRows(builder, plan, found, missing);
  return builder.FinishCollapsed();
}

}  // namespace quillmere::lookup
